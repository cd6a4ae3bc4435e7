// Every message of the catalogue with its fields, in the order of archive/catalogue/messages.tsv, from which
// this file is generated.

#include "archive/catalogue/CatalogueTable.h"

#include "archive/catalogue/ClockMessages.h"
#include "archive/catalogue/PostMessages.h"

namespace Cmm::Archive {
namespace {

#define FIELD(MESSAGE, NAME) FieldOf<&MESSAGE::Get_##NAME, &MESSAGE::Set_##NAME>(#NAME)

constexpr MessageField kFieldsOf_CQXMBMessage_Letter[] = {
    FIELD(CQXMBMessage_Letter, Stamp),
    FIELD(CQXMBMessage_Letter, Text),
};

constexpr MessageField kFieldsOf_CQXMBMessage_Parcel[] = {
    FIELD(CQXMBMessage_Parcel, Weight),
    FIELD(CQXMBMessage_Parcel, Count),
    FIELD(CQXMBMessage_Parcel, Time),
    FIELD(CQXMBMessage_Parcel, Number),
    FIELD(CQXMBMessage_Parcel, Sender),
    FIELD(CQXMBMessage_Parcel, Receiver),
    FIELD(CQXMBMessage_Parcel, ReturnAddress),
};

constexpr MessageField kFieldsOf_CQXMessage_LetterReturned[] = {
    FIELD(CQXMessage_LetterReturned, Reason),
};

constexpr MessageField kFieldsOf_CQXMBMessage_Alarm[] = {
    FIELD(CQXMBMessage_Alarm, Tune),
};

constexpr MessageField kFieldsOf_CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging[] = {
    FIELD(CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging, Bell),
};

constexpr MessageField kFieldsOf_CQXMBMessage_QuarterStruck[] = {
    FIELD(CQXMBMessage_QuarterStruck, Time),
};

#undef FIELD

constexpr MessageClass kMessageClasses[] = {
    {"post", 101, "CQXMBMessage_Letter", "com.post.letter", kFieldsOf_CQXMBMessage_Letter,
     New<CQXMBMessage_Letter>},
    {"post", 102, "CQXMBMessage_Parcel", "com.post.parcel", kFieldsOf_CQXMBMessage_Parcel,
     New<CQXMBMessage_Parcel>},
    {"post", 103, "CQXMessage_LetterReturned", "com.post.returned", kFieldsOf_CQXMessage_LetterReturned,
     New<CQXMessage_LetterReturned>},
    {"clock", 1, "QXIPCMessage_Tick", "com.clock.tick", {}, New<QXIPCMessage_Tick>},
    {"clock", 103, "CQXMBMessage_Alarm", "com.clock.alarm", kFieldsOf_CQXMBMessage_Alarm,
     New<CQXMBMessage_Alarm>},
    {"clock", 201, "CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging",
     "com.clock.quarter_of_the_hour.has.struck.and.the.bell.is.ringing",
     kFieldsOf_CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging,
     New<CQXMBMessage_QuarterOfTheHourHasStruckAndTheBellIsRinging>},
    {"clock", 201, "CQXMBMessage_QuarterStruck",
     "com.clock.quarter_of_the_hour.has.struck.and.the.bell.is.ringing", kFieldsOf_CQXMBMessage_QuarterStruck,
     New<CQXMBMessage_QuarterStruck>},
};

}  // namespace

std::span<const MessageClass> MessageClasses() {
  return kMessageClasses;
}

}  // namespace Cmm::Archive
