#pragma once

// What the crash reporter of the tests saw, and what it answers; exported as "crTestState".
struct CrashReporterState {
  int verdict;
  int calls;
  unsigned int code;
  unsigned int recordCode;  // of the exception's own record
  bool hasContext;
};
