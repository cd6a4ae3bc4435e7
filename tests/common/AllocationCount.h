#pragma once

#include <cstddef>

// How often the program that links AllocationCount.cpp has called operator new so far.
size_t AllocationCount();
