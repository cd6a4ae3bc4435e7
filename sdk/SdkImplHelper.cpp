#include "sdk/SdkImplHelper.h"

#include <windows.h>

#include <new>
#include <string>
#include <vector>

#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/UniqueHandle.h"
#include "sdk/ConsoleLog.h"
#include "sdk/PluginImpHelper.h"

namespace Velm3rdSDK {
namespace {

constexpr const char* kCommandKey = "velmmtg\\shell\\open\\command";
constexpr DWORD kCommandLimit = 1024;  // a longer command is not read
constexpr int kNoPathHelper = 999;

}  // namespace

constinit CSdkImplHelper g_sdkImplHelper;

std::optional<std::string_view> TextBehindQuotationMark(std::string_view command) {
  const size_t mark = command.find('"');
  if (mark == std::string_view::npos) return std::nullopt;
  return command.substr(mark + 1);
}

std::optional<std::string_view> ClientDirectory(std::string_view text, std::wstring_view wide) {
  const size_t program = wide.find(L"Velm.exe");
  if (program == std::wstring_view::npos) return std::nullopt;
  // The position in UTF-16 counts bytes here, so a directory with characters of several bytes comes out
  // short. Not to be mended: which installations have a readable version is part of the contract.
  return text.substr(0, program == 0 ? 0 : program - 1);
}

bool CSdkImplHelper::EnsurePathHelper() {
  if (!m_pathHelper) m_pathHelper.reset(new (std::nothrow) Cmm::CProductPathHelper);
  return m_pathHelper != nullptr;
}

bool CSdkImplHelper::HasVelmClient() {
  if (!EnsurePathHelper()) return false;
  std::vector<Cmm::ProductRecord> products;
  return m_pathHelper->ScanProductPaths(products) && !products.empty();
}

int CSdkImplHelper::GetVelmExeVersion(uint16_t* major, uint16_t* minor, uint16_t* third, uint16_t* fourth) {
  if (!EnsurePathHelper()) {
    SDK_LOG(kLogInfo) << L"[CSdkImplHelper::GetVelmExeVersion] m_pathHelper is NULL!";
    return kNoPathHelper;
  }
  char directory[kInstallPathLimit] = {};
  std::vector<Cmm::ProductRecord> products;
  if (GetInstallPathViaVelmMtg(nullptr, directory) &&
      !m_pathHelper->CheckVelmProductInfo(directory, "", products))
    SDK_LOG(kLogInfo) << L"[CSdkImplHelper::GetVelmExeVersion] CheckVelmProductInfo failed.";
  if (products.empty() && !m_pathHelper->ScanProductPaths(products))
    SDK_LOG(kLogInfo) << L"[CSdkImplHelper::GetVelmExeVersion]  CheckVelmProductInfo failed.";
  if (products.empty()) {
    SDK_LOG(kLogError) << L"[CSdkImplHelper::GetVelmExeVersion] can not find velm client!";
    return 0;
  }
  // The path comes from the registry, never from the products found: without a registration it is the
  // bare file name behind a backslash, which leaves the values as they are.
  const std::string file = std::string(directory) + "\\vVideoApp.dll";
  CPluginImpHelper::GetFileVersion(file.c_str(), major, minor, third, fourth);
  return 0;
}

int CSdkImplHelper::GetInstallPathViaVelmMtg(const void* /*ignored*/, char* buffer) {
  const int bRet = ReadInstallPath(buffer) ? 1 : 0;
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] bRet:" << bRet;
  return bRet;
}

bool CSdkImplHelper::ReadInstallPath(char* buffer) {
  if (!buffer) return false;
  Cmm::UniqueRegistryKey root(RegGetClassRootKey());
  if (!root) root.reset(HKEY_CLASSES_ROOT);
  Cmm::UniqueRegistryKey key;
  if (RegOpenKeyExA(root.get(), kCommandKey, 0, KEY_READ, key.put()) != ERROR_SUCCESS) {
    SDK_LOG(kLogInfo)
        << L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] RegOpenKeyEx velmmtg\\shell\\open\\command failed!";
    return false;
  }
  char value[2 * kCommandLimit] = {};  // room behind the limit: the value need not be terminated
  DWORD size = kCommandLimit;
  if (RegQueryValueExA(key.get(), nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(value), &size) !=
      ERROR_SUCCESS) {
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] RegQueryValueEx failed!";
    return false;
  }
  const std::optional<std::string_view> text = TextBehindQuotationMark(value);
  if (!text) {
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] posStart is Cmm::CString::npos!";
    return false;
  }
  wchar_t wide[kCommandLimit];
  const size_t wideLength = cmm_str_convert(CP_ACP, wide, kCommandLimit, text->data(), text->size());
  const std::optional<std::string_view> directory = ClientDirectory(*text, {wide, wideLength});
  if (!directory) {
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::GetInstallPathViaVelmMtg] posEnd is Cmm::CString::npos!";
    return false;
  }
  buffer[directory->copy(buffer, size)] = '\0';  // at most the value's size, with its terminator one more
  return true;
}

HKEY CSdkImplHelper::RegGetClassRootKey() {
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::RegGetClassRootKey] m_bServiceMode:" << m_bServiceMode;
  if (!m_bServiceMode) return HKEY_CLASSES_ROOT;

  Cmm::UniqueHandle token;
  if (!OpenThreadToken(GetCurrentThread(), TOKEN_READ, TRUE, token.put())) {
    const DWORD error = GetLastError();
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::RegGetClassRootKey] OpenThreadToken failed! GetLastError: "
                      << error;
    return nullptr;
  }
  HKEY key = nullptr;
  const LSTATUS lRet = RegOpenUserClassesRoot(token.get(), 0, KEY_READ, &key);
  if (lRet != ERROR_SUCCESS) {
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::RegGetClassRootKey] RegOpenUserClassesRoot failed! lRet:" << lRet;
    return nullptr;
  }
  return key;
}

}  // namespace Velm3rdSDK
