#include "archive/ArchiveObjWritter.h"

#include <memory>

#include "archive/ArchiveField.h"
#include "archive/ArchiveService.h"
#include "archive/ArchiveText.h"

namespace Cmm {
namespace {

using Value = CCmmArchiveVarivant;

template <typename T>
int Write(ICmmArchiveObject* root, const char* name, Value::ArchDataType type, void (Value::*set)(T),
          T value) {
  Value* leaf = Archive::FindField(root, name, type);
  if (!leaf) return 0;
  (leaf->*set)(value);
  return 1;
}

}  // namespace

CCmmArchiveObjWritter::CCmmArchiveObjWritter(ICmmArchiveObject* object) : m_object(object) {}

CCmmArchiveObjWritter::~CCmmArchiveObjWritter() = default;

int CCmmArchiveObjWritter::WriteUInt64(const char* name, const uint64_t& value) {
  return Write(m_object, name, Value::ArchDataType_UInt64, &Value::SetUInt64, value);
}

int CCmmArchiveObjWritter::WriteInt64(const char* name, const int64_t& value) {
  return Write(m_object, name, Value::ArchDataType_Int64, &Value::SetInt64, value);
}

int CCmmArchiveObjWritter::WriteBool(const char* name, const int& value) {
  return Write(m_object, name, Value::ArchDataType_Bool, &Value::SetBool, value);
}

int CCmmArchiveObjWritter::WriteDouble(const char* name, const double& value) {
  return Write(m_object, name, Value::ArchDataType_Double, &Value::SetDouble, value);
}

int CCmmArchiveObjWritter::WriteFloat(const char* name, const float& value) {
  return Write(m_object, name, Value::ArchDataType_Float, &Value::SetFloat, value);
}

int CCmmArchiveObjWritter::WriteStringW(const char* name, const CStringT<wchar_t>& value) {
  return WriteRawString(name, value.c_str());
}

int CCmmArchiveObjWritter::WriteStringA(const char* name, const CStringT<char>& value) {
  return Write(m_object, name, Value::ArchDataType_String, &Value::SetUtf8String, value.c_str());
}

int CCmmArchiveObjWritter::WriteChar(const char* name, const char& value) {
  return Write(m_object, name, Value::ArchDataType_Char, &Value::SetChar, value);
}

int CCmmArchiveObjWritter::WriteUInt32(const char* name, const unsigned& value) {
  return Write(m_object, name, Value::ArchDataType_UInt32, &Value::SetUInt32, value);
}

int CCmmArchiveObjWritter::WriteInt32(const char* name, const int& value) {
  return WriteInt32Value(name, value);
}

int CCmmArchiveObjWritter::WriteRawString(const char* name, const wchar_t* value) {
  return Write(m_object, name, Value::ArchDataType_String, &Value::SetString, value);
}

int CCmmArchiveObjWritter::WriteInt32Value(const char* name, int value) {
  return Write(m_object, name, Value::ArchDataType_Int32, &Value::SetInt32, value);
}

ICmmArchiveObjWritter* MakeArchiveObjWritter(const char* packageName) {
  if (!packageName) return nullptr;
  ICmmArchiveObject* object = CCmmArchiveService::MakeObject(Archive::WideFromUtf8(packageName), -1);
  return object ? new CCmmArchiveObjWritter(object) : nullptr;
}

void FreeArchiveObjWritter(ICmmArchiveObjWritter* writter) {
  const std::unique_ptr<CCmmArchiveObjWritter> own(static_cast<CCmmArchiveObjWritter*>(writter));
  if (own) CCmmArchiveService::FreeArchiveObject(own->GetArchiveObject());
}

}  // namespace Cmm
