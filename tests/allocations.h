// tests/allocations.h: how many allocations of the process are live, in executables that link
// allocations.cpp.
#ifndef TESTS_ALLOCATIONS_H
#define TESTS_ALLOCATIONS_H

extern long live_allocations;

#endif
