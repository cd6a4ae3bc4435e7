// The hidden window: what a WM_COPYDATA from the client does to the process's channel.

#include "sdk/MessageThread.h"

#include <windows.h>

#include <mutex>

#include "tests/sdk/ChannelFixture.h"
#include "tests/support/WaitUntil.h"

namespace Velm3rdSDK {
namespace {

std::mutex g_mutex;
std::vector<std::wstring> g_delivered;  // "general <json>", "raw <json>", "(null)" for an empty one

void Deliver(const wchar_t* kind, const wchar_t* json) {
  const std::lock_guard lock(g_mutex);
  g_delivered.push_back(std::wstring(kind) + (json ? json : L"(null)"));
}

struct DeliveringSink : ISdkRawSink {
  virtual ~DeliveringSink() = default;
  void OnRawMessage(const wchar_t* rawJson) override { Deliver(L"raw ", rawJson); }
};

class MessageThreadTest : public testing::Test {
 protected:
  MessageThreadTest() {
    g_delivered.clear();
    CSdkMsgChannel& channel = CSdkMsgChannel::Instance();
    channel.SetRawSink(&m_sink);
    channel.Callbacks() = SdkCallbacks();
    channel.Callbacks().general = [](const SdkNotifyInfo*, const wchar_t* rawJson) {
      Deliver(L"general ", rawJson);
    };
    SdkMsgChannelTestAccess{channel}.Features() = 0x3ff;
    StartMessageThread();
    EXPECT_TRUE(WaitUntil([] { return Answers(); }));
  }
  ~MessageThreadTest() override {
    StopAndAwait([] { StopMessageThread(); });
    CSdkMsgChannel& channel = CSdkMsgChannel::Instance();
    channel.SetRawSink(nullptr);
    channel.Callbacks() = SdkCallbacks();
    SdkMsgChannelTestAccess{channel}.Features() = 0;
  }

  static HWND Window() { return FindWindowW(kLauncherWindowClass, nullptr); }

  // The window exists a moment before it has its copy-data procedure, which alone answers 1 to this.
  static bool Answers() { return Window() && SendMessageW(Window(), WM_COPYDATA, 0, 0) == 1; }

