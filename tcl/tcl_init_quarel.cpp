#include "tcl/tcl_init_quarel.h"

// tcl_libPath is a local variable on purpose: no library path of the application changes.
static char start_up_script[] = R"(
proc quarelSetTclLib {} {
    #puts "Entering quarelSetTclLib"
    global env tcl_library tk_library quarel_install
    set code {TAMSEL STATE INSTALLATION}
    # Another interpreter may have unset it, which `info exists` does not notice.
    if {![info exists env(QUAREL_INSTALL)] || [catch {set env(QUAREL_INSTALL)}]} {
        error "INSTALLATION PROBLEM:\n==> environment variable QUAREL_INSTALL not defined\n" {} $code
    }
    set quarel_install $env(QUAREL_INSTALL)
    if {![file exist $quarel_install]} {
        error "INSTALLATION PROBLEM:\n==> can't access $quarel_install" {} $code
    }
    set quarel_install_tcl [file join $quarel_install "tcl"]
    lappend tcl_libPath $quarel_install_tcl
    #puts "Exit quarelSetTclLib"
    return
}
quarelSetTclLib
)";

int Tcl_InitQuarel(Tcl_Interp* interp) { return Tcl_EvalEx(interp, start_up_script, -1, 0); }
