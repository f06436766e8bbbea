// tcl/tcl_init_quarel.h: the start-up script, which checks the installation.
#ifndef TCL_TCL_INIT_QUAREL_H
#define TCL_TCL_INIT_QUAREL_H

#include <tcl.h>

// Evaluates it. Returns TCL_OK with the global variable quarel_install set, or TCL_ERROR with a
// message where the environment variable QUAREL_INSTALL is not set or names nothing that exists.
int Tcl_InitQuarel(Tcl_Interp* interp);

#endif
