#include "tests/contract/ContractFixture.h"

#include <json/reader.h>
#include <json/value.h>

#include <sstream>

#include "common/client/utility/src/UniqueHandle.h"

namespace velm_test {

std::string ContractTest::NextCommand() {
  std::istringstream line(NextCommandLine());
  Json::Value report;
  std::string errors;
  if (!Json::parseFromStream(Json::CharReaderBuilder(), line, &report, &errors))
    return "no JSON: " + line.str();
  return report["text"].asString();
}

bool ContractTest::TableHas(const std::wstring& name) {
  constexpr size_t kTableBytes = 12004;
  constexpr size_t kFirstRecord = 4;
  constexpr size_t kRecordBytes = 600;
  const Cmm::UniqueHandle mapping(OpenFileMappingW(FILE_MAP_READ, FALSE, L"VELM_SDK_AUDIO_DEV"));
  if (!mapping) return false;
  const auto* table =
      static_cast<const char*>(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, kTableBytes));
  if (!table) return false;
  bool found = false;
  for (size_t at = kFirstRecord; at < kTableBytes; at += kRecordBytes)
    found = found || name == reinterpret_cast<const wchar_t*>(table + at);
  UnmapViewOfFile(table);
  return found;
}

}  // namespace velm_test