  static LRESULT Send(std::string bytes, ULONG_PTR id = 10) {
    COPYDATASTRUCT data{id, static_cast<DWORD>(bytes.size()), bytes.data()};
    return SendMessageW(Window(), WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
  }

  using Delivered = std::vector<std::wstring>;
  static Delivered Taken() {
    const std::lock_guard lock(g_mutex);
    return g_delivered;
  }

 private:
  DeliveringSink m_sink;
};

constexpr const char kCamera[] = R"({"commandId":5})";  // with its terminator

TEST_F(MessageThreadTest, NotificationIsDeliveredAndAnswered0) {
  EXPECT_EQ(Send(std::string(kCamera, sizeof(kCamera))), 0);
  EXPECT_EQ(Taken(), (Delivered{LR"(raw {"commandId":5})", LR"(general {"commandId":5})"}));
}

TEST_F(MessageThreadTest, NullMessageIsAnswered1) {
  EXPECT_EQ(SendMessageW(Window(), WM_COPYDATA, 0, 0), 1);
  EXPECT_TRUE(Taken().empty());
}

TEST_F(MessageThreadTest, NullDataIsAnswered1) {
  COPYDATASTRUCT data{10, 0, nullptr};
  EXPECT_EQ(SendMessageW(Window(), WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)), 1);
  EXPECT_TRUE(Taken().empty());
}

TEST_F(MessageThreadTest, IdOtherThan10IsIgnoredAndAnswered1) {
  for (const ULONG_PTR id : {ULONG_PTR{0}, ULONG_PTR{9}, ULONG_PTR{11}, ULONG_PTR{0x10000000A}})
    EXPECT_EQ(Send(std::string(kCamera, sizeof(kCamera)), id), 1);
  EXPECT_TRUE(Taken().empty());
}

TEST_F(MessageThreadTest, SizeOf1IsAnEmptyNotificationWithNoFeatureTest) {
  SdkMsgChannelTestAccess{CSdkMsgChannel::Instance()}.Features() = 0;
  EXPECT_EQ(Send("x"), 0);
  EXPECT_EQ(Taken(), (Delivered{L"raw (null)", L"general (null)"}));
}

TEST_F(MessageThreadTest, LastByteIsOverwrittenSoALetterThereIsLost) {
  const std::string padded = "{\"commandId\":5}" + std::string(34, ' ') + "y";
  ASSERT_EQ(padded.size(), 50U);
  EXPECT_EQ(Send(padded), 0);
  ASSERT_EQ(Taken().size(), 2U);
  EXPECT_EQ(Taken()[0], L"raw {\"commandId\":5}" + std::wstring(34, L' '));

  EXPECT_EQ(Send("{\"commandId\":5}"), 0);  // the brace is lost, and it is no JSON any more
  EXPECT_EQ(Taken().size(), 2U);
}

TEST_F(MessageThreadTest, TextEndsAtItsFirstNul) {
  EXPECT_EQ(Send(std::string("{\"commandId\":5}\0garbage", 23)), 0);
  EXPECT_EQ(Taken().front(), LR"(raw {"commandId":5})");
}

TEST_F(MessageThreadTest, GarbageIsAnswered0AndDeliversNothing) {
  for (const std::string& text : {std::string("xx"), std::string(2, '\0'), std::string(1 << 20, '\xFF'),
                                  std::string(10000, '['), std::string("{\"commandId\":99999999999}") + '\0'})
    EXPECT_EQ(Send(text), 0);
  EXPECT_TRUE(Taken().empty());
}

TEST_F(MessageThreadTest, OtherMessagesGoToTheDefaultProcedure) {
  EXPECT_EQ(SendMessageW(Window(), WM_USER + 7, 1, 2), 0);
  EXPECT_EQ(SendMessageW(Window(), WM_GETTEXTLENGTH, 0, 0), 0);
  EXPECT_TRUE(Taken().empty());
}

TEST_F(MessageThreadTest, CallbacksRunOnTheWindowsThread) {
  static DWORD callbackThread = 0;
  CSdkMsgChannel::Instance().Callbacks().camera = [](const SdkStatusInfo*) {
    callbackThread = GetCurrentThreadId();
  };
  Send(std::string(kCamera, sizeof(kCamera)));
  EXPECT_EQ(callbackThread, GetWindowThreadProcessId(Window(), nullptr));
  EXPECT_NE(callbackThread, GetCurrentThreadId());
}

TEST_F(MessageThreadTest, StartingItAgainWhileItRunsStartsNothing) {
  const DWORD thread = GetWindowThreadProcessId(Window(), nullptr);
  StartMessageThread();
  Sleep(50);
  EXPECT_EQ(GetWindowThreadProcessId(Window(), nullptr), thread);
  EXPECT_EQ(FindWindowExW(nullptr, Window(), kLauncherWindowClass, nullptr), nullptr);
}

TEST_F(MessageThreadTest, WindowClassKeepsTheDefaultProcedure) {
  WNDCLASSW known{};
  // The class is registered for the whole process with a null instance, which is the executable's own.
  ASSERT_TRUE(GetClassInfoW(GetModuleHandleW(nullptr), kLauncherWindowClass, &known));
  EXPECT_EQ(known.lpfnWndProc, DefWindowProcW);
}

// ---- The class is known already

class ForeignClass {
 public:
  explicit ForeignClass(WNDPROC procedure) {
    // A global class is what GetClassInfoW finds for a null instance on every system.
    WNDCLASSW foreign{};
    foreign.style = CS_GLOBALCLASS;
    foreign.lpfnWndProc = procedure;
    foreign.hInstance = GetModuleHandleW(nullptr);
    foreign.lpszClassName = kLauncherWindowClass;
    UnregisterClassW(kLauncherWindowClass, GetModuleHandleW(nullptr));
    m_registered = RegisterClassW(&foreign) != 0;
  }
  ~ForeignClass() { UnregisterClassW(kLauncherWindowClass, GetModuleHandleW(nullptr)); }
  bool Registered() const { return m_registered; }

 private:
  bool m_registered = false;
};

void ExpectAWorkingThread() {
  StartMessageThread();
  EXPECT_TRUE(WaitUntil([] {
    const HWND window = FindWindowW(kLauncherWindowClass, nullptr);
    return window && SendMessageW(window, WM_COPYDATA, 0, 0) == 1;
  }));
  StopAndAwait([] { StopMessageThread(); });
}

TEST(MessageThreadClass, KnownWithTheDefaultProcedureIsUsedAsItIs) {
  const ForeignClass known(DefWindowProcW);
  ASSERT_TRUE(known.Registered());
  ExpectAWorkingThread();
}

TEST(MessageThreadClass, KnownWithAnotherProcedureIsReplaced) {
  const ForeignClass known([](HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcW(window, message, wParam, lParam);
  });
  ASSERT_TRUE(known.Registered());
  ExpectAWorkingThread();
}

}  // namespace
}  // namespace Velm3rdSDK
