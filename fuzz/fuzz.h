// fuzz/fuzz.h: what the fuzz targets share.
//
// A target defines LLVMFuzzerTestOneInput; what it finds ends the process. Standard output and
// standard error are to be closed with -close_fd_mask=3, as scripts/fuzz.sh does: messages are
// many.
#ifndef FUZZ_FUZZ_H
#define FUZZ_FUZZ_H

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

inline std::string text_of(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Standard error as it was before it was closed.
inline const int complaints = dup(STDERR_FILENO);

// Says `what` and ends the process where `holds` is false.
inline void require(bool holds, const char* what) {
  if (holds) return;
  dprintf(complaints, "fuzz: %s\n", what);
  std::abort();
}

#endif
