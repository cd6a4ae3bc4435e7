#pragma once

#include <cstring>
#include <memory>
#include <string>

#include "archive/ArchiveService.h"
#include "archive/ArchiveServiceImp.h"
#include "gmock/gmock.h"

namespace archive_testing {

// The process's archive service, without definitions and instances before and after each test.
class ServiceTest : public testing::Test {
 protected:
  static constexpr auto kXml = Cmm::ICmmArchiveStream::StreamType_Xml;
  static constexpr auto kByte = Cmm::ICmmArchiveStream::StreamType_Byte;

  ServiceTest() { Cmm::CCmmArchiveService::ClearAllPackageDefines(); }
  ~ServiceTest() override { Cmm::CCmmArchiveService::ClearAllPackageDefines(); }

  static Cmm::Archive::CCmmArchiveServiceImp& Service() {
    return *Cmm::Archive::CCmmArchiveServiceImp::GetImp();
  }
  static size_t DefineCount() { return Service().GetPackageDefines().size(); }
  static size_t InstanceCount() { return Service().GetDuplicatedPackages().size(); }

  // From exactly these bytes, in a block of their own size, without a terminator.
  static Cmm::ICmmArchiveObject* Parse(const std::string& text) {
    const std::unique_ptr<unsigned char[]> bytes(new unsigned char[text.size()]);
    std::memcpy(bytes.get(), text.data(), text.size());
    return Cmm::CCmmArchiveService::ParseStream(bytes.get(), static_cast<unsigned>(text.size()), kXml);
  }

  // The text of an instance; "(null)" when there is no stream.
  static std::string Flatten(Cmm::ICmmArchiveObject* object) {
    const std::unique_ptr<Cmm::ICmmArchiveStream> stream(Cmm::CCmmArchiveService::Flattern(object, kXml));
    if (!stream) return "(null)";
    return {reinterpret_cast<const char*>(stream->GetStreamData()), stream->GetStreamSize()};
  }
};

}  // namespace archive_testing
