#include "tests/contract/RawSinkInC.h"

#include <string.h>
#include <wchar.h>

static wchar_t lastText[512];
static volatile long count;

static void OnRaw(ISdkRawSink* self, const wchar_t* rawJson) {
  (void)self;
  if (rawJson) wcsncpy(lastText, rawJson, sizeof(lastText) / sizeof(lastText[0]) - 1);
  ++count;
}

ISdkRawSink* RawSinkInC(void) {
  static const ISdkRawSinkVtbl table = {OnRaw};
  static ISdkRawSink sink = {&table};
  return &sink;
}

const wchar_t* LastRawText(void) {
  return lastText;
}

int RawTextCount(void) {
  return (int)count;
}
