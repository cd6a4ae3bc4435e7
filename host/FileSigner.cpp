#include "host/FileSigner.h"

#include <memory>
#include <new>
#include <string_view>

#include "common/client/utility/src/UniqueHandle.h"
#include "host/TrustApi.h"

namespace Cmm {
namespace {

constexpr const wchar_t* kDefaultSigner = L"Velm Communications, Inc.";

// One verification; its state is closed when this ends.
class TrustCheck {
 public:
  TrustCheck(const TrustApi& api, const wchar_t* filePath, HANDLE file) : m_api(api) {
    m_file.cbStruct = sizeof m_file;
    m_file.pcwszFilePath = filePath;
    m_file.hFile = file;
    m_data.cbStruct = sizeof m_data;
    m_data.dwUIChoice = WTD_UI_NONE;
    m_data.fdwRevocationChecks = 0;
    m_data.dwUnionChoice = WTD_CHOICE_FILE;
    m_data.pFile = &m_file;
  }
  TrustCheck(const TrustCheck&) = delete;
  TrustCheck& operator=(const TrustCheck&) = delete;
  ~TrustCheck() { Close(); }

  // A revocation server out of reach does not fail a signed file: the second call asks the cache only.
  LONG Run() {
    LONG result = Verify(WTD_REVOCATION_CHECK_NONE);
    if (result == CERT_E_REVOCATION_FAILURE) {
      Close();
      result = Verify(WTD_CACHE_ONLY_URL_RETRIEVAL | WTD_REVOCATION_CHECK_NONE);
    }
    return result;
  }

  HANDLE State() const { return m_data.hWVTStateData; }

 private:
  LONG Verify(DWORD providerFlags) {
    m_data.dwStateAction = WTD_STATEACTION_VERIFY;
    m_data.dwProvFlags = providerFlags;
    return Call();
  }
  void Close() {
    m_data.dwStateAction = WTD_STATEACTION_CLOSE;
    Call();
  }
  LONG Call() {
    GUID action = WINTRUST_ACTION_GENERIC_VERIFY_V2;
    return m_api.verifyTrust(static_cast<HWND>(INVALID_HANDLE_VALUE), &action, &m_data);
  }

  const TrustApi& m_api;
  WINTRUST_FILE_INFO m_file{};
  WINTRUST_DATA m_data{};
};

bool NameMatches(const TrustApi& api, const CERT_CONTEXT* certificate, std::wstring_view expected) {
  const DWORD size = api.certificateName(certificate, CERT_NAME_SIMPLE_DISPLAY_TYPE, 0, nullptr, nullptr, 0);
  if (size < 2) return false;  // the terminator alone: no name
  const std::unique_ptr<wchar_t[]> name(new (std::nothrow) wchar_t[size]());
  if (!name) return false;
  if (api.certificateName(certificate, CERT_NAME_SIMPLE_DISPLAY_TYPE, 0, nullptr, name.get(), size) < 2)
    return false;
  return std::wstring_view(name.get()).find(expected) != std::wstring_view::npos;
}

bool ChainNames(const TrustApi& api, CRYPT_PROVIDER_SGNR* signer, std::wstring_view expected) {
  for (DWORD index = 0;; ++index) {
    const CRYPT_PROVIDER_CERT* certificate = api.chainCertificate(signer, index);
    if (!certificate) return false;
    if (NameMatches(api, certificate->pCert, expected)) return true;
  }
}

bool IsSignedBy(const TrustApi& api, HANDLE state, std::wstring_view expected) {
  CRYPT_PROVIDER_DATA* data = api.providerData(state);
  if (!data) return false;
  for (DWORD pass = 0; pass < data->csSigners; ++pass) {
    // Signer 0 on every pass: a name that only a further signature carries does not count.
    CRYPT_PROVIDER_SGNR* signer = api.chainSigner(data, 0, FALSE, 0);
    if (!signer) return false;
    if (ChainNames(api, signer, expected)) return true;
  }
  return false;
}

}  // namespace

int VerifyFileSignerWith(const TrustApi& api, const wchar_t* filePath, void* file, const wchar_t* signer,
                         uint32_t* status) {
  if (!filePath) return 0;
  TrustCheck check(api, filePath, file == INVALID_HANDLE_VALUE ? nullptr : file);
  const LONG result = check.Run();
  if (status) *status = static_cast<uint32_t>(result);
  return result == ERROR_SUCCESS && IsSignedBy(api, check.State(), signer ? signer : kDefaultSigner) ? 1 : 0;
}

int VerifyFileSignerByHandle(const wchar_t* filePath, void* file, const wchar_t* signer, uint32_t* status) {
  return VerifyFileSignerWith(TrustApi{}, filePath, file, signer, status);
}

bool VerifyFileSigner(const wchar_t* filePath, const wchar_t* signer) {
  if (!filePath) return false;
  const UniqueFileHandle file(CreateFileW(filePath, GENERIC_READ,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
  return VerifyFileSignerByHandle(filePath, file.get(), signer, nullptr) != 0;
}

}  // namespace Cmm
