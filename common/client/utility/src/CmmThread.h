#pragma once

#include <cstddef>

#include "common/client/utility/src/CmmAtomic.h"
#include "common/client/utility/src/CmmDefine.h"

// <windows.h> defines Yield() as nothing, which would take CThread::Yield away. Include it before this
// header.
#undef Yield

namespace Cmm {

// The body of a thread. It is not deleted through this interface: an heir that wants a virtual destructor
// brings it along.
class CMM_EXPORT IThread {
 public:
  virtual unsigned int ThreadProc() = 0;  // runs on the new thread; the result is its exit code

 protected:
  ~IThread() = default;
};

// A thread's handle and id. It has no stop protocol: the body must provide one. One thread at a time may
// use a CThread, but for the queries.
class CMM_EXPORT CThread {
 public:
  CThread();
  CThread(const CThread&) = delete;
  CThread& operator=(const CThread&) = delete;
  ~CThread();  // as Detach: neither waits for the thread nor ends it

  // Start a thread with the default stack; `body`, or what `arg` points to, is borrowed until it ends. The
  // result of the body is the thread's exit code. A thread that ran before is let go as by Detach. When no
  // thread can be had, IsRunning answers false and the id stays as it was.
  void Create(IThread* body);
  void CreateBy(unsigned long (*proc)(void*), void* arg);

  // The thread's id; 0 when there is none, and for a null pointer.
  int IsValid() const;
  operator int() const;

  bool IsRunning() const;  // false as well after Detach, whether or not the thread runs on

  void Join();    // waits without limit for the thread's end and forgets it; without a thread returns at once
  void Detach();  // lets the thread go; the id stays
  void Kill();    // ends the thread where it stands, with exit code 0; what it held stays as it is

  // The suspend count before the call; all ones when it fails.
  unsigned long Suspend();
  unsigned long Resume();

  static void Sleep(unsigned int ms);
  static void Yield();  // gives the rest of the time slice to a thread that is ready on this processor

 protected:
  // Starts a thread that runs `entry` with `arg`, and takes its handle and id.
  void Start(unsigned int (*entry)(void*), void* arg);

 private:
  void* m_handle = nullptr;
  unsigned int m_id = 0;
};

// A thread that lives on the heap until it has ended and its last user has released it, whichever comes
// last. The creator holds the first reference; any thread may take and release one.
class CMM_EXPORT CRefThread : public CThread, public IThread {
 public:
  // The library's heap, so that the memory goes back where it came from, whichever module releases last.
  static void* operator new(size_t size);
  static void operator delete(void* block) noexcept;

  CRefThread();

  unsigned int ThreadProc() override = 0;  // the user's body
  virtual ~CRefThread();                   // closes the handle; does not wait

  long AddRef();   // the new count
  long Release();  // the new count; deletes the object when the count was below 2, be it 0 or negative

  // Starts ThreadProc on a thread that holds a reference of its own while it runs. When no thread can be
  // had, that reference stays: the creator then has two to release.
  void Create();

 private:
  CAtomicInt m_references = 1;
};

}  // namespace Cmm
