#include "tcl/tcl_timer.h"

#include <cstdio>
#include <memory>
#include <string>

#include "foundation/text.h"
#include "tcl/support.h"

using namespace tamsel;

namespace {

// A timer, from add_timer until it has fired or is aborted.
struct TimeHandler {
  char token[56];  // its address in hexadecimal: what scripts know it by
  Tcl_TimerToken timer;
  Tcl_Interp* interp;  // deletes its add_timer, and so this record, before it goes
  std::string script;
  TimeHandler* next;
  bool running;  // the script is being evaluated, and whoever does that deletes the record
};

thread_local TimeHandler* TimeHandler_list;  // of this thread, newest first

void unlink_record(const TimeHandler* record) {
  TimeHandler** place = &TimeHandler_list;
  while (*place != nullptr && *place != record) place = &(*place)->next;
  if (*place != nullptr) *place = record->next;
}

// Takes `record` off the list for good.
void remove_record(TimeHandler* record) {
  unlink_record(record);
  if (record->running) return;
  Tcl_DeleteTimerHandler(record->timer);
  delete record;
}

// The pending or running record of a token, or null.
TimeHandler* token2time_handler(const char* text) {
  unsigned long address;
  if (std::sscanf(text, "%lx", &address) != 1) return nullptr;
  TimeHandler* record = TimeHandler_list;
  while (record != nullptr && reinterpret_cast<unsigned long>(record) != address)
    record = record->next;
  return record;
}

// While the script runs it may abort this timer or delete add_timer: the record stays until it is
// done.
void call_a_script(void* data) {
  TimeHandler* record = static_cast<TimeHandler*>(data);
  record->running = true;
  evaluate_aside(record->interp, Tcl_NewStringObj(record->script.c_str(), -1));
  unlink_record(record);
  delete record;
}

int usage_error(Tcl_Interp* interp, const char* command, const char* usage) {
  return deliver_error(interp, {{"USAGE", command}}, usage);
}

int create_a_time_handler(void*, Tcl_Interp* interp, int argc, const char* argv[]) {
  return run_command(interp, [=] {
    const int delay = argc == 3 ? read_int(argv[1]) : 0;
    if (delay <= 0)
      return usage_error(interp, "add_timer", "usage : add_timer <milliseconds> <script>");
    auto record = std::make_unique<TimeHandler>();
    record->interp = interp;
    record->script = argv[2];
    record->next = TimeHandler_list;
    std::snprintf(record->token, sizeof record->token, "%lx",
                  reinterpret_cast<unsigned long>(record.get()));
    TimeHandler_list = record.release();
    TimeHandler_list->timer = Tcl_CreateTimerHandler(delay, call_a_script, TimeHandler_list);
    Tcl_SetObjResult(interp, Tcl_NewStringObj(TimeHandler_list->token, -1));
    return TCL_OK;
  });
}

int abort_a_time_handler(void*, Tcl_Interp* interp, int argc, const char* argv[]) {
  return run_command(interp, [=] {
    TimeHandler* record = argc == 2 ? token2time_handler(argv[1]) : nullptr;
    if (record == nullptr)
      return usage_error(interp, "abort_timer", "usage : abort_timer <timer-token>");
    remove_record(record);
    return TCL_OK;
  });
}

void delete_all_time_handlers(void*) {
  while (TimeHandler_list != nullptr) remove_record(TimeHandler_list);
}

}  // namespace

int TimeHandler_Init(Tcl_Interp* interp) {
  Tcl_CreateCommand(interp, "add_timer", create_a_time_handler, nullptr, delete_all_time_handlers);
  Tcl_CreateCommand(interp, "abort_timer", abort_a_time_handler, nullptr, nullptr);
  return 0;
}
