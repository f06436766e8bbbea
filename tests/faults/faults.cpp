// Memory that runs out when a test says so.
//
// To be preloaded, so that its operator new is the one that every library finds, and then loaded
// into Tcl as well. Command `faults` of Tcl:
//   faults arm N ?lasting?  the Nth allocation from now on (from 1) fails; those after it as well
//                           where `lasting` is 1
//   faults disarm           no allocation fails; answers whether one has
#include <tcl.h>

#include <cstdlib>
#include <cstring>
#include <new>

static long left = -1;  // allocations up to the one that fails; below 0: none does
static bool lasting;
static bool has_failed;

static bool fails_now() {
  if (left < 0) return false;
  if (left > 0 && --left > 0) return false;
  has_failed = true;
  if (!lasting) left = -1;
  return true;
}

void* operator new(size_t size) {
  void* memory = fails_now() ? nullptr : std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new[](size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, size_t) noexcept { std::free(memory); }

static int faults(ClientData, Tcl_Interp* interp, int argc, const char* argv[]) {
  left = -1;
  if (argc == 2 && std::strcmp(argv[1], "disarm") == 0) {
    Tcl_SetObjResult(interp, Tcl_NewIntObj(has_failed));
    return TCL_OK;
  }
  if (argc < 3) return TCL_ERROR;
  has_failed = false;
  lasting = argc == 4 && std::atoi(argv[3]) != 0;
  left = std::atol(argv[2]);
  return TCL_OK;
}

extern "C" __attribute__((visibility("default"))) int Faults_Init(Tcl_Interp* interp) {
  if (Tcl_InitStubs(interp, "8.5-", 0) == nullptr) return TCL_ERROR;
  Tcl_CreateCommand(interp, "faults", faults, nullptr, nullptr);
  return TCL_OK;
}
