#include "host/PrivilegeReduction.h"

#include <map>
#include <string>
#include <vector>

#include "common/client/utility/src/UniqueHandle.h"
#include "gmock/gmock.h"
#include "host/PrivilegeApi.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/DebugOutput.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A system that does what the fixture says. Its tokens are events, so that closing one can be seen.
class PrivilegeScript : public testing::Test {
 protected:
  static constexpr DWORD kError = 4711;

  PrivilegeScript() { self = this; }
  ~PrivilegeScript() override { self = nullptr; }

  static PrivilegeScript* self;

  // The step that fails, by its name; empty for none.
  std::string failing;
  DWORD probeError = ERROR_INSUFFICIENT_BUFFER;
  bool probeSucceeds = false;
  DWORD sidSize = 28;

  std::vector<std::string> calls;
  std::vector<std::string> reports;
  std::map<std::string, HANDLE> handles;
  int liveSids = 0;
  int liveBlocks = 0;
  std::vector<SID_AND_ATTRIBUTES> disabled;
  std::vector<std::vector<DWORD>> sids;  // authority, sub-authorities
  DWORD restrictFlags = 0;
  DWORD labelAttributes = 0;
  DWORD labelLength = 0;
  TOKEN_INFORMATION_CLASS labelClass{};
  DWORD processAccess = 0;
  DWORD tokenAccess = 0;
  bool blockWasZeroed = false;

  bool Step(const char* name) {
    calls.emplace_back(name);
    SetLastError(kError);
    return failing != name;
  }

  BOOL Give(const char* name, HANDLE* out) {
    if (!Step(name)) return FALSE;
    *out = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    handles[name] = *out;
    return TRUE;
  }

  // False for what was never given, too.
  bool IsOpen(const char* name) const {
    const auto given = handles.find(name);
    DWORD flags = 0;
    return given != handles.end() && GetHandleInformation(given->second, &flags) != 0;
  }

  static HANDLE WINAPI OpenTheProcess(DWORD access, BOOL inherit, DWORD) {
    self->processAccess = access;
    EXPECT_FALSE(inherit);
    HANDLE process = nullptr;
    return self->Give("process", &process) ? process : nullptr;
  }
  static BOOL WINAPI OpenToken(HANDLE, DWORD access, HANDLE* token) {
    self->tokenAccess = access;
    return self->Give("token", token);
  }
  static BOOL WINAPI Duplicate(HANDLE token, DWORD access, SECURITY_ATTRIBUTES* security,
                               SECURITY_IMPERSONATION_LEVEL level, TOKEN_TYPE type, HANDLE* duplicate) {
    EXPECT_EQ(token, self->handles["token"]);
    EXPECT_EQ(access, static_cast<DWORD>(MAXIMUM_ALLOWED));
    EXPECT_EQ(security, nullptr);
    EXPECT_EQ(level, SecurityImpersonation);
    EXPECT_EQ(type, TokenImpersonation);
    return self->Give("duplicate", duplicate);
  }
  static BOOL WINAPI AllocateSid(SID_IDENTIFIER_AUTHORITY* authority, BYTE count, DWORD a, DWORD b, DWORD c,
                                 DWORD d, DWORD e, DWORD f, DWORD g, DWORD h, PSID* sid) {
    const bool label = authority->Value[5] == 16;
    if (!self->Step(label ? "medium" : "administrators")) return FALSE;
    std::vector<DWORD> parts = {authority->Value[5], a, b};
    parts.resize(count + 1u);
    self->sids.push_back(parts);
    ++self->liveSids;
    return AllocateAndInitializeSid(authority, count, a, b, c, d, e, f, g, h, sid);
  }
  static PVOID WINAPI FreeTheSid(PSID sid) {
    --self->liveSids;
    return FreeSid(sid);
  }
  static BOOL WINAPI WellKnown(WELL_KNOWN_SID_TYPE type, PSID domain, PSID sid, DWORD* size) {
    EXPECT_EQ(static_cast<int>(type), 106);
    EXPECT_EQ(domain, nullptr);
    if (!sid) {
      EXPECT_EQ(*size, 0u);
      self->calls.emplace_back("probe");
      *size = self->sidSize;
      SetLastError(self->probeError);
      return self->probeSucceeds;
    }
    EXPECT_EQ(*size, self->sidSize);
    self->blockWasZeroed = *static_cast<BYTE*>(sid) == 0;
    return self->Step("well known");
  }
  static PVOID WINAPI Allocate(HANDLE heap, DWORD flags, SIZE_T size) {
    EXPECT_EQ(heap, GetProcessHeap());
    EXPECT_EQ(size, self->sidSize);
    if (!self->Step("heap")) return nullptr;
    ++self->liveBlocks;
    return HeapAlloc(heap, flags, size);
  }
  static BOOL WINAPI Free(HANDLE heap, DWORD flags, PVOID block) {
    --self->liveBlocks;
    return HeapFree(heap, flags, block);
  }
  static BOOL WINAPI Restrict(HANDLE token, DWORD flags, DWORD disabledCount, SID_AND_ATTRIBUTES* disabled,
                              DWORD deleteCount, LUID_AND_ATTRIBUTES* deleted, DWORD restrictCount,
                              SID_AND_ATTRIBUTES* restricting, HANDLE* restricted) {
    EXPECT_EQ(token, self->handles["duplicate"]);
    EXPECT_EQ(deleteCount, 0u);
    EXPECT_EQ(deleted, nullptr);
    EXPECT_EQ(restrictCount, 0u);
    EXPECT_EQ(restricting, nullptr);
    self->restrictFlags = flags;
    self->disabled.assign(disabled, disabled + disabledCount);
    return self->Give("restricted", restricted);
  }
  static BOOL WINAPI SetInformation(HANDLE token, TOKEN_INFORMATION_CLASS type, void* data, DWORD length) {
    EXPECT_EQ(token, self->handles["restricted"]);
    self->labelClass = type;
    self->labelLength = length;
    self->labelAttributes = static_cast<TOKEN_MANDATORY_LABEL*>(data)->Label.Attributes;
    EXPECT_EQ(*GetSidSubAuthority(static_cast<TOKEN_MANDATORY_LABEL*>(data)->Label.Sid, 0), 0x2000u);
    return self->Step("label");
  }
  static BOOL WINAPI Impersonate(HANDLE token) {
    EXPECT_EQ(token, self->handles["restricted"]);
    return self->Step("impersonate");
  }
  static BOOL WINAPI Revert() { return self->Step("revert"); }
  static void WINAPI Report(const char* line) {
    self->reports.emplace_back(line);
    SetLastError(0);
  }

