#include "sdk/Client3rdSDKIPCClient.h"

#include <windows.h>

#include <memory>

#include "tests/sdk/IpcClientTesting.h"

namespace Velm3rdSDK {
namespace {

using testing::ElementsAre;
using velm_test::Frame;
using velm_test::FrameOf;
using velm_test::PipePeer;

constexpr const char* kPrefix = "com.velm.ipc.client3rdsdk_";

class RecordingSink : public IClient3rdSDKIPCClientSink {
 public:
  void OnClient3rdSDKServerConnected(uint32_t id) override { calls.Add(L"connected " + std::to_wstring(id)); }
  void OnClient3rdSDKServerDisconnected(uint32_t id) override {
    calls.Add(L"disconnected " + std::to_wstring(id));
  }
  void OnClient3rdSDKClientExitConfirmed(uint32_t, int) override { calls.Add(L"exit"); }
  void OnClient3rdSDKServerCmdNotify(uint32_t id, const Cmm::CStringT<wchar_t>& text) override {
    calls.Add(L"notify " + std::to_wstring(id) + L" " + text.c_str());
  }

  CallList calls;
};

std::string Request(uint32_t id, const std::string& attributeText) {
  return "<com.velm.app.3rd.clientsdk.send3rdsdkcmd.request ChannelId=\"" + std::to_string(id) +
         "\" SDKCmdRequest=\"" + attributeText + "\" version=\"10000\"/>\n";
}

class ServiceModeClientTest : public testing::Test {
 protected:
  ServiceModeClientTest() { client->SetSink(&sink); }
  ~ServiceModeClientTest() override { client->Disconnect(); }

  PipePeer ServeConnected() {
    PipePeer server = ServeChannel(kPrefix, id);
    client->Connect(id);
    EXPECT_TRUE(server.AwaitClient());
    EXPECT_TRUE(ReadAnnouncement(server));
    return server;
  }
  std::wstring Id() const { return std::to_wstring(id); }

  uint32_t id = NewChannelId();
  RecordingSink sink;
  std::shared_ptr<CClient3rdSDKIPCClient> client = std::make_shared<CClient3rdSDKIPCClient>();
};

TEST_F(ServiceModeClientTest, AChannelIdOfZeroMakesTheNameEndInZero) {
  LogCapture log;
  id = 0;
  PipePeer server = ServeConnected();
  EXPECT_EQ(client->GetChannelID(), 0u);
  EXPECT_THAT(log.Texts(), ElementsAre(L"[CClient3rdSDKIPCClient::Connect] uChannelID=0",
                                       L"[CClient3rdSDKIPCClient::InitConnection]",
                                       L"[CClient3rdSDKIPCClient::InitConnection] connected. m_uChannelID=0, "
                                       L"m_strChannelName=com.velm.ipc.client3rdsdk_0"));
}

TEST_F(ServiceModeClientTest, ACommandIsOneFrameOfType40525AndIsLogged) {
  PipePeer server = ServeConnected();
  LogCapture log;
  EXPECT_NE(client->SendClient3rdSDKCmdRequest(L"{\"commandId\":1}"), 0);
  const std::string payload = Request(id, "{&quot;commandId&quot;:1}");
  EXPECT_EQ(server.Read(payload.size() + 8), FrameOf(40525, payload));
  EXPECT_THAT(log.Texts(), ElementsAre(L"[CClient3rdSDKIPCClient::SendClient3rdSDKCmdRequest] m_uChannelID=" +
                                       Id() + L", strClientSDKCmd:{\"commandId\":1}"));
}

TEST_F(ServiceModeClientTest, WithoutAServerCommandsWaitAndItTriesAgainWithoutAWindowRequest) {
  LogCapture log;
  client->Connect(id);
  EXPECT_EQ(client->SendClient3rdSDKCmdRequest(L"waits"), 1);
  EXPECT_TRUE(WaitUntil([&] { return log.Texts().size() >= 6; }));
  PipePeer server = ServeChannel(kPrefix, id);
  EXPECT_TRUE(sink.calls.Await(L"connected " + Id()));
  EXPECT_TRUE(ReadAnnouncement(server));
  EXPECT_EQ(server.ReadFrame(), (Frame{40525, Request(id, "waits")}));
}

TEST_F(ServiceModeClientTest, Of1001WaitingCommandsTheNewest1000GoOut) {
  for (int i = 0; i <= 1000; ++i)
    client->SendClient3rdSDKCmdRequest(std::to_wstring(i).c_str());
  PipePeer server = ServeConnected();
  for (int i = 1; i <= 1000; ++i)
    ASSERT_EQ(server.ReadFrame(), (Frame{40525, Request(0, std::to_string(i))}));
  EXPECT_EQ(server.Read(1, 50), "");
}

TEST_F(ServiceModeClientTest, ANotificationReachesTheSink) {
  PipePeer server = ServeConnected();
  LogCapture log;
  ASSERT_TRUE(server.Write(
      FrameOf(40526,
              "<com.velm.app.3rd.clientsdk.send3rdsdkcmd.notify ChannelId=\"3\" SDKCmdNotify=\"text\" "
              "version=\"10000\"/>")));
  EXPECT_TRUE(sink.calls.Await(L"notify 3 text"));
  EXPECT_TRUE(WaitUntil([&] { return log.Texts().size() >= 3; }));
  EXPECT_THAT(log.Texts(), ElementsAre(L"[CClient3rdSDKIPCClient::OnMessageReceived] m_uChannelID=" + Id() +
                                           L", type:40526 len:100",
                                       L"[CClient3rdSDKIPCClient::ProcessMessage]message._type: 40526",
                                       L"[CClient3rdSDKIPCClient::HandleClient3rdSDKCmdNotify] uChannelID=" +
                                           Id() + L", strClientSDKCmdNotify:text"));
}

TEST_F(ServiceModeClientTest, TheGoodbyeOfTheOtherChannelIsUnknownHere) {
  PipePeer server = ServeConnected();
  LogCapture log;
  ASSERT_TRUE(server.Write(FrameOf(40353, "<com.velm.app.log.clientexit version=\"10000\"/>")));
  EXPECT_TRUE(WaitUntil(
      [&] { return log.Has(L"[CClient3rdSDKIPCClient::ProcessMessage] Received Unknown message:40353"); }));
  EXPECT_THAT(sink.calls.Get(), ElementsAre(L"connected " + Id()));
}

TEST_F(ServiceModeClientTest, ABrokenPipeIsLoggedToldAndMadeAnew) {
  PipePeer server = ServeConnected();
  LogCapture log;
  server.Close();
  EXPECT_TRUE(sink.calls.Await(L"disconnected " + Id()));
  server = ServeChannel(kPrefix, id);
  EXPECT_TRUE(sink.calls.Await(L"connected " + Id(), 2));
  EXPECT_TRUE(log.Has(L"[CClient3rdSDKIPCClient::OnChannelError] m_uChannelID=" + Id()));
  EXPECT_TRUE(log.Has(L"[CClient3rdSDKIPCClient::Disconnect] m_uChannelID=" + Id()));
}

}  // namespace
}  // namespace Velm3rdSDK
