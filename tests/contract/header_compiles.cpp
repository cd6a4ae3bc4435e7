#include "tests/contract/header_compiles.c"  // the same text, as C++
