#pragma once

#include <cstdint>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

class FilePath;

// A file handle and the calls on it, thin as they are. The destructor closes. What fails leaves the
// thread's last error. No lock.
//
// Positions and sizes pass through system calls that split them into halves of 32 bits. A low half of all
// ones is taken for a failure, so a position or size whose low half is 0xFFFFFFFF reads as 0.
class CMM_EXPORT CFile {
 public:
  // The system's access mask, handed on as it stands; of its bits these are named.
  enum EAccess : uint32_t {
    kRead = 0x80000000,       // GENERIC_READ
    kWrite = 0x40000000,      // GENERIC_WRITE
    kReadWrite = 0xC0000000,  // both
  };

  enum ESeekType : int {
    kFromStart = 0,
    kFromCurrent = 1,
    kFromEnd = 2,
  };

  CFile();
  explicit CFile(void* handle);  // takes it over, be it null or invalid
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;
  ~CFile();

  // ---- The handle -------------------------------------------------------------------------------------

  operator void*() const;         // null for the invalid value
  void* GetPlatformFile() const;  // the value itself; INVALID_HANDLE_VALUE when there is no file
  void Attach(void* handle);      // takes it over; does NOT close the one held before
  void* Detach();                 // gives it away; the object is then invalid
  void Swap(CFile& other);
  void Close();           // the object is then invalid; closes neither a null nor an invalid handle
  bool IsOpened() const;  // a null handle counts as opened

  // ---- Opening: IsOpened tells whether it worked. What was held before is NOT closed -------------------
  // Others may read the file meanwhile; they may write to it only after OpenExisting with `shareWrite`.

  void CreateNew(const wchar_t* path, EAccess access);  // fails when the file exists
  void CreateNew(const FilePath& path, EAccess access);
  void CreateAlways(const wchar_t* path, EAccess access);  // empties an existing file
  void CreateAlways(const FilePath& path, EAccess access);
  void OpenAlways(const wchar_t* path, EAccess access);  // creates a missing file
  void OpenAlways(const FilePath& path, EAccess access);
  void OpenExisting(const wchar_t* path, EAccess access, int shareWrite);
  void OpenExisting(const FilePath& path, EAccess access, int shareWrite);
  void TruncateExisting(const wchar_t* path, EAccess access);  // needs kWrite among the access

  // ---- Content ----------------------------------------------------------------------------------------

  // One call of the system: the bytes transferred, 0 on failure and for `n` of 0.
  uint32_t Read(void* buf, uint32_t n);
  uint32_t Write(const void* buf, uint32_t n);

  // Reads up to a line feed or the end of the file, byte by byte, into `buf`, which holds `size` + 1 bytes,
  // and ends the text with a NUL in place of the line feed and of a carriage return before it. Returns the
  // length; -1 for an empty line and at the end of the file, which look alike, and for a null `buf`, a null
  // object and a `size` below 1.
  // A line of more than `size` bytes is cut: the byte behind them is read too and lost, and the next call
  // goes on behind that.
  int ReadLine(char* buf, int size);

  // ---- Position and size, in bytes: the new or current value, 0 on failure ------------------------------

  int64_t SeekSet(int64_t pos);
  int64_t SeekCur(int64_t off);
  int64_t SeekEnd(int64_t off);
  int64_t Seek(int64_t off, ESeekType type);
  int64_t Tell() const;
  int64_t GetSize() const;

  int SetSize(int64_t n);  // the position stays; non-zero on success
  int SetEof();            // ends the file at the position; non-zero on success
  int Flush();             // non-zero on success

  // Whether the runtime's status call succeeds, for a directory too. The path reaches that call as UTF-8,
  // and the call takes it for text of the ANSI code page: a name outside ASCII is not found unless that code
  // page is UTF-8. Null is an empty path.
  static bool FileExist(const FilePath& path);
  static bool FileExist(const wchar_t* path);

 private:
  void Open(const wchar_t* path, EAccess access, uint32_t share, uint32_t disposition);

  void* m_handle;
};

}  // namespace Cmm
