#pragma once

// The pipe and completion port calls that a channel makes, as a table: its state machine can then be driven
// by a system that answers anything. Each call reports like the system's own.

#include <windows.h>

namespace qxb_ipc {

struct PipeApi {
  decltype(&CreateNamedPipeW) createPipe = CreateNamedPipeW;
  decltype(&CreateFileW) openPipe = CreateFileW;
  decltype(&ConnectNamedPipe) awaitPeer = ConnectNamedPipe;
  decltype(&ReadFile) read = ReadFile;
  decltype(&WriteFile) write = WriteFile;
  decltype(&CancelIo) cancel = CancelIo;
  decltype(&CreateIoCompletionPort) createPort = CreateIoCompletionPort;
  decltype(&GetQueuedCompletionStatus) nextCompletion = GetQueuedCompletionStatus;
  decltype(&PostQueuedCompletionStatus) postCompletion = PostQueuedCompletionStatus;
};

}  // namespace qxb_ipc