  static Cmm::PrivilegeApi Script() {
    Cmm::PrivilegeApi api;
    api.openProcess = OpenTheProcess;
    api.openProcessToken = OpenToken;
    api.duplicateToken = Duplicate;
    api.allocateSid = AllocateSid;
    api.freeSid = FreeTheSid;
    api.createWellKnownSid = WellKnown;
    api.heapAlloc = Allocate;
    api.heapFree = Free;
    api.createRestrictedToken = Restrict;
    api.setTokenInformation = SetInformation;
    api.impersonate = Impersonate;
    api.revertToSelf = Revert;
    api.report = Report;
    return api;
  }
  const Cmm::PrivilegeApi api = Script();

  Cmm::UniqueHandle Reduce() {
    return Cmm::UniqueHandle(Cmm::GetMediumPrivilefeToken(api, GetCurrentProcess()));
  }

  void ExpectCleanedUp() {
    EXPECT_EQ(liveSids, 0);
    EXPECT_EQ(liveBlocks, 0);
    for (const char* name : {"process", "token", "duplicate"})
      EXPECT_FALSE(IsOpen(name)) << name;
  }
};
PrivilegeScript* PrivilegeScript::self = nullptr;

TEST_F(PrivilegeScript, TokenIsMadeInTheStatedStepsAndSurvives) {
  const Cmm::UniqueHandle token = Reduce();
  EXPECT_EQ(token.get(), handles["restricted"]);
  EXPECT_TRUE(IsOpen("restricted"));
  EXPECT_THAT(calls, ElementsAre("token", "duplicate", "administrators", "probe", "heap", "well known",
                                 "restricted", "medium", "label"));
  EXPECT_THAT(reports, ElementsAre("[GetMediumPrivilefeToken] success"));
  EXPECT_EQ(tokenAccess, 2u);
  EXPECT_EQ(restrictFlags, 1u);
  ExpectCleanedUp();
}

TEST_F(PrivilegeScript, BothAdministratorIdentifiersAreDenyOnlyAndTheLabelIsMedium) {
  const Cmm::UniqueHandle token = Reduce();
  EXPECT_THAT(sids, ElementsAre(ElementsAre(5u, 32u, 544u), ElementsAre(16u, 0x2000u)));
  ASSERT_EQ(disabled.size(), 2u);
  EXPECT_EQ(disabled[0].Attributes, 0x10u);
  EXPECT_EQ(disabled[1].Attributes, 0x10u);
  EXPECT_TRUE(blockWasZeroed);
  EXPECT_EQ(labelAttributes, 0x20u);
  EXPECT_EQ(static_cast<int>(labelClass), 25);
  EXPECT_EQ(labelLength, 16u);
}

