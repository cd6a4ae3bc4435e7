#include "sdk/AudioSDKIPCClient.h"

#include <windows.h>

#include <functional>
#include <memory>
#include <thread>

#include "tests/sdk/IpcClientTesting.h"

namespace Velm3rdSDK {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using velm_test::Frame;
using velm_test::FrameHeader;
using velm_test::FrameOf;
using velm_test::PipePeer;

constexpr const char* kPrefix = "com.velm.ipc.audiosdk_";

class RecordingSink : public IAudioSDKIPCClientSink {
 public:
  void OnServerConnected(uint32_t id) override {
    calls.Add(L"connected " + std::to_wstring(id));
    if (onConnected) onConnected();
  }
  void OnServerDisconnected(uint32_t id) override {
    calls.Add(L"disconnected " + std::to_wstring(id));
    if (onDisconnected) onDisconnected();
  }
  void OnClientExitConfirmed(uint32_t id, int timedOut) override {
    calls.Add(L"exit " + std::to_wstring(id) + L" " + std::to_wstring(timedOut));
  }
  void OnAudioCmdNotify(uint32_t id, const Cmm::CStringT<wchar_t>& text) override {
    calls.Add(L"notify " + std::to_wstring(id) + L" " + text.c_str());
    if (onNotify) onNotify();
  }

  CallList calls;
  std::function<void()> onConnected;
  std::function<void()> onDisconnected;
  std::function<void()> onNotify;
};

std::string AudioRequest(uint32_t id, const std::string& attributeText) {
  return "<com.velm.app.3rd.audiosdk.sendaudiocmd.request ChannelId=\"" + std::to_string(id) +
         "\" AudioCmdRequest=\"" + attributeText + "\" version=\"10000\"/>\n";
}

std::string AudioNotify(uint32_t id, const std::string& attributeText) {
  return FrameOf(40521, "<com.velm.app.3rd.audiosdk.sendaudiocmd.notify ChannelId=\"" + std::to_string(id) +
                            "\" AudioCmdNotify=\"" + attributeText + "\" version=\"10000\"/>\n");
}

class AudioClientTest : public testing::Test {
 protected:
  AudioClientTest() { client->SetSink(&sink); }
  ~AudioClientTest() override {
    if (client) client->Disconnect();
  }

  PipePeer Serve() { return ServeChannel(kPrefix, id); }
  // A server that the client is connected to and whose announcement has been read.
  PipePeer ServeConnected() {
    PipePeer server = Serve();
    client->Connect(id);
    EXPECT_TRUE(server.AwaitClient());
    EXPECT_TRUE(ReadAnnouncement(server));
    return server;
  }
  std::wstring Id() const { return std::to_wstring(id); }
  bool AwaitConnected(long count = 1) { return sink.calls.Await(L"connected " + Id(), count); }
  bool AwaitDisconnected(long count = 1) { return sink.calls.Await(L"disconnected " + Id(), count); }

