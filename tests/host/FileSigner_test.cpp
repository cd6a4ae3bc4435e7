#include "host/FileSigner.h"

#include <string>
#include <vector>

#include "common/client/utility/src/UniqueHandle.h"
#include "gmock/gmock.h"
#include "host/TrustApi.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint32_t kUntouched = 0x12345678;

// Files of the build, beside this program.
std::wstring File(const wchar_t* name) {
  wchar_t program[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  const std::wstring path = program;
  return path.substr(0, path.find_last_of(L'\\')) + L"\\host_tests_files\\" + name;
}

uint32_t StatusOf(const wchar_t* name) {
  uint32_t status = kUntouched;
  Cmm::VerifyFileSignerByHandle(File(name).c_str(), nullptr, L"", &status);
  return status;
}

// On real files. Wine's trust provider accepts every intact signature, also one of an unknown authority,
// which Windows refuses: what a test below expects of "signed.dll" holds on Windows once the authority of
// the build is trusted there.

TEST(VerifyFileSigner, SignedFilePassesForItsSigner) {
  EXPECT_TRUE(Cmm::VerifyFileSigner(File(L"signed.dll").c_str(), L"Velm Communications, Inc."));
}

TEST(VerifyFileSigner, NullSignerStandsForTheProductsOwnCompany) {
  EXPECT_TRUE(Cmm::VerifyFileSigner(File(L"signed.dll").c_str(), nullptr));
  EXPECT_FALSE(Cmm::VerifyFileSigner(File(L"signed_by_another.dll").c_str(), nullptr));
}

TEST(VerifyFileSigner, NameMayStandAnywhereInTheCertificatesName) {
  EXPECT_TRUE(Cmm::VerifyFileSigner(File(L"signed.dll").c_str(), L"Communications"));
  EXPECT_FALSE(Cmm::VerifyFileSigner(File(L"signed.dll").c_str(), L"Velm Communications, Inc. and more"));
}

TEST(VerifyFileSigner, CaseOfTheNameCounts) {
  EXPECT_FALSE(Cmm::VerifyFileSigner(File(L"signed.dll").c_str(), L"velm communications, inc."));
}

TEST(VerifyFileSigner, NameMayStandOnTheIssuersCertificate) {
  EXPECT_TRUE(Cmm::VerifyFileSigner(File(L"signed.dll").c_str(), L"Test Code Signing Authority"));
}

TEST(VerifyFileSigner, AnotherNameFails) {
  EXPECT_FALSE(Cmm::VerifyFileSigner(File(L"signed.dll").c_str(), L"Nobody"));
}

TEST(VerifyFileSigner, EmptySignerPassesEverySignedFile) {
  EXPECT_TRUE(Cmm::VerifyFileSigner(File(L"signed.dll").c_str(), L""));
  EXPECT_TRUE(Cmm::VerifyFileSigner(File(L"signed_by_another.dll").c_str(), L""));
}

TEST(VerifyFileSigner, FilesWithoutAGoodSignatureFailForAnyName) {
  for (const wchar_t* name : {L"unsigned.dll", L"tampered.dll", L"not_a_library.txt", L"absent.dll"}) {
    EXPECT_FALSE(Cmm::VerifyFileSigner(File(name).c_str(), L"")) << name;
    EXPECT_FALSE(Cmm::VerifyFileSigner(File(name).c_str(), nullptr)) << name;
  }
}

TEST(VerifyFileSigner, NullAndEmptyPathsFail) {
  EXPECT_FALSE(Cmm::VerifyFileSigner(nullptr, L""));
  EXPECT_FALSE(Cmm::VerifyFileSigner(L"", L""));
}

TEST(VerifyFileSignerByHandle, StatusIsTheTrustProvidersResult) {
  EXPECT_EQ(StatusOf(L"signed.dll"), 0u);
  EXPECT_EQ(StatusOf(L"unsigned.dll"), 0x800B0100u);  // TRUST_E_NOSIGNATURE
  EXPECT_EQ(StatusOf(L"tampered.dll"), 0x80096010u);  // TRUST_E_BAD_DIGEST
  EXPECT_NE(StatusOf(L"not_a_library.txt"), 0u);
  EXPECT_NE(StatusOf(L"absent.dll"), 0u);
}

TEST(VerifyFileSignerByHandle, StatusOfASignedFileIs0AlsoWhenTheNameFails) {
  uint32_t status = kUntouched;
  EXPECT_EQ(Cmm::VerifyFileSignerByHandle(File(L"signed.dll").c_str(), nullptr, L"Nobody", &status), 0);
  EXPECT_EQ(status, 0u);
}

TEST(VerifyFileSignerByHandle, LeavesTheCallersHandleOpen) {
  const Cmm::UniqueFileHandle file(CreateFileW(File(L"signed.dll").c_str(), GENERIC_READ, FILE_SHARE_READ,
                                               nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(file);
  uint32_t status = kUntouched;
  EXPECT_EQ(Cmm::VerifyFileSignerByHandle(File(L"signed.dll").c_str(), file.get(), nullptr, &status), 1);
  EXPECT_EQ(status, 0u);
  EXPECT_EQ(GetFileType(file.get()), static_cast<DWORD>(FILE_TYPE_DISK));
}

TEST(VerifyFileSignerByHandle, StatusMayBeNull) {
  EXPECT_EQ(Cmm::VerifyFileSignerByHandle(File(L"signed.dll").c_str(), nullptr, nullptr, nullptr), 1);
}

TEST(VerifyFileSignerByHandle, NullPathGives0AndLeavesTheStatus) {
  uint32_t status = kUntouched;
  EXPECT_EQ(Cmm::VerifyFileSignerByHandle(nullptr, nullptr, nullptr, &status), 0);
  EXPECT_EQ(status, kUntouched);
}

// A trust provider with a script: answers what the test says, and writes down what it was asked.

struct TrustCall {
  DWORD stateAction;
  DWORD providerFlags;
  friend bool operator==(const TrustCall&, const TrustCall&) = default;
};

class TrustScript : public testing::Test {
 protected:
  TrustScript() { s_current = this; }
  ~TrustScript() override { s_current = nullptr; }

  int Verify(const wchar_t* signer, HANDLE file = nullptr) {
    return Cmm::VerifyFileSignerWith(kApi, L"C:\\file.exe", file, signer, &status);
  }

  std::vector<LONG> results{0};  // of the verifying calls, in order
  DWORD signers = 1;
  bool hasProviderData = true;
  bool hasSigner = true;
  std::vector<std::wstring> names{L"Velm Communications, Inc.", L"Authority"};  // along the chain

  std::vector<TrustCall> calls;
  WINTRUST_DATA lastData{};
  WINTRUST_FILE_INFO lastFile{};
  HWND lastWindow = nullptr;
  GUID lastAction{};
  std::vector<DWORD> signerIndexes;
  std::vector<DWORD> nameTypes;
  uint32_t status = kUntouched;

 private:
  static LONG WINAPI VerifyTrust(HWND window, GUID* action, void* argument) {
    auto* data = static_cast<WINTRUST_DATA*>(argument);
    TrustScript& self = *s_current;
    self.lastWindow = window;
    self.lastAction = *action;
    self.lastData = *data;
    self.lastFile = *data->pFile;
    self.calls.push_back({data->dwStateAction, data->dwProvFlags});
    if (data->dwStateAction == WTD_STATEACTION_CLOSE) {
      data->hWVTStateData = nullptr;
      return 0;
    }
    EXPECT_EQ(data->hWVTStateData, nullptr);  // a state of before must have been closed
    data->hWVTStateData = &self;
    const LONG result = self.results.front();
    if (self.results.size() > 1) self.results.erase(self.results.begin());
    return result;
  }
  static CRYPT_PROVIDER_DATA* WINAPI ProviderData(HANDLE state) {
    EXPECT_EQ(state, s_current);
    s_current->m_data.csSigners = s_current->signers;
    return s_current->hasProviderData ? &s_current->m_data : nullptr;
  }
  static CRYPT_PROVIDER_SGNR* WINAPI ChainSigner(CRYPT_PROVIDER_DATA* data, DWORD index,
                                                 WINBOOL counterSigner, DWORD counterIndex) {
    EXPECT_EQ(data, &s_current->m_data);
    EXPECT_EQ(counterSigner, FALSE);
    EXPECT_EQ(counterIndex, 0u);
    s_current->signerIndexes.push_back(index);
    return s_current->hasSigner ? &s_current->m_signer : nullptr;
  }
  static CRYPT_PROVIDER_CERT* WINAPI ChainCertificate(CRYPT_PROVIDER_SGNR*, DWORD index) {
    if (index >= s_current->names.size()) return nullptr;
    s_current->m_context.dwCertEncodingType = index;  // tells CertificateName which one it is
    s_current->m_certificate.pCert = &s_current->m_context;
    return &s_current->m_certificate;
  }
  static DWORD WINAPI CertificateName(PCCERT_CONTEXT certificate, DWORD type, DWORD flags, void*, LPWSTR text,
                                      DWORD size) {
    EXPECT_EQ(flags, 0u);
    s_current->nameTypes.push_back(type);
    const std::wstring& name = s_current->names[certificate->dwCertEncodingType];
    if (text) text[name.copy(text, size - 1)] = L'\0';
    return static_cast<DWORD>(name.size()) + 1;
  }

  static inline TrustScript* s_current = nullptr;
  static constexpr Cmm::TrustApi kApi{VerifyTrust, ProviderData, ChainSigner, ChainCertificate,
                                      CertificateName};
  CRYPT_PROVIDER_DATA m_data{};
  CRYPT_PROVIDER_SGNR m_signer{};
  CRYPT_PROVIDER_CERT m_certificate{};
  CERT_CONTEXT m_context{};
};

constexpr TrustCall kVerify{WTD_STATEACTION_VERIFY, 0x10};
constexpr TrustCall kClose{WTD_STATEACTION_CLOSE, 0x10};
constexpr TrustCall kVerifyFromCache{WTD_STATEACTION_VERIFY, 0x1010};
constexpr TrustCall kCloseFromCache{WTD_STATEACTION_CLOSE, 0x1010};

TEST_F(TrustScript, OneVerificationIsMadeAndClosed) {
  EXPECT_EQ(Verify(nullptr), 1);
  EXPECT_EQ(status, 0u);
  EXPECT_THAT(calls, ElementsAre(kVerify, kClose));
}

TEST_F(TrustScript, IsAskedForTheFileWithNoWindowAndNoRevocationCheck) {
  HANDLE file = reinterpret_cast<HANDLE>(0x44);
  Verify(nullptr, file);
  const GUID genericVerify = WINTRUST_ACTION_GENERIC_VERIFY_V2;
  EXPECT_TRUE(IsEqualGUID(lastAction, genericVerify));
  EXPECT_EQ(lastWindow, INVALID_HANDLE_VALUE);
  EXPECT_EQ(lastData.cbStruct, sizeof(WINTRUST_DATA));
  EXPECT_EQ(lastData.dwUIChoice, static_cast<DWORD>(WTD_UI_NONE));
  EXPECT_EQ(lastData.fdwRevocationChecks, 0u);
  EXPECT_EQ(lastData.dwUnionChoice, static_cast<DWORD>(WTD_CHOICE_FILE));
  EXPECT_EQ(lastFile.cbStruct, sizeof(WINTRUST_FILE_INFO));
  EXPECT_STREQ(lastFile.pcwszFilePath, L"C:\\file.exe");
  EXPECT_EQ(lastFile.hFile, file);
}

TEST_F(TrustScript, FileThatCouldNotBeOpenedIsVerifiedByItsNameAlone) {
  Verify(nullptr, INVALID_HANDLE_VALUE);
  EXPECT_EQ(lastFile.hFile, nullptr);
}

TEST_F(TrustScript, UnreachableRevocationServerIsAskedForOnceMoreFromTheCache) {
  results = {CERT_E_REVOCATION_FAILURE, 0};
  EXPECT_EQ(Verify(nullptr), 1);
  EXPECT_EQ(status, 0u);
  EXPECT_THAT(calls, ElementsAre(kVerify, kClose, kVerifyFromCache, kCloseFromCache));
}

TEST_F(TrustScript, SecondAnswerCounts) {
  results = {CERT_E_REVOCATION_FAILURE, TRUST_E_BAD_DIGEST};
  EXPECT_EQ(Verify(nullptr), 0);
  EXPECT_EQ(status, 0x80096010u);
  EXPECT_THAT(signerIndexes, IsEmpty());
}

TEST_F(TrustScript, RevocationFailureTwiceIsNotAskedAThirdTime) {
  results = {CERT_E_REVOCATION_FAILURE, CERT_E_REVOCATION_FAILURE};
  EXPECT_EQ(Verify(nullptr), 0);
  EXPECT_EQ(status, 0x800B010Eu);
  EXPECT_THAT(calls, ElementsAre(kVerify, kClose, kVerifyFromCache, kCloseFromCache));
}

TEST_F(TrustScript, RefusedFileFailsBeforeAnyNameIsLookedAt) {
  for (const LONG refusal : {TRUST_E_NOSIGNATURE, CERT_E_UNTRUSTEDROOT, CERT_E_EXPIRED, 1L}) {
    calls.clear();
    results = {refusal};
    EXPECT_EQ(Verify(L""), 0);
    EXPECT_EQ(status, static_cast<uint32_t>(refusal));
    EXPECT_THAT(calls, ElementsAre(kVerify, kClose));
  }
  EXPECT_THAT(signerIndexes, IsEmpty());
  EXPECT_THAT(nameTypes, IsEmpty());
}

TEST_F(TrustScript, NoProviderDataOrNoSignersFails) {
  hasProviderData = false;
  EXPECT_EQ(Verify(L""), 0);
  hasProviderData = true;
  signers = 0;
  EXPECT_EQ(Verify(L""), 0);
  EXPECT_THAT(signerIndexes, IsEmpty());
}

TEST_F(TrustScript, FirstSignerIsTakenOnEveryPassAndTheOthersNever) {
  signers = 3;
  EXPECT_EQ(Verify(L"Nobody"), 0);
  EXPECT_THAT(signerIndexes, ElementsAre(0u, 0u, 0u));
}

TEST_F(TrustScript, SignerThatIsNotThereEndsTheTest) {
  signers = 3;
  hasSigner = false;
  EXPECT_EQ(Verify(L""), 0);
  EXPECT_THAT(signerIndexes, ElementsAre(0u));
}

TEST_F(TrustScript, FirstCertificateThatPassesEndsTheTest) {
  EXPECT_EQ(Verify(nullptr), 1);
  EXPECT_THAT(nameTypes, ElementsAre(4u, 4u));  // the size and the simple display name of one certificate
}

TEST_F(TrustScript, EveryCertificateOfTheChainIsLookedAt) {
  EXPECT_EQ(Verify(L"Authority"), 1);
  EXPECT_THAT(nameTypes, ElementsAre(4u, 4u, 4u, 4u));
}

TEST_F(TrustScript, CertificateWithoutANamePassesForNobody) {
  names = {L""};
  EXPECT_EQ(Verify(L""), 0);
  names = {L"", L"A"};
  EXPECT_EQ(Verify(L""), 1);
}

TEST_F(TrustScript, ChainWithoutCertificatesFails) {
  names.clear();
  EXPECT_EQ(Verify(L""), 0);
}

TEST_F(TrustScript, StateIsClosedWhenTheNameFails) {
  EXPECT_EQ(Verify(L"Nobody"), 0);
  EXPECT_EQ(status, 0u);
  EXPECT_THAT(calls, ElementsAre(kVerify, kClose));
}

}  // namespace
