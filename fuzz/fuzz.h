// fuzz/fuzz.h: what the fuzz targets share.
//
// A target defines LLVMFuzzerTestOneInput; what it finds ends the process. Standard output and
// standard error are to be closed with -close_fd_mask=3, as scripts/fuzz.sh does: messages are
// many.
#ifndef FUZZ_FUZZ_H
#define FUZZ_FUZZ_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

inline std::string text_of(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Ends the process where `holds` is false, as nobody catches this.
inline void require(bool holds, const char* what) {
  if (!holds) throw std::logic_error(what);
}

#endif
