#pragma once

// Clock messages.
//
// From the clock.
//
// Generated from archive/catalogue/messages.tsv. Class names, wire names, ids and the order of the fields are
// what every peer goes by: what is misspelt or looks mixed up here is so on the wire, and stays.

#include <cstdint>

#include "archive/catalogue/TemplateInstances.h"
#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

// 1 "com.clock.tick"
class CMM_EXPORT QXIPCMessage_Tick : public Cmm::Archive::CmmMessageTemplate_0 {
 public:
  QXIPCMessage_Tick();
  ~QXIPCMessage_Tick() override;
};

// 103 "com.clock.alarm"
// Shares its id with CQXMessage_LetterReturned. The door tells them apart.
class CMM_EXPORT CQXMBMessage_Alarm : public Cmm::Archive::CmmMessageTemplate_1<Cmm::CStringW> {
 public:
  CQXMBMessage_Alarm();
  ~CQXMBMessage_Alarm() override;

  Cmm::CStringW& Get_Tune();
  void Set_Tune(const Cmm::CStringW& value);
};

// 201 "com.clock.quarter_of_the_hour.has.struck.and.the.bell.is.ringing"
// Shares its id and its wire name with CQXMBMessage_QuarterStruck. The first one constructed wins.
class CMM_EXPORT CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging
    : public Cmm::Archive::CmmMessageTemplate_1<Cmm::CStringA> {
 public:
  CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging();
  ~CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging() override;

  Cmm::CStringA& Get_Bell();
  void Set_Bell(const Cmm::CStringA& value);
};

// 201 "com.clock.quarter_of_the_hour.has.struck.and.the.bell.is.ringing"
// Shares its id and its wire name with CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging. The first
// one constructed wins.
class CMM_EXPORT CQXMBMessage_QuarterStruck : public Cmm::Archive::CmmMessageTemplate_1<int64_t> {
 public:
  CQXMBMessage_QuarterStruck();
  ~CQXMBMessage_QuarterStruck() override;

  int64_t& Get_Time();
  void Set_Time(const int64_t& value);
};
