#pragma once

// Post messages.
//
// Between the sender and the receiver of letters & parcels: sent, received, returned and, as a last resort,
// forwarded.
//
// Generated from archive/catalogue/messages.tsv. Class names, wire names, ids and the order of the fields are
// what every peer goes by: what is misspelt or looks mixed up here is so on the wire, and stays.

#include <cstdint>

#include "archive/catalogue/TemplateInstances.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

// 101 "com.post.letter"
class CMM_EXPORT CQXMBMessage_Letter : public Cmm::Archive::CmmMessageTemplate_2<unsigned, Cmm::CStringW> {
 public:
  CQXMBMessage_Letter();
  ~CQXMBMessage_Letter() override;

  unsigned& Get_Stamp();
  void Set_Stamp(const unsigned& value);
  Cmm::CStringW& Get_Text();
  void Set_Text(const Cmm::CStringW& value);
};

// 102 "com.post.parcel"
// Peers weigh <in> grams & ounces, and round "up".
class CMM_EXPORT CQXMBMessage_Parcel
    : public Cmm::Archive::CmmMessageTemplate_7<int, unsigned, int64_t, uint64_t, Cmm::CStringA,
                                                Cmm::CStringW, Cmm::CStringA> {
 public:
  CQXMBMessage_Parcel();
  ~CQXMBMessage_Parcel() override;

  int& Get_Weight();
  void Set_Weight(const int& value);
  unsigned& Get_Count();
  void Set_Count(const unsigned& value);
  int64_t& Get_Time();
  void Set_Time(const int64_t& value);
  uint64_t& Get_Number();
  void Set_Number(const uint64_t& value);
  Cmm::CStringA& Get_Sender();
  void Set_Sender(const Cmm::CStringA& value);
  Cmm::CStringW& Get_Receiver();
  void Set_Receiver(const Cmm::CStringW& value);
  Cmm::CStringA& Get_ReturnAddress();
  void Set_ReturnAddress(const Cmm::CStringA& value);
};

// 103 "com.post.returned"
// Shares its id with CQXMBMessage_Alarm. The door tells them apart.
class CMM_EXPORT CQXMessage_LetterReturned : public Cmm::Archive::CmmMessageTemplate_1<unsigned> {
 public:
  CQXMessage_LetterReturned();
  ~CQXMessage_LetterReturned() override;

  unsigned& Get_Reason();
  void Set_Reason(const unsigned& value);
};