TEST_F(PrivilegeScript, NullProcessHasNoToken) {
  EXPECT_EQ(Cmm::GetMediumPrivilefeToken(api, nullptr), nullptr);
  EXPECT_THAT(reports, ElementsAre("[GetMediumPrivilefeToken] Invalid parameter"));
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(PrivilegeScript, EveryFailingStepEndsWithItsWordsAndLeavesNothingBehind) {
  const std::pair<const char*, const char*> steps[] = {
      {"token", "[GetMediumPrivilefeToken] OpenProcessToken fail, error code:4711"},
      {"duplicate", "[GetMediumPrivilefeToken] DuplicateTokenEx fail, error code:4711"},
      {"administrators",
       "[GetMediumPrivilefeToken] AllocateAndInitializeSid builtin admin fail, error code:4711"},
      {"heap", "[GetMediumPrivilefeToken] HeapAlloc fail, error code 4711"},
      {"well known", "[GetMediumPrivilefeToken] CreateWellKnownSid local admin fail, error code:4711"},
      {"restricted", "[GetMediumPrivilefeToken] CreateRestrictedToken fail, error code 4711"},
      {"medium",
       "[GetMediumPrivilefeToken] AllocateAndInitializeSid mandatory medium label fail, error code 4711"},
      {"label", "[GetMediumPrivilefeToken] SetTokenInformation integrity fail, error code 4711"},
  };
  for (const auto& [step, words] : steps) {
    failing = step;
    calls.clear();
    reports.clear();
    handles.clear();
    EXPECT_FALSE(Reduce()) << step;
    EXPECT_EQ(calls.back(), step);
    EXPECT_THAT(reports, ElementsAre(words));
    ExpectCleanedUp();
    EXPECT_FALSE(IsOpen("restricted")) << step;
  }
}

TEST_F(PrivilegeScript, IdentifierOfSizeZeroEndsTheReduction) {
  sidSize = 0;
  EXPECT_FALSE(Reduce());
  EXPECT_THAT(reports,
              ElementsAre("[GetMediumPrivilefeToken] CreateWellKnownSid local admin fail, sid size is zero"));
  EXPECT_EQ(calls.back(), "probe");
  ExpectCleanedUp();
}

TEST_F(PrivilegeScript, ProbeMayAlsoFailWithABufferOverflow) {
  probeError = ERROR_BUFFER_OVERFLOW;
  EXPECT_TRUE(Reduce());
  EXPECT_EQ(disabled.size(), 2u);
}

TEST_F(PrivilegeScript, SystemWithoutIdentifier106GetsATokenWithOneDisabledIdentifier) {
  probeError = ERROR_INVALID_PARAMETER;
  sidSize = 0;
  EXPECT_TRUE(Reduce());
  EXPECT_EQ(disabled.size(), 1u);
  EXPECT_THAT(reports, ElementsAre("[GetMediumPrivilefeToken] CreateWellKnownSid fail, error code 87",
                                   "[GetMediumPrivilefeToken] success"));
  ExpectCleanedUp();
}

TEST_F(PrivilegeScript, ProbeThatSucceedsLeavesOneDisabledIdentifierToo) {
  probeSucceeds = true;
  probeError = 0;
  EXPECT_TRUE(Reduce());
  EXPECT_EQ(disabled.size(), 1u);
  EXPECT_THAT(reports, ElementsAre("[GetMediumPrivilefeToken] CreateWellKnownSid fail, error code 0",
                                   "[GetMediumPrivilefeToken] success"));
  ExpectCleanedUp();
}

TEST_F(PrivilegeScript, ThreadIsConvertedWithAllAccessToTheProcess) {
  Cmm::UniqueHandle token;
  EXPECT_TRUE(Cmm::ConvertCurrentThreadToMediumPrivilege(api, 1234, token.put()));
  EXPECT_EQ(token.get(), handles["restricted"]);
  EXPECT_EQ(processAccess, 0x1FFFFFu);
  EXPECT_EQ(calls.front(), "process");
  EXPECT_EQ(calls.back(), "impersonate");
  ExpectCleanedUp();
}

TEST_F(PrivilegeScript, ThreadIsNotConvertedWhenAStepFails) {
  const std::pair<const char*, std::vector<std::string>> steps[] = {
      {"process", {"[ConvertCurrentThreadToMediumPrivilege] OpenProcess fail, error code 4711"}},
      {"token",
       {"[GetMediumPrivilefeToken] OpenProcessToken fail, error code:4711",
        "[ConvertCurrentThreadToMediumPrivilege] GetMediumPrivilefeToken fail"}},
      {"impersonate",
       {"[GetMediumPrivilefeToken] success",
        "[ConvertCurrentThreadToMediumPrivilege] ImpersonateLoggedOnUser fail, error code 4711"}},
  };
  for (const auto& [step, words] : steps) {
    failing = step;
    reports.clear();
    handles.clear();
    HANDLE token = INVALID_HANDLE_VALUE;
    EXPECT_FALSE(Cmm::ConvertCurrentThreadToMediumPrivilege(api, 1234, &token)) << step;
    EXPECT_EQ(token, nullptr);
    EXPECT_EQ(reports, words);
    ExpectCleanedUp();
    EXPECT_FALSE(IsOpen("restricted")) << step;
  }
}

TEST_F(PrivilegeScript, ScopeRevertsAndClosesTheToken) {
  {
    const Cmm::MediumPrivilegeScope scope(api, 1234);
    EXPECT_TRUE(scope.IsImpersonating());
    EXPECT_EQ(calls.back(), "impersonate");
    EXPECT_TRUE(IsOpen("restricted"));
  }
  EXPECT_EQ(calls.back(), "revert");
  EXPECT_FALSE(IsOpen("restricted"));
}

TEST_F(PrivilegeScript, ScopeThatCouldNotImpersonateDoesNotRevert) {
  failing = "impersonate";
  {
    const Cmm::MediumPrivilegeScope scope(api, 1234);
    EXPECT_FALSE(scope.IsImpersonating());
  }
  EXPECT_EQ(calls.back(), "impersonate");
}

// On the real system. Wine knows no identifier 106 and restricts nothing, so what the token allows is to be
// seen on Windows.

bool HasThreadToken() {
  Cmm::UniqueHandle token;
  return OpenThreadToken(GetCurrentThread(), TOKEN_QUERY, TRUE, token.put()) != 0;
}

TEST(MediumPrivilegeScope, ThreadHasItsOwnTokenAgainAfterTheEnd) {
  EXPECT_FALSE(HasThreadToken());
  {
    const Cmm::MediumPrivilegeScope scope(GetCurrentProcessId());
    EXPECT_TRUE(scope.IsImpersonating());
    EXPECT_TRUE(HasThreadToken());
  }
  EXPECT_FALSE(HasThreadToken());
}

TEST(MediumPrivilegeScope, AdministratorsAreDeniedWithinIt) {
  SID_IDENTIFIER_AUTHORITY authority = SECURITY_NT_AUTHORITY;
  PSID administrators = nullptr;
  ASSERT_TRUE(AllocateAndInitializeSid(&authority, 2, 32, 544, 0, 0, 0, 0, 0, 0, &administrators));
  BOOL isMember = TRUE;
  {
    const Cmm::MediumPrivilegeScope scope(GetCurrentProcessId());
    EXPECT_TRUE(CheckTokenMembership(nullptr, administrators, &isMember));
  }
  FreeSid(administrators);
  EXPECT_FALSE(isMember);
}

TEST(MediumPrivilegeScope, OtherThreadsKeepTheirToken) {
  const Cmm::MediumPrivilegeScope scope(GetCurrentProcessId());
  ASSERT_TRUE(scope.IsImpersonating());
  bool otherHasToken = true;
  std::thread([&] { otherHasToken = HasThreadToken(); }).join();
  EXPECT_FALSE(otherHasToken);
}

TEST(MediumPrivilegeScope, ProcessThatHasEndedGivesNoToken) {
  uint32_t id = 0;
  {
    velm_test::ChildProcess child("C:\\windows\\system32\\cmd.exe", {"/c", "exit"});
    id = child.Id();
    ASSERT_TRUE(child.Wait());
  }
  // The system forgets an ended process some time after its last handle is closed.
  ASSERT_TRUE(WaitUntil([&] { return !Cmm::UniqueHandle(OpenProcess(SYNCHRONIZE, FALSE, id)); }));
  velm_test::DebugOutput output;
  const Cmm::MediumPrivilegeScope scope(id);
  EXPECT_FALSE(scope.IsImpersonating());
  EXPECT_FALSE(HasThreadToken());
  EXPECT_THAT(
      output.Texts(),
      ElementsAre(HasSubstr("[ConvertCurrentThreadToMediumPrivilege] OpenProcess fail, error code ")));
}

}  // namespace
