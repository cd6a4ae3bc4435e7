#include <atomic>
#include <thread>

#include "tests/common/LogTesting.h"
#include "tests/support/WaitUntil.h"

namespace {

using logging::LogMessage;

// The text of a message box, which is then closed; empty when none came up.
std::wstring AnswerMessageBox(const wchar_t* title) {
  HWND box = nullptr;
  if (!WaitUntil([&] { return (box = FindWindowW(L"#32770", title)) != nullptr; })) return {};
  constexpr int kTextItem = 0xFFFF;
  std::wstring text(1024, L'\0');
  WaitUntil([&] { return GetDlgItem(box, kTextItem) != nullptr; });
  text.resize(static_cast<size_t>(
      GetWindowTextW(GetDlgItem(box, kTextItem), text.data(), static_cast<int>(text.size()))));
  PostMessageW(box, WM_COMMAND, IDOK, 0);
  return text;
}

class LogDialog : public velm_test::LogTest {
 protected:
  LogDialog() {
    LeaveOutItems();
    EXPECT_TRUE(LogTo(File(L"a.log")));
    testing::internal::CaptureStderr();
  }
  ~LogDialog() override { testing::internal::GetCapturedStderr(); }

  static bool HasBox() { return FindWindowW(L"#32770", L"Fatal error") != nullptr; }
};

TEST_F(LogDialog, NoneIsShownUnlessAllowed) {
  LogMessage("/a", 1, 4).stream() << "text";
  EXPECT_FALSE(HasBox());
}

TEST_F(LogDialog, NoneIsShownForAnotherSeverity) {
  logging::SetShowErrorDialogs(true);
  LogMessage("/a", 1, 3).stream() << "text";
  LogMessage("/a", 1, 5).stream() << "text";
  EXPECT_FALSE(HasBox());
}

TEST_F(LogDialog, ReportHandlerTakesItsPlace) {
  static std::atomic<int> reports;
  reports = 0;
  logging::SetShowErrorDialogs(true);
  logging::SetLogReportHandler([](const std::string&) { ++reports; });
  LogMessage("/a", 1, 4).stream() << "text";
  EXPECT_EQ(reports, 1);
}

TEST_F(LogDialog, MessageBoxShowsTheTextWhenThereIsNoProgramForIt) {
  logging::SetShowErrorDialogs(true);
  std::wstring shown;
  std::thread user([&] { shown = AnswerMessageBox(L"Fatal error"); });
  SetLastError(4711);
  LogMessage("/a", 1, 4).stream() << "Gr\xC3\xBC\xC3\x9F"
                                     "e";
  EXPECT_EQ(GetLastError(), 4711u);
  user.join();
  EXPECT_EQ(shown,
            L"[ERROR_REPORT:a(1)] Gr\x00FC\x00DF"
            L"e\n");
  EXPECT_FALSE(HasBox());
}

TEST_F(LogDialog, TextTooLongForACommandLineIsShownInAMessageBox) {
  logging::SetShowErrorDialogs(true);
  std::wstring shown;
  std::thread user([&] { shown = AnswerMessageBox(L"Fatal error"); });
  LogMessage("/a", 1, 4).stream() << std::string(40000, 'x');
  user.join();
  EXPECT_TRUE(shown.starts_with(L"[ERROR_REPORT:a(1)] xxx")) << shown.size();
}

}  // namespace
