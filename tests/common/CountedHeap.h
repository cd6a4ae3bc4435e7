#pragma once

namespace velm_test {

// Calls of the global operator new and operator delete of this program so far, on all its threads.
struct HeapCalls {
  long news;
  long deletes;

  long Live() const { return news - deletes; }
};
HeapCalls CountHeapCalls();

}  // namespace velm_test
