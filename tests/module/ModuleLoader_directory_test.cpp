#include <cstring>
#include <string>

#include "gtest/gtest.h"
#include "module/ModuleLoader.h"

namespace Cmm::module {
namespace {

std::string g_path;   // what the system knows
DWORD g_claimed = 0;  // what it says the length is; 0: the true one
int g_calls = 0;

DWORD WINAPI FakeModuleFileName(HMODULE, char* buffer, DWORD size) {
  ++g_calls;
  const std::string cut = g_path.substr(0, size);
  std::memcpy(buffer, cut.c_str(), std::min<size_t>(cut.size() + 1, size));
  return g_claimed ? std::exchange(g_claimed, 0) : static_cast<DWORD>(cut.size());
}

std::string DirectoryOf(const std::string& path, DWORD claimed = 0) {
  g_path = path;
  g_claimed = claimed;
  g_calls = 0;
  return FindModuleDirectory(FakeModuleFileName).c_str();
}

TEST(FindModuleDirectory, KeepsTheLastBackslash) {
  EXPECT_EQ(DirectoryOf("C:\\Program Files\\Host\\host.exe"), "C:\\Program Files\\Host\\");
  EXPECT_EQ(DirectoryOf("C:\\host.exe"), "C:\\");
  EXPECT_EQ(DirectoryOf("host.exe"), "");
  EXPECT_EQ(DirectoryOf(""), "");
}

TEST(FindModuleDirectory, APathOf512CharactersIsCutTo511AndNotAskedForAgain) {
  const std::string directory = "C:\\" + std::string(480, 'd') + "\\";
  EXPECT_EQ(DirectoryOf(directory + std::string(100, 'n') + ".exe"), directory);
  EXPECT_EQ(g_calls, 1);
}

TEST(FindModuleDirectory, ALengthOf512OrMoreAsksOnceMoreForUpTo1023) {
  const std::string directory = "C:\\" + std::string(600, 'd') + "\\";
  EXPECT_EQ(DirectoryOf(directory + "host.exe", 512), directory);
  EXPECT_EQ(g_calls, 2);
}

}  // namespace
}  // namespace Cmm::module
