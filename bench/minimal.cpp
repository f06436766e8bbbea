// The least that a string command with a result costs, and `spent`, what all has cost: the
// microseconds of processor time that the process has taken.

#include <tcl.h>

#include <ctime>

static int minimal(ClientData, Tcl_Interp* interp, int, const char*[]) {
  Tcl_SetObjResult(interp, Tcl_NewStringObj("text", -1));
  return TCL_OK;
}

static int spent(ClientData, Tcl_Interp* interp, int, const char*[]) {
  timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  Tcl_SetObjResult(interp, Tcl_NewDoubleObj(1e6 * static_cast<double>(time.tv_sec) +
                                            1e-3 * static_cast<double>(time.tv_nsec)));
  return TCL_OK;
}

extern "C" __attribute__((visibility("default"))) int Minimal_Init(Tcl_Interp* interp) {
  if (Tcl_InitStubs(interp, "8.5", 0) == nullptr) return TCL_ERROR;
  Tcl_CreateCommand(interp, "minimal", minimal, nullptr, nullptr);
  Tcl_CreateCommand(interp, "spent", spent, nullptr, nullptr);
  return TCL_OK;
}
