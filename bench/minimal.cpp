// The least that a string command with a result costs.

#include <tcl.h>

static int minimal(ClientData, Tcl_Interp* interp, int, const char*[]) {
  Tcl_SetObjResult(interp, Tcl_NewStringObj("text", -1));
  return TCL_OK;
}

extern "C" __attribute__((visibility("default"))) int Minimal_Init(Tcl_Interp* interp) {
  if (Tcl_InitStubs(interp, "8.5", 0) == nullptr) return TCL_ERROR;
  Tcl_CreateCommand(interp, "minimal", minimal, nullptr, nullptr);
  return TCL_OK;
}