  const uint32_t id = NewChannelId();
  RecordingSink sink;
  std::shared_ptr<CAudioSDKIPCClient> client = std::make_shared<CAudioSDKIPCClient>();
};

// ---- Connecting

TEST_F(AudioClientTest, ConnectOfZeroMakesTheNameEndInTheProcessId) {
  PipePeer server = ServeChannel(kPrefix, GetCurrentProcessId());
  LogCapture log;
  client->Connect(0);
  EXPECT_TRUE(server.AwaitClient());
  EXPECT_EQ(client->GetChannelID(), GetCurrentProcessId());
  EXPECT_EQ(client->IsConnected(), 1u);
  const std::wstring pid = std::to_wstring(GetCurrentProcessId());
  EXPECT_TRUE(log.Has(L"[CAudioSDKIPCClient::Connect] uChannelID=" + pid));
  EXPECT_TRUE(log.Has(L"[CAudioSDKIPCClient::InitConnection] connected. m_uChannelID=" + pid +
                      L", m_strChannelName=com.velm.ipc.audiosdk_" + pid));
  EXPECT_THAT(sink.calls.Get(), ElementsAre(L"connected " + pid));
}

TEST_F(AudioClientTest, ToBeConnectedMeansThatThePipeCouldBeOpened) {
  PipePeer server = Serve();
  client->Connect(id);
  EXPECT_EQ(client->IsConnected(), 1u);  // the server has read nothing and said nothing
}

TEST_F(AudioClientTest, ConnectWhenConnectedDoesNothing) {
  PipePeer server = ServeConnected();
  LogCapture log;
  client->Connect(id + 1);
  EXPECT_EQ(client->GetChannelID(), id);
  EXPECT_THAT(log.Texts(), IsEmpty());
}

TEST_F(AudioClientTest, WithoutHelperAndPipeItTriesAgainAtEveryTickWithoutAWord) {
  LogCapture log;
  client->Connect(id);
  EXPECT_TRUE(WaitUntil([&] { return log.Texts().size() >= 6; }));
  client->Disconnect();
  auto texts = log.Texts();
  EXPECT_EQ(texts.front(), L"[CAudioSDKIPCClient::Connect] uChannelID=" + Id());
  texts.erase(texts.begin());
  EXPECT_THAT(texts, testing::Each(L"[CAudioSDKIPCClient::InitConnection]"));
  EXPECT_EQ(client->IsConnected(), 0u);
  EXPECT_THAT(sink.calls.Get(), IsEmpty());
}

TEST_F(AudioClientTest, APipeThatAppearsIsFoundAtATick) {
  client->Connect(id);
  EXPECT_EQ(client->IsConnected(), 0u);
  PipePeer server = Serve();
  EXPECT_TRUE(AwaitConnected());
  EXPECT_TRUE(ReadAnnouncement(server));
}

// A window of the helper process that keeps the requests posted to it.
class HelperWindow {
 public:
  HelperWindow() : m_thread([this] { Run(); }) {
    EXPECT_TRUE(WaitUntil([this] { return m_ready.load(); }));
  }
  ~HelperWindow() {
    PostThreadMessageW(m_threadId, WM_QUIT, 0, 0);
    m_thread.join();
  }
  std::vector<std::pair<WPARAM, LPARAM>> Requests() const {
    const std::lock_guard lock(m_mutex);
    return m_requests;
  }

 private:
  void Run() {
    m_threadId = GetCurrentThreadId();
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.lpszClassName = L"VelmPTApp_VVHOST_HostWindow";
    RegisterClassW(&windowClass);
    const HWND window = CreateWindowExW(0, windowClass.lpszClassName, L"", WS_POPUP, 0, 0, 0, 0, nullptr,
                                        nullptr, nullptr, nullptr);
    m_ready = true;
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
      if (message.message == 0xA40) {
        const std::lock_guard lock(m_mutex);
        m_requests.emplace_back(message.wParam, message.lParam);
      }
    DestroyWindow(window);
    UnregisterClassW(windowClass.lpszClassName, nullptr);
  }

