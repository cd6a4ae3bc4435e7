#include "common/client/utility/src/ipc/PipeSecurity.h"

#include <sddl.h>

#include <string>

#include "gtest/gtest.h"

namespace Cmm {
namespace {

TEST(PipeSecurityText, GivesTheLogonSessionFullAccessAndNobodyElse) {
  EXPECT_EQ(PipeSecurityText(L"S-1-5-5-0-4711"), L"D:(A;OICI;GA;;;S-1-5-5-0-4711)");
}

TEST(PipeSecurityText, IsCutToTheBufferOf88Characters) {
  const std::wstring text = PipeSecurityText(std::wstring(100, L'9').c_str());
  EXPECT_EQ(text, L"D:(A;OICI;GA;;;" + std::wstring(73, L'9'));
}

TEST(LogonSessionSid, IsTheLogonIdentifierOfThisProcess) {
  EXPECT_TRUE(LogonSessionSid().starts_with(L"S-1-5-5-"));
}

TEST(MakePipeSecurity, GivesADescriptorWithOneEntryForTheLogonSession) {
  const UniqueLocalMemory descriptor = MakePipeSecurity();
  ASSERT_TRUE(descriptor);
  BOOL present = FALSE;
  BOOL defaulted = FALSE;
  PACL list = nullptr;
  ASSERT_TRUE(GetSecurityDescriptorDacl(descriptor.get(), &present, &list, &defaulted));
  ASSERT_TRUE(present && list);
  ASSERT_EQ(list->AceCount, 1);
  void* entry = nullptr;
  ASSERT_TRUE(GetAce(list, 0, &entry));
  const auto* const allowed = static_cast<const ACCESS_ALLOWED_ACE*>(entry);
  EXPECT_EQ(allowed->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
  EXPECT_EQ(allowed->Header.AceFlags, OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE);
  EXPECT_EQ(allowed->Mask, GENERIC_ALL);
  wchar_t* sid = nullptr;
  ASSERT_TRUE(ConvertSidToStringSidW(const_cast<DWORD*>(&allowed->SidStart), &sid));
  const UniqueLocalMemory owner(sid);
  EXPECT_EQ(LogonSessionSid(), sid);
}

}  // namespace
}  // namespace Cmm
