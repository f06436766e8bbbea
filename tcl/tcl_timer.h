// tcl/tcl_timer.h: the commands add_timer and abort_timer, one-shot timers that evaluate a script.
#ifndef TCL_TCL_TIMER_H
#define TCL_TCL_TIMER_H

#include <tcl.h>

// Registers both commands and returns 0. The pending timers of all interpreters are in one list,
// which is emptied when an add_timer command is deleted.
int TimeHandler_Init(Tcl_Interp* interp);

#endif