  mutable std::mutex m_mutex;
  std::vector<std::pair<WPARAM, LPARAM>> m_requests;
  DWORD m_threadId = 0;
  std::atomic<bool> m_ready = false;
  std::thread m_thread;
};

TEST_F(AudioClientTest, TheHelperIsAskedForTheChannelAtEveryAttempt) {
  HelperWindow helper;
  LogCapture log;
  client->Connect(id);
  EXPECT_TRUE(WaitUntil([&] { return helper.Requests().size() >= 3; }));
  client->Disconnect();
  EXPECT_THAT(helper.Requests(), testing::Each(std::pair<WPARAM, LPARAM>(id, 0)));
  EXPECT_TRUE(
      log.Has(L"[CAudioSDKIPCClient::InitConnection] post window message to vvhost process to create new "
              L"channel"));
}

// ---- Sending

TEST_F(AudioClientTest, AnAudioCommandIsOneFrameOfType40520) {
  PipePeer server = ServeConnected();
  EXPECT_NE(client->SendAudioCmdRequest(L"{\"commandId\":2,\"deviceName\":\"\u00e9<&>\"}"), 0);
  const std::string payload =
      AudioRequest(id, "{&quot;commandId&quot;:2,&quot;deviceName&quot;:&quot;\xC3\xA9&lt;&amp;&gt;&quot;}");
  EXPECT_EQ(server.Read(payload.size() + 8), FrameOf(40520, payload));
}

TEST_F(AudioClientTest, StartAndStopRequestsCarryTheChannelIdAndLogTheirResult) {
  PipePeer server = ServeConnected();
  LogCapture log;
  EXPECT_EQ(client->RequestToStartNewChannel(77), 1);
  EXPECT_EQ(client->RequestToStopChannel(78), 1);
  EXPECT_EQ(
      server.ReadFrame(),
      (Frame{40351, "<com.velm.app.log.startchannel ChannelId=\"77\" GroupId=\"0\" version=\"10000\"/>\n"}));
  EXPECT_EQ(server.ReadFrame(),
            (Frame{40352, "<com.velm.app.log.stopchannel ChannelId=\"78\" version=\"10000\"/>\n"}));
  EXPECT_THAT(log.Texts(),
              ElementsAre(L"[CAudioSDKIPCClient::RequestToStartNewChannel] uChannelID=77 m_bConnected=1",
                          L"[CAudioSDKIPCClient::RequestToStartNewChannel] uChannelID=77 bRet=1",
                          L"[CAudioSDKIPCClient::RequestToStopChannel] bRet=1, uChannelID=78"));
}

TEST_F(AudioClientTest, WhatIsSentBeforeConnectFollowsTheAnnouncementInOrder) {
  EXPECT_EQ(client->SendAudioCmdRequest(L"one"), 1);
  EXPECT_EQ(client->RequestToStartNewChannel(2), 1);
  PipePeer server = ServeConnected();
  EXPECT_EQ(server.ReadFrame(), (Frame{40520, AudioRequest(0, "one")}));  // the id that was known then
  EXPECT_EQ(server.ReadFrame()->type, 40351);
}

TEST_F(AudioClientTest, Of1001WaitingMessagesTheNewest1000GoOutInOrder) {
  for (int i = 0; i <= 1000; ++i)
    EXPECT_EQ(client->SendAudioCmdRequest(std::to_wstring(i).c_str()), 1);
  PipePeer server = ServeConnected();
  for (int i = 1; i <= 1000; ++i)
    ASSERT_EQ(server.ReadFrame(), (Frame{40520, AudioRequest(0, std::to_string(i))}));
  EXPECT_EQ(server.Read(1, 50), "");
}

TEST_F(AudioClientTest, WhatTheSinkSendsWhenConnectedGoesAheadOfWhatWaited) {
  client->SendAudioCmdRequest(L"waited");
  sink.onConnected = [&] { client->SendAudioCmdRequest(L"from the sink"); };
  PipePeer server = ServeConnected();
  EXPECT_EQ(server.ReadFrame(), (Frame{40520, AudioRequest(id, "from the sink")}));
  EXPECT_EQ(server.ReadFrame(), (Frame{40520, AudioRequest(0, "waited")}));
}

TEST_F(AudioClientTest, DisconnectOfAClientThatNeverConnectedKeepsWhatWaits) {
  client->SendAudioCmdRequest(L"kept");
  client->Disconnect();
  PipePeer server = ServeConnected();
  EXPECT_EQ(server.ReadFrame(), (Frame{40520, AudioRequest(0, "kept")}));
}

// ---- Receiving

TEST_F(AudioClientTest, ANotificationReachesTheSinkAtATickWithTheMessagesChannelId) {
  PipePeer server = ServeConnected();
  LogCapture log;
  ASSERT_TRUE(server.Write(AudioNotify(99, "{&quot;a&quot;:1}")));
  EXPECT_TRUE(sink.calls.Await(L"notify 99 {\"a\":1}"));
  EXPECT_TRUE(WaitUntil([&] { return log.Texts().size() >= 3; }));
  EXPECT_THAT(log.Texts(), ElementsAre(L"[CAudioSDKIPCClient::OnMessageReceived] m_uChannelID=" + Id() +
                                           L", type:40521 len:115",
                                       L"[CAudioSDKIPCClient::ProcessMessage]message._type: 40521",
                                       L"[CAudioSDKIPCClient::HandleAudioCmdNotify] uChannelID=" + Id() +
                                           L", strAudioCmdNotify:{\"a\":1}"));
}

TEST_F(AudioClientTest, NotificationsKeepTheirOrder) {
  PipePeer server = ServeConnected();
  std::string burst;
  for (int i = 0; i < 500; ++i)
    burst += AudioNotify(1, std::to_string(i));
  ASSERT_TRUE(server.Write(burst));
  EXPECT_TRUE(sink.calls.Await(L"notify 1 499"));
  const auto calls = sink.calls.Get();
  ASSERT_EQ(calls.size(), 501u);
  for (int i = 0; i < 500; ++i)
    ASSERT_EQ(calls[static_cast<size_t>(i) + 1], L"notify 1 " + std::to_wstring(i));
}

TEST_F(AudioClientTest, ANotificationWithoutASinkIsParsedAndDropped) {
  client->SetSink(nullptr);
  PipePeer server = ServeConnected();
  LogCapture log;
  ASSERT_TRUE(server.Write(AudioNotify(1, "unheard")));
  EXPECT_TRUE(WaitUntil([&] {
    return log.Has(L"[CAudioSDKIPCClient::HandleAudioCmdNotify] uChannelID=" + Id() +
                   L", strAudioCmdNotify:unheard");
  }));
}

TEST_F(AudioClientTest, SubChannelsAreOnlyLogged) {
  PipePeer server = ServeConnected();
  LogCapture log;
  ASSERT_TRUE(server.Write(
      FrameOf(40354, "<com.velm.app.log.subchannel_add ChannelId=\"5\" GroupId=\"0\" version=\"10000\"/>") +
      FrameOf(40355, "<com.velm.app.log.subchannel_remove ChannelId=\"6\" version=\"10000\"/>")));
  EXPECT_TRUE(
      WaitUntil([&] { return log.Has(L"[CAudioSDKIPCClient::HandleSubChannelRemove] uChannelID=6"); }));
  EXPECT_TRUE(log.Has(L"[CAudioSDKIPCClient::HandleSubChannelAdd] uChannelID=5"));
  EXPECT_THAT(sink.calls.Get(), ElementsAre(L"connected " + Id()));
}

TEST_F(AudioClientTest, AnUnknownTypeIsLoggedAndFreed) {
  PipePeer server = ServeConnected();
  LogCapture log;
  ASSERT_TRUE(server.Write(FrameOf(40356, "whatever") + FrameHeader(0, 40521)));
  EXPECT_TRUE(WaitUntil(
      [&] { return log.Has(L"[CAudioSDKIPCClient::ProcessMessage] Received Unknown message:-1"); }));
  EXPECT_TRUE(log.Has(L"[CAudioSDKIPCClient::ProcessMessage] Received Unknown message:40356"));
}

TEST_F(AudioClientTest, ANotificationThatDoesNotParseIsToldWithTheFieldsThatWereReadUntilThen) {
  PipePeer server = ServeConnected();
  ASSERT_TRUE(server.Write(FrameOf(40521, "not xml") + FrameOf(40521, AudioRequest(7, "of another message")) +
                           AudioNotify(8, "good")));
  EXPECT_TRUE(sink.calls.Await(L"notify 8 good"));
  EXPECT_THAT(sink.calls.Get(),
              ElementsAre(L"connected " + Id(), L"notify 0 ", L"notify 7 ", L"notify 8 good"));
}

TEST_F(AudioClientTest, TheSinkMaySendFromItsCallback) {
  PipePeer server = ServeConnected();
  sink.onNotify = [&] { client->SendAudioCmdRequest(L"answer"); };
  ASSERT_TRUE(server.Write(AudioNotify(1, "ask")));
  EXPECT_EQ(server.ReadFrame(), (Frame{40520, AudioRequest(id, "answer")}));
}

// ---- The goodbye

TEST_F(AudioClientTest, AGoodbyeWithoutAnAnswerTimesOutOnceAfter50Milliseconds) {
  PipePeer server = ServeConnected();
  LogCapture log;
  const ULONGLONG start = GetTickCount64();
  EXPECT_EQ(client->NotifyClientExit(), 1);
  EXPECT_TRUE(sink.calls.Await(L"exit " + Id() + L" 1"));
  EXPECT_GE(GetTickCount64() - start, 40u);
  EXPECT_EQ(server.ReadFrame(), (Frame{40353, "<com.velm.app.log.clientexit version=\"10000\"/>\n"}));
  Sleep(200);
  EXPECT_EQ(sink.calls.Count(L"exit " + Id() + L" 1"), 1);
  EXPECT_THAT(log.Texts(),
              ElementsAre(L"[CAudioSDKIPCClient::OnTimer] notify client exit time out",
                          L"[CAudioSDKIPCClient::OnNotifyTimerProcess] notify client exit time out"));
}

TEST_F(AudioClientTest, AGoodbyeThatIsConfirmedInTimeHasNoTimeOut) {
  PipePeer server = ServeConnected();
  const std::string confirmation = FrameOf(40353, "<com.velm.app.log.clientexit version=\"10000\"/>");
  ASSERT_TRUE(server.Write(confirmation));  // there already when the goodbye is said
  EXPECT_TRUE(sink.calls.Await(L"exit " + Id() + L" 0"));
  // The next tick is up to 50 ms away and the time-out exactly that, so several goodbyes are said.
  int inTime = 0;
  for (int i = 0; i < 10; ++i) {
    const long before = sink.calls.Count(L"exit " + Id() + L" 0");
    client->NotifyClientExit();
    ASSERT_TRUE(server.Write(confirmation));
    ASSERT_TRUE(sink.calls.Await(L"exit " + Id() + L" 0", before + 1));
    inTime += sink.calls.Count(L"exit " + Id() + L" 1") == 0;
  }
  EXPECT_GT(inTime, 0);
}

TEST_F(AudioClientTest, AGoodbyeWhileNotConnectedWaitsAndTimesOut) {
  EXPECT_EQ(client->NotifyClientExit(), 1);
  EXPECT_TRUE(sink.calls.Await(L"exit 0 1"));
  PipePeer server = ServeConnected();
  EXPECT_EQ(server.ReadFrame()->type, 40353);
}

TEST_F(AudioClientTest, DisconnectEndsTheGoodbyeToo) {
  PipePeer server = ServeConnected();
  client->NotifyClientExit();
  client->Disconnect();
  const auto before = sink.calls.Get();
  Sleep(150);
  EXPECT_EQ(sink.calls.Get(), before);
}

// ---- The peer goes

TEST_F(AudioClientTest, ABrokenPipeIsToldAndThenMadeAnew) {
  PipePeer server = ServeConnected();
  server.Close();
  EXPECT_TRUE(AwaitDisconnected());
  server = Serve();
  EXPECT_TRUE(AwaitConnected(2));
  EXPECT_TRUE(ReadAnnouncement(server));
  EXPECT_EQ(sink.calls.Get(),
            (std::vector<std::wstring>{L"connected " + Id(), L"disconnected " + Id(), L"connected " + Id()}));
}

TEST_F(AudioClientTest, WhatWaitedWhenThePipeBrokeIsLostAndWhatCameAfterSurvives) {
  PipePeer server = ServeConnected();
  // The sink is told between the break and the Disconnect that empties the queue.
  sink.onDisconnected = [&] { client->SendAudioCmdRequest(L"lost"); };
  server.Close();
  EXPECT_TRUE(AwaitDisconnected());
  client->SendAudioCmdRequest(L"kept");  // held up by the connection lock until the queue is empty
  server = Serve();
  EXPECT_TRUE(AwaitConnected(2));
  EXPECT_TRUE(ReadAnnouncement(server));
  EXPECT_EQ(server.ReadFrame(), (Frame{40520, AudioRequest(id, "kept")}));
  EXPECT_EQ(server.Read(1, 50), "");
}

TEST_F(AudioClientTest, WhatWasReceivedBeforeTheBreakIsDeliveredBeforeItIsTold) {
  PipePeer server = ServeConnected();
  ASSERT_TRUE(server.Write(AudioNotify(1, "last") + FrameHeader(50, 40521) + "half a frame"));
  server.Close();
  EXPECT_TRUE(AwaitDisconnected());
  EXPECT_THAT(sink.calls.Get(), ElementsAre(L"connected " + Id(), L"notify 1 last", L"disconnected " + Id()));
}

TEST_F(AudioClientTest, AServerThatGoesBeforeItReadsTheAnnouncementIsABreakAsAnyOther) {
  {
    PipePeer server = Serve();
    client->Connect(id);
    EXPECT_EQ(client->IsConnected(), 1u);
  }
  EXPECT_TRUE(AwaitDisconnected());
  PipePeer server = Serve();
  EXPECT_TRUE(AwaitConnected(2));
}

TEST_F(AudioClientTest, AServerThatGoesInTheMiddleOfACommandLosesIt) {
  PipePeer server = ServeConnected();
  client->SendAudioCmdRequest(std::wstring(100000, L'c').c_str());
  EXPECT_EQ(server.Read(1000).size(), 1000u);
  server.Close();
  EXPECT_TRUE(AwaitDisconnected());
  server = Serve();
  EXPECT_TRUE(AwaitConnected(2));
  EXPECT_TRUE(ReadAnnouncement(server));
  EXPECT_EQ(server.Read(1, 50), "");
}

TEST_F(AudioClientTest, AServerThatGoesDuringTheGoodbyeLeavesNoTimeOutBehind) {
  PipePeer server = ServeConnected();
  client->NotifyClientExit();
  server.Close();
  EXPECT_TRUE(AwaitDisconnected());
  server = Serve();
  EXPECT_TRUE(AwaitConnected(2));
  EXPECT_LE(sink.calls.Count(L"exit " + Id() + L" 1"), 1);
}

TEST_F(AudioClientTest, GarbageEndsTheConnectionAndTheNextTickMakesItAnew) {
  for (const std::string& garbage : {FrameHeader(0xFFFFFFFF, 40521), FrameHeader(0xFFFFFFF8, 1)}) {
    const long before = sink.calls.Count(L"connected " + Id());
    PipePeer server = Serve();
    client->Connect(id);
    ASSERT_TRUE(AwaitConnected(before + 1));
    ASSERT_TRUE(server.Write(garbage));
    EXPECT_TRUE(AwaitDisconnected(before + 1));
    EXPECT_TRUE(ReadAnnouncement(server));
    EXPECT_TRUE(server.IsBroken());
  }
}

TEST_F(AudioClientTest, TwoHundredReconnectsDeliverEveryMessageOnce) {
  constexpr int kRounds = 200;
  client->Connect(id);
  for (int round = 0; round < kRounds; ++round) {
    PipePeer server = Serve();
    ASSERT_TRUE(AwaitConnected(round + 1)) << round;
    ASSERT_TRUE(ReadAnnouncement(server)) << round;
    client->SendAudioCmdRequest(std::to_wstring(round).c_str());
    ASSERT_EQ(server.ReadFrame(), (Frame{40520, AudioRequest(id, std::to_string(round))}));
    ASSERT_TRUE(server.Write(AudioNotify(1, std::to_string(round))));
    ASSERT_TRUE(sink.calls.Await(L"notify 1 " + std::to_wstring(round)));
    server.Close();
    ASSERT_TRUE(AwaitDisconnected(round + 1)) << round;
  }
  EXPECT_EQ(sink.calls.Get().size(), 3u * kRounds);
}

// ---- Ending

TEST_F(AudioClientTest, DisconnectIsLoggedAndGivesAMessageOnItsWayTheTimeToLeave) {
  PipePeer server = ServeConnected();
  LogCapture log;
  client->SendAudioCmdRequest(L"last");
  client->Disconnect();
  EXPECT_THAT(log.Texts(), ElementsAre(L"[CAudioSDKIPCClient::Disconnect] m_uChannelID=" + Id()));
  EXPECT_EQ(server.ReadFrame(), (Frame{40520, AudioRequest(id, "last")}));
  EXPECT_TRUE(server.IsBroken());
  EXPECT_EQ(client->IsConnected(), 0u);
}

TEST_F(AudioClientTest, AfterDisconnectNothingIsToldAnymore) {
  PipePeer server = ServeConnected();
  ASSERT_TRUE(server.Write(AudioNotify(1, "in the queue")));
  client->Disconnect();
  const auto before = sink.calls.Get();
  Sleep(150);
  EXPECT_EQ(sink.calls.Get(), before);
}

TEST_F(AudioClientTest, TheSinkMayDisconnectFromItsCallback) {
  PipePeer server = ServeConnected();
  sink.onNotify = [&] { client->Disconnect(); };
  ASSERT_TRUE(server.Write(AudioNotify(1, "first") + AudioNotify(1, "dropped by the disconnect")));
  EXPECT_TRUE(sink.calls.Await(L"notify 1 first"));
  EXPECT_TRUE(WaitUntil([&] { return client->IsConnected() == 0; }));
  EXPECT_TRUE(server.ReadFrame() == std::nullopt);
  Sleep(120);
  EXPECT_THAT(sink.calls.Get(), ElementsAre(L"connected " + Id(), L"notify 1 first"));
}

TEST_F(AudioClientTest, TheOwnerMayLetGoOfTheClientInItsCallback) {
  PipePeer server = ServeConnected();
  std::weak_ptr<CAudioSDKIPCClient> watched = client;
  sink.onNotify = [&] {
    client->Disconnect();
    client.reset();
  };
  ASSERT_TRUE(server.Write(AudioNotify(1, "end")));
  EXPECT_TRUE(WaitUntil([&] { return watched.expired(); }));
  EXPECT_TRUE(server.IsBroken());
}

TEST_F(AudioClientTest, ABreakDuringDisconnectDoesNotHoldItUp) {
  for (int round = 0; round < 20; ++round) {
    PipePeer server = ServeConnected();
    std::thread breaker([&] {
      Sleep(static_cast<DWORD>(45 + round));
      server.Close();
    });
    client->Disconnect();
    breaker.join();
    EXPECT_EQ(client->IsConnected(), 0u);
  }
}

TEST_F(AudioClientTest, DisconnectWhileTheSinkIsCalledElsewhereWaitsForIt) {
  PipePeer server = ServeConnected();
  std::atomic<bool> entered = false;
  std::atomic<bool> left = false;
  sink.onNotify = [&] {
    entered = true;
    Sleep(200);
    left = true;
  };
  ASSERT_TRUE(server.Write(AudioNotify(1, "slow")));
  ASSERT_TRUE(WaitUntil([&] { return entered.load(); }));
  client->Disconnect();
  EXPECT_TRUE(left);
}

TEST_F(AudioClientTest, AnErrorThatNoTickHasSeenYetIsToldAfterTheNextConnect) {
  PipePeer server = ServeConnected();
  sink.onNotify = [&] {
    server.Close();
    Sleep(100);  // the tick holds the connection lock, so the channel's error waits for it
    client->Disconnect();
  };
  ASSERT_TRUE(server.Write(AudioNotify(1, "x")));
  ASSERT_TRUE(WaitUntil([&] { return client->IsConnected() == 0; }));
  server = Serve();
  client->Connect(id);
  EXPECT_TRUE(AwaitConnected(2));
  EXPECT_EQ(client->IsConnected(), 1u);
}

TEST_F(AudioClientTest, ItMayConnectAgainAfterDisconnect) {
  for (int round = 1; round <= 5; ++round) {
    PipePeer server = ServeConnected();
    client->SendAudioCmdRequest(L"again");
    EXPECT_EQ(server.ReadFrame(), (Frame{40520, AudioRequest(id, "again")}));
    client->Disconnect();
    EXPECT_EQ(sink.calls.Count(L"connected " + Id()), round);
  }
}

TEST_F(AudioClientTest, ManyThreadsMaySendWhileThePipeComesAndGoes) {
  client->Connect(id);
  std::atomic<bool> stop = false;
  std::vector<std::thread> senders;
  for (int i = 0; i < 4; ++i)
    senders.emplace_back([&] {
      while (!stop) {
        EXPECT_EQ(client->SendAudioCmdRequest(L"x"), 1);
        Sleep(1);
      }
    });
  for (int round = 0; round < 10; ++round) {
    PipePeer server = Serve();
    ASSERT_TRUE(AwaitConnected(round + 1));
    ASSERT_TRUE(ReadAnnouncement(server));
    for (int i = 0; i < 20; ++i)
      ASSERT_EQ(server.ReadFrame()->type, 40520);
    server.Close();
    ASSERT_TRUE(AwaitDisconnected(round + 1));
  }
  stop = true;
  for (std::thread& sender : senders)
    sender.join();
}

}  // namespace
}  // namespace Velm3rdSDK
