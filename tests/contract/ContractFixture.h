#pragma once

// A freshly loaded DLL, a client in another process, and callbacks that keep what they receive.

#include <windows.h>

#include <atomic>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "gtest/gtest.h"
#include "tests/contract/Sdk.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

namespace velm_test {

// What the callbacks received. They run while the client's line is being sent, so that a test which has
// read the client's answer to a line sees all of it.
struct TakenRecords {
  std::atomic<int> general{0};
  std::atomic<int> emptyGeneral{0};
  std::atomic<int> outOfOrder{0};  // general notifications whose value is not the one before plus 1
  std::atomic<int> lastFamily{0};  // of the three families that share SdkStatusInfo
  SdkNotifyInfo notify{};
  std::tuple<SdkPresenceInfo, SdkAudioInfo, SdkStatusInfo, SdkConfAudioInfo, SdkConfEventInfo, SdkPTEventInfo,
             SdkConfDeviceInfo, SdkUIControlInfo>
      family{};
};
inline TakenRecords g_taken;

inline void OnGeneral(const SdkNotifyInfo* info, const wchar_t* rawJson) {
  if (!info && !rawJson) {
    ++g_taken.emptyGeneral;
    return;
  }
  if (g_taken.general > 0 && info->value != g_taken.notify.value + 1) ++g_taken.outOfOrder;
  g_taken.notify = *info;
  ++g_taken.general;
}

template <typename Record, int kFamily = 0>
void OnFamily(const Record* record) {
  std::get<Record>(g_taken.family) = *record;
  g_taken.lastFamily = kFamily;
}

template <typename Record>
const Record& Taken() {
  return std::get<Record>(g_taken.family);
}

class ContractTest : public testing::Test {
 protected:
  static constexpr int kAnyHosts = -1;

  ContractTest() {
    g_taken.general = g_taken.emptyGeneral = g_taken.outOfOrder = g_taken.lastFamily = 0;
    g_taken.notify = {};
    g_taken.family = {};
    Uninstall();
  }
  ~ContractTest() override {
    if (m_client) {
      m_client->CloseInput();
      m_client->Wait();
      m_client.reset();
    }
    Uninstall();
  }

  // Starts the simulated client and waits until it takes commands.
  void StartClient(const std::vector<std::string>& options) {
    m_client = std::make_unique<ChildProcess>(ProgramBeside(L"velm_client_sim.exe"), options);
    ASSERT_TRUE(m_client->ReadLineWith("\"event\":\"ready\"")) << m_client->Errors();
  }

  static void Uninstall() {
    ChildProcess uninstall(ProgramBeside(L"velm_client_sim.exe"), {"uninstall"});
    EXPECT_EQ(uninstall.Wait(), 0U) << uninstall.Errors();
  }

  // Gives the client one line that sends something, and waits until its hosts have handled it.
  void Tell(const std::string& line, int hosts = 1) {
    ASSERT_TRUE(m_client->WriteLine(line));
    const auto sent = m_client->ReadLineWith("\"event\":\"sent\"");
    ASSERT_TRUE(sent) << line << ": " << m_client->Errors();
    if (hosts != kAnyHosts) {
      EXPECT_NE(sent->find("\"hosts\":" + std::to_string(hosts)), std::string::npos) << *sent;
    }
  }

  // The client's report of the next command, and the command's text in it.
  std::string NextCommandLine() {
    return m_client->ReadLineWith("\"event\":\"command\"").value_or("no command");
  }
  std::string NextCommand();

  void SetAllCallbacks() {
    m_sdk->SetIMPresenceCallBack(OnFamily<SdkPresenceInfo>);
    m_sdk->SetAudioCallBack(OnFamily<SdkAudioInfo>);
    m_sdk->SetScreenShareCallBack(OnFamily<SdkStatusInfo, 3>);
    m_sdk->SetConfChatCallBack(OnFamily<SdkStatusInfo, 4>);
    m_sdk->SetCameraCallBack(OnFamily<SdkStatusInfo, 5>);
    m_sdk->SetConfAudioCallBack(OnFamily<SdkConfAudioInfo>);
    m_sdk->SetConfEventCallBack(OnFamily<SdkConfEventInfo>);
    m_sdk->SetPTEventCallBack(OnFamily<SdkPTEventInfo>);
    m_sdk->SetConfDeviceCallBack(OnFamily<SdkConfDeviceInfo>);
    m_sdk->SetUIControlStatusCallBack(OnFamily<SdkUIControlInfo>);
    m_sdk->SetCallBackFunc(OnGeneral);
  }

  // Whether the device table that processes share has a record of this name.
  static bool TableHas(const std::wstring& name);

  std::unique_ptr<Sdk> m_sdk = std::make_unique<Sdk>();
  std::unique_ptr<ChildProcess> m_client;
};

}  // namespace velm_test
