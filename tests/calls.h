// tests/calls.h: calls of the C++ interface, each beside a model that is slow and obvious. For
// tests and fuzz targets alike.
#ifndef TESTS_CALLS_H
#define TESTS_CALLS_H

#include <cstddef>
#include <cstdint>

// Makes the calls that the bytes choose: of a symbol table, of a stream or of a program's registry.
// Throws logic_error where the model and the library differ.
void play_calls(const uint8_t* data, size_t size);

#endif
