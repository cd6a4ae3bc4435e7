#pragma once

#include "sdk/VelmSdk.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A raw sink as C code makes it, with its table written by hand. It keeps what it received last. */
ISdkRawSink* RawSinkInC(void);
const wchar_t* LastRawText(void); /* L"" at first; cut to the sink's buffer */
int RawTextCount(void);

#ifdef __cplusplus
}
#endif
