#include "archive/catalogue/ClockMessages.h"

#include "archive/catalogue/FirstConstruction.h"

using namespace Cmm::Archive;

QXIPCMessage_Tick::QXIPCMessage_Tick() : CmmMessageTemplate_0("com.clock.tick", 1) {
  static std::atomic<int> s_firsttime{1};
  if (TakeFirstTime(s_firsttime))
    Service().AddPackageDefine0("com.clock.tick");
}

QXIPCMessage_Tick::~QXIPCMessage_Tick() = default;

CQXMBMessage_Alarm::CQXMBMessage_Alarm() : CmmMessageTemplate_1("com.clock.alarm", 103, "Tune") {
  static std::atomic<int> s_firsttime{1};
  if (TakeFirstTime(s_firsttime))
    Service().AddPackageDefine1<Cmm::CStringW>("com.clock.alarm", "Tune");
}

CQXMBMessage_Alarm::~CQXMBMessage_Alarm() = default;

Cmm::CStringW& CQXMBMessage_Alarm::Get_Tune() {
  return GetItem1();
}
void CQXMBMessage_Alarm::Set_Tune(const Cmm::CStringW& value) {
  SetItem1(value);
}

CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging::
    CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging()
    : CmmMessageTemplate_1("com.clock.quarter_of_the_hour.has.struck.and.the.bell.is.ringing", 201, "Bell") {
  static std::atomic<int> s_firsttime{1};
  if (TakeFirstTime(s_firsttime))
    Service().AddPackageDefine1<Cmm::CStringA>(
        "com.clock.quarter_of_the_hour.has.struck.and.the.bell.is.ringing", "Bell");
}

CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging::
    ~CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging() = default;

Cmm::CStringA& CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging::Get_Bell() {
  return GetItem1();
}
void CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging::Set_Bell(const Cmm::CStringA& value) {
  SetItem1(value);
}

CQXMBMessage_QuarterStruck::CQXMBMessage_QuarterStruck()
    : CmmMessageTemplate_1("com.clock.quarter_of_the_hour.has.struck.and.the.bell.is.ringing", 201, "Time") {
  static std::atomic<int> s_firsttime{1};
  if (TakeFirstTime(s_firsttime))
    Service().AddPackageDefine1<int64_t>("com.clock.quarter_of_the_hour.has.struck.and.the.bell.is.ringing",
                                         "Time");
}

CQXMBMessage_QuarterStruck::~CQXMBMessage_QuarterStruck() = default;

int64_t& CQXMBMessage_QuarterStruck::Get_Time() {
  return GetItem1();
}
void CQXMBMessage_QuarterStruck::Set_Time(const int64_t& value) {
  SetItem1(value);
}
