// Calls of the C++ interface, drawn by the bytes of the input: what they answer and leave is what a
// slow and obvious model says.

#include "tests/calls.h"

#include "fuzz/fuzz.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  play_calls(data, size);
  return 0;
}
