#include "sdk/ChannelRules.h"

#include <gtest/gtest.h>

#include <vector>

namespace Velm3rdSDK {
namespace {

struct VersionRow {
  ClientVersion version;
  bool audio;
  bool serviceMode;
};

class VersionRules : public testing::TestWithParam<VersionRow> {};

TEST_P(VersionRules, DecideByMajorAndMinorAlone) {
  EXPECT_EQ(SupportsAudioIpc(GetParam().version), GetParam().audio);
  EXPECT_EQ(SupportsServiceMode(GetParam().version), GetParam().serviceMode);
}

INSTANTIATE_TEST_SUITE_P(
    Table, VersionRules,
    testing::Values(VersionRow{{0, 0, 0, 0}, false, false},
                    VersionRow{{4, 65535, 65535, 65535}, false, false},
                    VersionRow{{5, 0, 0, 0}, false, false}, VersionRow{{5, 5, 9, 65535}, false, false},
                    VersionRow{{5, 6, 0, 0}, true, false},
                    VersionRow{{5, 7, 6, 0}, true, false},  // named in the log text
                    VersionRow{{5, 7, 9, 65535}, true, false}, VersionRow{{5, 8, 0, 0}, true, true},
                    VersionRow{{5, 65535, 0, 0}, true, true}, VersionRow{{6, 0, 0, 0}, true, true},
                    VersionRow{{65535, 0, 0, 0}, true, true}));

constexpr int kConnected = 1;
constexpr int kDisconnected = 4;

TEST(ChooseChannelId, TakesTheFirstActiveSession) {
  const std::vector<Session> sessions = {{0, kDisconnected}, {7, kSessionActive}, {9, kSessionActive}};
  EXPECT_EQ(ChooseChannelId(sessions), 7U);
}

TEST(ChooseChannelId, ActiveSessionWithId0Counts) {
  const std::vector<Session> sessions = {{0, kSessionActive}, {3, kSessionActive}};
  EXPECT_EQ(ChooseChannelId(sessions), 0U);
}

TEST(ChooseChannelId, WithNoActiveSessionIsTheNumberOfSessions) {
  const std::vector<Session> sessions = {{0, kDisconnected}, {65536, kConnected}, {5, kDisconnected}};
  EXPECT_EQ(ChooseChannelId(sessions), 3U);
}

TEST(ChooseChannelId, WithNoSessionAtAllIs0) {
  EXPECT_EQ(ChooseChannelId({}), 0U);
}

}  // namespace
}  // namespace Velm3rdSDK
