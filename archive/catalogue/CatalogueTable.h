#pragma once

// What the generated table of the catalogue is written in.

#include "archive/catalogue/catalogue.h"

namespace Cmm::Archive {

// A pair of accessors as functions on any message.
template <auto Get, auto Set>
struct Accessors;

template <typename Message, typename T, T& (Message::*Get)(), void (Message::*Set)(const T&)>
struct Accessors<Get, Set> {
  using Type = T;

  static const void* GetValue(CmmMessageTemplate_0& message) {
    return &(static_cast<Message&>(message).*Get)();
  }
  static void SetValue(CmmMessageTemplate_0& message, const void* value) {
    (static_cast<Message&>(message).*Set)(*static_cast<const T*>(value));
  }
};

template <typename T>
inline constexpr MessageFieldType kFieldType{};
template <>
inline constexpr MessageFieldType kFieldType<int> = MessageFieldType::i32;
template <>
inline constexpr MessageFieldType kFieldType<unsigned> = MessageFieldType::u32;
template <>
inline constexpr MessageFieldType kFieldType<int64_t> = MessageFieldType::i64;
template <>
inline constexpr MessageFieldType kFieldType<uint64_t> = MessageFieldType::u64;
template <>
inline constexpr MessageFieldType kFieldType<CStringA> = MessageFieldType::str;
template <>
inline constexpr MessageFieldType kFieldType<CStringW> = MessageFieldType::wstr;

template <auto Get, auto Set>
constexpr MessageField FieldOf(const char* name) {
  using Pair = Accessors<Get, Set>;
  return {name, kFieldType<typename Pair::Type>, Pair::GetValue, Pair::SetValue};
}

template <typename Message>
std::unique_ptr<CmmMessageTemplate_0> New() {
  return std::make_unique<Message>();
}

}  // namespace Cmm::Archive
