#include "archive/ArchiveValue.h"

#include <bit>
#include <cstring>
#include <cwchar>

#include "archive/ArchiveText.h"

#undef GetObject

namespace Cmm {
namespace {

// Room for `length` units; the zeros that have to stand behind them are in place.
wchar_t* NewText(size_t length) {
  wchar_t* text = new wchar_t[length + CCmmArchiveVarivant::kStringPadding];
  wmemset(text + length, 0, CCmmArchiveVarivant::kStringPadding);
  return text;
}

wchar_t* CopyText(const wchar_t* source) {
  const size_t length = std::wcslen(source);
  wchar_t* text = NewText(length);
  wmemcpy(text, source, length);
  return text;
}

}  // namespace

CCmmArchiveVarivant::CCmmArchiveVarivant(const CCmmArchiveVarivant& other) {
  Assign(other);
}

CCmmArchiveVarivant& CCmmArchiveVarivant::operator=(const CCmmArchiveVarivant& other) {
  Assign(other);
  return *this;
}

CCmmArchiveVarivant::~CCmmArchiveVarivant() {
  ClearData();
}

float CCmmArchiveVarivant::GetFloat() const {
  return std::bit_cast<float>(GetUInt32());
}

double CCmmArchiveVarivant::GetDouble() const {
  return std::bit_cast<double>(Payload());
}

ICmmRefableObject* CCmmArchiveVarivant::GetObject() const {
  return m_type == ArchDataType_Object ? reinterpret_cast<ICmmRefableObject*>(m_payload) : nullptr;
}

void CCmmArchiveVarivant::SetInt32(int value) {
  Store(ArchDataType_Int32, static_cast<uint32_t>(value));
}

void CCmmArchiveVarivant::SetUInt32(unsigned value) {
  Store(ArchDataType_UInt32, value);
}

void CCmmArchiveVarivant::SetBool(int value) {
  Store(ArchDataType_Bool, static_cast<uint32_t>(value));
}

void CCmmArchiveVarivant::SetChar(char value) {
  Store(ArchDataType_Char, static_cast<uint8_t>(value));
}

void CCmmArchiveVarivant::SetString(const wchar_t* text) {
  StoreText(text ? CopyText(text) : nullptr);
}

void CCmmArchiveVarivant::SetUtf8String(const char* text) {
  if (!text) return StoreText(nullptr);
  const size_t size = std::strlen(text);
  wchar_t* wide = NewText(size);  // no text has more units in UTF-16 than bytes in UTF-8
  const size_t length = Archive::WideFromUtf8(text, size, wide);
  wmemset(wide + length, 0, size - length);
  StoreText(wide);
}

void CCmmArchiveVarivant::SetFloat(float value) {
  Store(ArchDataType_Float, std::bit_cast<uint32_t>(value));
}

void CCmmArchiveVarivant::SetDouble(double value) {
  Store(ArchDataType_Double, std::bit_cast<uint64_t>(value));
}

void CCmmArchiveVarivant::SetInt64(int64_t value) {
  Store(ArchDataType_Int64, static_cast<uint64_t>(value));
}

void CCmmArchiveVarivant::SetUInt64(uint64_t value) {
  Store(ArchDataType_UInt64, value);
}

void CCmmArchiveVarivant::SetObject(ICmmRefableObject* object) {
  Store(ArchDataType_Object, reinterpret_cast<uint64_t>(object));
}

void CCmmArchiveVarivant::Assign(const CCmmArchiveVarivant& other) {
  const wchar_t* text = other.m_type == ArchDataType_String ? other.GetString() : nullptr;
  m_type = other.m_type;
  m_payload = other.m_payload;  // callers rely on the old payload being left alone: it is not cleared here
  if (m_type != ArchDataType_String) return;
  m_payload = 0;
  SetString(text);
}

void CCmmArchiveVarivant::ClearData() {
  if (m_payload == 0) return;
  if (m_type == ArchDataType_String) {
    delete[] reinterpret_cast<wchar_t*>(m_payload);
    m_payload = 0;
  } else if (m_type == ArchDataType_Object) {
    reinterpret_cast<ICmmRefableObject*>(m_payload)->Release();
    m_payload = 0;
  }
}

void CCmmArchiveVarivant::Clear() {
  ClearData();
  m_type = ArchDataType_Empty;
}

void CCmmArchiveVarivant::Store(ArchDataType type, uint64_t payload) {
  ClearData();
  m_type = type;
  m_payload = payload;
}

// The copy is made before the old text goes, so that a value may be set from its own text.
void CCmmArchiveVarivant::StoreText(const wchar_t* ownedText) {
  Store(ArchDataType_String, reinterpret_cast<uint64_t>(ownedText));
}

}  // namespace Cmm
