#include "tools/client_simulator/Notification.h"

#include <gtest/gtest.h>

#include "tests/tools/ErrorOf.h"
#include "tools/common/Words.h"

namespace velm_sim {
namespace {

using velm_tools::ErrorOf;

std::string Text(std::string_view line) {
  return NotificationText(velm_tools::SplitWords(line));
}

TEST(NotificationTest, EveryFamilyWithAllItsKeys) {
  EXPECT_EQ(Text("presence 3 v2=4 reason=1"),
            R"({"commandId":1,"data":[{"PresenceStatus":3,"PresenceStatusV2":4,"extraReason":1}]})");
  EXPECT_EQ(Text("audio 5"), R"({"commandId":2,"data":[{"AudioCmd":5}]})");
  EXPECT_EQ(Text("share 1"), R"({"commandId":3,"data":[{"ScreenShareStatus":1}]})");
  EXPECT_EQ(Text("chat 1"), R"({"commandId":4,"data":[{"ConfChatStatus":1}]})");
  EXPECT_EQ(Text("camera 0"), R"({"commandId":5,"data":[{"CameraStatus":0}]})");
  EXPECT_EQ(Text("confaudio 2 computer=1"),
            R"({"commandId":6,"data":[{"ConfAudioStatus":2,"IsInComputerAudio":1}]})");
  EXPECT_EQ(Text("event 4 type=2"), R"({"commandId":7,"data":[{"ConfEvent":4}],"meetingType":2})");
  EXPECT_EQ(Text("pt 1"), R"({"commandId":8,"data":[{"PTEvent":1}]})");
  EXPECT_EQ(Text("device 2 type=1"), R"({"commandId":9,"data":[{"ConfDeviceStatus":2,"ConfDeviceType":1}]})");
  EXPECT_EQ(Text("ui 1 type=3"), R"({"commandId":10,"data":[{"UIControlStatus":1,"UIControlType":3}]})");
}

TEST(NotificationTest, CommonKeysStandBehindTheDataInTheOrderGiven) {
  EXPECT_EQ(
      Text("audio -1 result=0:OK from=2 device=\"My \\\"set\" guid={1-2} meeting=1=2 count=0x10"),
      R"({"commandId":2,"data":[{"AudioCmd":-1}],"result":"0:OK","from":2,"deviceName":"My \"set","deviceGUID":"{1-2}","meetingId":"1=2","activeMeetingsCount":16})");
  EXPECT_EQ(Text("pt 0 device="), R"({"commandId":8,"data":[{"PTEvent":0}],"deviceName":""})");
}

TEST(NotificationTest, WhatIsWrongIsSaid) {
  EXPECT_EQ(ErrorOf([] { Text("audio"); }), "'audio' needs a number: the value of AudioCmd");
  EXPECT_EQ(ErrorOf([] { Text("audio 2147483648"); }),
            "AudioCmd '2147483648' is out of range: -2147483648 to 2147483647");
  EXPECT_EQ(ErrorOf([] { Text("audio 1 v2=1"); }),
            "'audio' does not take 'v2=1'; it takes from= device= guid= meeting= count= result=");
  EXPECT_EQ(ErrorOf([] { Text("ui 1 loud"); }),
            "'ui' does not take 'loud'; it takes type= from= device= guid= meeting= count= result=");
  EXPECT_EQ(ErrorOf([] { Text("pt 1 from=x"); }), "from 'x' is not a number");
  EXPECT_EQ(ErrorOf([] { Text("pt 1 from=1 from=2"); }), "'from=' is given twice");
}

}  // namespace
}  // namespace velm_sim
