#include "archive/catalogue/PostMessages.h"

#include "archive/catalogue/FirstConstruction.h"

using namespace Cmm::Archive;

CQXMBMessage_Letter::CQXMBMessage_Letter() : CmmMessageTemplate_2("com.post.letter", 101, "Stamp", "Text") {
  static std::atomic<int> s_firsttime{1};
  if (TakeFirstTime(s_firsttime))
    Service().AddPackageDefine2<unsigned, Cmm::CStringW>("com.post.letter", "Stamp", "Text");
}

CQXMBMessage_Letter::~CQXMBMessage_Letter() = default;

unsigned& CQXMBMessage_Letter::Get_Stamp() {
  return GetItem1();
}
void CQXMBMessage_Letter::Set_Stamp(const unsigned& value) {
  SetItem1(value);
}

Cmm::CStringW& CQXMBMessage_Letter::Get_Text() {
  return GetItem2();
}
void CQXMBMessage_Letter::Set_Text(const Cmm::CStringW& value) {
  SetItem2(value);
}

CQXMBMessage_Parcel::CQXMBMessage_Parcel()
    : CmmMessageTemplate_7("com.post.parcel", 102, "Weight", "Count", "Time", "Number", "Sender", "Receiver",
                           "ReturnAddress") {
  static std::atomic<int> s_firsttime{1};
  if (TakeFirstTime(s_firsttime))
    Service().AddPackageDefine7<int, unsigned, int64_t, uint64_t, Cmm::CStringA, Cmm::CStringW,
                                Cmm::CStringA>(
        "com.post.parcel", "Weight", "Count", "Time", "Number", "Sender", "Receiver", "ReturnAddress");
}

CQXMBMessage_Parcel::~CQXMBMessage_Parcel() = default;

int& CQXMBMessage_Parcel::Get_Weight() {
  return GetItem1();
}
void CQXMBMessage_Parcel::Set_Weight(const int& value) {
  SetItem1(value);
}

unsigned& CQXMBMessage_Parcel::Get_Count() {
  return GetItem2();
}
void CQXMBMessage_Parcel::Set_Count(const unsigned& value) {
  SetItem2(value);
}

int64_t& CQXMBMessage_Parcel::Get_Time() {
  return GetItem3();
}
void CQXMBMessage_Parcel::Set_Time(const int64_t& value) {
  SetItem3(value);
}

uint64_t& CQXMBMessage_Parcel::Get_Number() {
  return GetItem4();
}
void CQXMBMessage_Parcel::Set_Number(const uint64_t& value) {
  SetItem4(value);
}

Cmm::CStringA& CQXMBMessage_Parcel::Get_Sender() {
  return GetItem5();
}
void CQXMBMessage_Parcel::Set_Sender(const Cmm::CStringA& value) {
  SetItem5(value);
}

Cmm::CStringW& CQXMBMessage_Parcel::Get_Receiver() {
  return GetItem6();
}
void CQXMBMessage_Parcel::Set_Receiver(const Cmm::CStringW& value) {
  SetItem6(value);
}

Cmm::CStringA& CQXMBMessage_Parcel::Get_ReturnAddress() {
  return GetItem7();
}
void CQXMBMessage_Parcel::Set_ReturnAddress(const Cmm::CStringA& value) {
  SetItem7(value);
}

CQXMessage_LetterReturned::CQXMessage_LetterReturned()
    : CmmMessageTemplate_1("com.post.returned", 103, "Reason") {
  static std::atomic<int> s_firsttime{1};
  if (TakeFirstTime(s_firsttime))
    Service().AddPackageDefine1<unsigned>("com.post.returned", "Reason");
}

CQXMessage_LetterReturned::~CQXMessage_LetterReturned() = default;

unsigned& CQXMessage_LetterReturned::Get_Reason() {
  return GetItem1();
}
void CQXMessage_LetterReturned::Set_Reason(const unsigned& value) {
  SetItem1(value);
}
