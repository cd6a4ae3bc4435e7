#include "archive/ArchiveObjReader.h"

#include <cwchar>
#include <memory>

#include "archive/ArchiveField.h"
#include "archive/ArchiveService.h"
#include "archive/ArchiveText.h"

namespace Cmm {
namespace {

using Value = CCmmArchiveVarivant;

template <typename T>
int Read(ICmmArchiveObject* root, const char* name, Value::ArchDataType type, T (Value::*get)() const,
         T& value) {
  const Value* leaf = Archive::FindField(root, name, type);
  if (!leaf) return 0;
  value = (leaf->*get)();
  return 1;
}

}  // namespace

CCmmArchiveObjReader::CCmmArchiveObjReader(ICmmArchiveObject* object) : m_object(object) {}

CCmmArchiveObjReader::~CCmmArchiveObjReader() = default;

int CCmmArchiveObjReader::ReadUInt64(const char* name, uint64_t& value) {
  return Read(m_object, name, Value::ArchDataType_UInt64, &Value::GetUInt64, value);
}

int CCmmArchiveObjReader::ReadInt64(const char* name, int64_t& value) {
  return Read(m_object, name, Value::ArchDataType_Int64, &Value::GetInt64, value);
}

int CCmmArchiveObjReader::ReadBool(const char* name, int& value) {
  int stored = 0;
  if (!Read(m_object, name, Value::ArchDataType_Bool, &Value::GetBool, stored)) return 0;
  value = stored == 1 ? 1 : 0;
  return 1;
}

int CCmmArchiveObjReader::ReadDouble(const char* name, double& value) {
  return Read(m_object, name, Value::ArchDataType_Double, &Value::GetDouble, value);
}

int CCmmArchiveObjReader::ReadFloat(const char* name, float& value) {
  return Read(m_object, name, Value::ArchDataType_Float, &Value::GetFloat, value);
}

int CCmmArchiveObjReader::ReadStringW(const char* name, CStringT<wchar_t>& value) {
  const wchar_t* text = nullptr;
  if (!Read(m_object, name, Value::ArchDataType_String, &Value::GetString, text)) return 0;
  value = text;
  return 1;
}

int CCmmArchiveObjReader::ReadStringA(const char* name, CStringT<char>& value) {
  const wchar_t* text = nullptr;
  if (!Read(m_object, name, Value::ArchDataType_String, &Value::GetString, text)) return 0;
  Archive::Utf8FromWide(text, text ? std::wcslen(text) : 0, value);
  return 1;
}

int CCmmArchiveObjReader::ReadChar(const char* name, char& value) {
  return Read(m_object, name, Value::ArchDataType_Char, &Value::GetChar, value);
}

int CCmmArchiveObjReader::ReadUInt32(const char* name, unsigned& value) {
  return Read(m_object, name, Value::ArchDataType_UInt32, &Value::GetUInt32, value);
}

int CCmmArchiveObjReader::ReadInt32(const char* name, int& value) {
  return Read(m_object, name, Value::ArchDataType_Int32, &Value::GetInt32, value);
}

const wchar_t* CCmmArchiveObjReader::ReadRawString(const char* name) {
  const wchar_t* text = nullptr;
  Read(m_object, name, Value::ArchDataType_String, &Value::GetString, text);
  return text;
}

int CCmmArchiveObjReader::ReadInt32Value(const char* name) {
  int value = -1;
  ReadInt32(name, value);
  return value;
}

ICmmArchiveObjReader* MakeArchiveObjReader(const unsigned char* data, unsigned size) {
  if (!data || size == 0) return nullptr;
  ICmmArchiveObject* object = CCmmArchiveService::ParseStream(data, size, ICmmArchiveStream::StreamType_Xml);
  return object ? new CCmmArchiveObjReader(object) : nullptr;
}

void FreeArchiveObjReader(ICmmArchiveObjReader* reader) {
  const std::unique_ptr<CCmmArchiveObjReader> own(static_cast<CCmmArchiveObjReader*>(reader));
  if (own) CCmmArchiveService::FreeArchiveObject(own->GetArchiveObject());
}

}  // namespace Cmm
