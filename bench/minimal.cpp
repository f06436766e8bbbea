// The least that a string command with a small result can cost.

#include <tcl.h>

static int minimal(ClientData, Tcl_Interp* interp, int argc, const char* argv[]) {
  if (argc < 2) return TCL_ERROR;
  Tcl_SetObjResult(interp, Tcl_NewStringObj(argv[1], -1));
  return TCL_OK;
}

extern "C" __attribute__((visibility("default"))) int Minimal_Init(Tcl_Interp* interp) {
  if (Tcl_InitStubs(interp, "8.5", 0) == nullptr) return TCL_ERROR;
  Tcl_CreateCommand(interp, "minimal", minimal, nullptr, nullptr);
  return TCL_OK;
}
