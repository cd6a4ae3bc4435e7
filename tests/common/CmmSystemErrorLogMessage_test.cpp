#include "common/client/utility/src/CmmSystemErrorLogMessage.h"

#include "tests/common/LogTesting.h"

namespace {

using logging::SystemErrorLogMessage;
using testing::StartsWith;
using velm_test::Content;

class SystemErrorLog : public velm_test::LogTest {
 protected:
  SystemErrorLog() { LeaveOutItems(); }

  std::string Logged(uint32_t error, const char* module = nullptr) {
    EXPECT_TRUE(LogTo(File(L"a.log"), logging::LOG_TO_FILE, logging::DELETE_OLD_LOG_FILE));
    { SystemErrorLogMessage("/a", 1, logging::LOG_WARNING, error, module).stream() << "open"; }
    return Content(File(L"a.log"));
  }

  // The system's text for an error without the white space at its end.
  static std::string TextOf(DWORD error) {
    char text[256] = {};
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text, 256,
                   nullptr);
    std::string trimmed = text;
    while (!trimmed.empty() && std::isspace(static_cast<unsigned char>(trimmed.back())))
      trimmed.pop_back();
    return trimmed;
  }
};

TEST_F(SystemErrorLog, EndsInTheSystemsTextWithoutItsWhiteSpace) {
  ASSERT_NE(TextOf(ERROR_FILE_NOT_FOUND), "");
  EXPECT_EQ(Logged(ERROR_FILE_NOT_FOUND), "[WARNING:a(1)] open: " + TextOf(ERROR_FILE_NOT_FOUND) + "\n");
}

TEST_F(SystemErrorLog, InsertsOfATextAreNotFilledIn) {
  ASSERT_NE(TextOf(ERROR_BAD_EXE_FORMAT).find("%1"), std::string::npos);
  EXPECT_EQ(Logged(ERROR_BAD_EXE_FORMAT), "[WARNING:a(1)] open: " + TextOf(ERROR_BAD_EXE_FORMAT) + "\n");
}

TEST_F(SystemErrorLog, CodeWithoutATextSaysWhyThereIsNone) {
  EXPECT_EQ(Logged(0x2FFFFFFF), "[WARNING:a(1)] open: Error 317 while retrieving error 805306367\n");
}

TEST_F(SystemErrorLog, ModuleIsAskedForItsTexts) {
  // A module with a message table: the text of a code that the system itself has none for would come from
  // it; one that it lacks comes from the system.
  EXPECT_EQ(Logged(ERROR_FILE_NOT_FOUND, "kernel32.dll"),
            "[WARNING:a(1)] open: " + TextOf(ERROR_FILE_NOT_FOUND) + "\n");
}

TEST_F(SystemErrorLog, ModuleThatIsNotLoadedIsPassedOver) {
  EXPECT_EQ(Logged(ERROR_FILE_NOT_FOUND, "absent.dll"),
            "[WARNING:a(1)] open: " + TextOf(ERROR_FILE_NOT_FOUND) + "\n");
}

TEST_F(SystemErrorLog, LeavesTheLastErrorAlone) {
  ASSERT_TRUE(LogTo(File(L"a.log")));
  SetLastError(4711);
  { const SystemErrorLogMessage message("/a", 1, logging::LOG_INFO, 0x2FFFFFFF, "absent.dll"); }
  EXPECT_EQ(GetLastError(), 4711u);
}

}  // namespace
