// A library of the crash reporter's name that has no filter.

extern "C" __declspec(dllexport) int crSomethingElse() {
  return 0;
}
