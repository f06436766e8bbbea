#include "tcl/support.h"

#include <cerrno>

ErrorCode io_error(const char* name) { return {{"IO", Tcl_ErrnoId(), name, Tcl_ErrnoMsg(errno)}}; }

int deliver_error(Tcl_Interp* interp, const ErrorCode& code, const std::string& text) {
  Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
  Tcl_ListObjAppendElement(nullptr, list, Tcl_NewStringObj("TAMSEL", -1));
  for (const char* word : code.words) {
    if (word == nullptr) break;
    Tcl_ListObjAppendElement(nullptr, list, Tcl_NewStringObj(word, -1));
  }
  Tcl_SetObjResult(interp, Tcl_NewStringObj(text.c_str(), -1));
  Tcl_SetObjErrorCode(interp, list);
  return TCL_ERROR;
}

void evaluate_aside(Tcl_Interp* interp, Tcl_Obj* script) {
  if (Tcl_InterpDeleted(interp)) return;
  Tcl_Preserve(interp);
  Tcl_IncrRefCount(script);
  const Tcl_InterpState before = Tcl_SaveInterpState(interp, TCL_OK);
  Tcl_EvalObjEx(interp, script, 0);
  Tcl_RestoreInterpState(interp, before);
  Tcl_DecrRefCount(script);
  Tcl_Release(interp);
}

int report_out_of_memory(Tcl_Interp* interp) {
  Tcl_SetObjResult(interp, Tcl_NewStringObj("Dorvik: out of memory", -1));
  Tcl_SetErrorCode(interp, "TAMSEL", "STATE", "MEMORY", nullptr);
  return TCL_ERROR;
}
