#include "archive/ArchiveService.h"

#include <tinyxml2.h>

#include "archive/ArchiveDefineFile.h"
#include "archive/ArchiveServiceImp.h"

namespace Cmm {
namespace {

using Archive::CCmmArchiveServiceImp;
using tinyxml2::XMLDocument;

constexpr unsigned kSmallestText = 2;
constexpr unsigned kLargestUnterminatedText = 0xFFFFFFFD;

bool LoadFile(XMLDocument& document, const CStringT<wchar_t>& path) {
  CStringT<char> narrow;
  narrow.AssignOther(path);
  return document.LoadFile(narrow.c_str()) == tinyxml2::XML_SUCCESS;
}

}  // namespace

int CCmmArchiveService::ReadPackageDefineFile(const CStringT<wchar_t>& path) {
  XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  if (!LoadFile(document, path)) return 0;
  const tinyxml2::XMLElement* wrapper = document.FirstChildElement();
  if (!wrapper) return 0;
  CCmmArchiveServiceImp* service = CCmmArchiveServiceImp::GetImp();
  for (const tinyxml2::XMLElement* pdu = wrapper->FirstChildElement("CmmPdu"); pdu;
       pdu = pdu->NextSiblingElement("CmmPdu")) {
    if (auto package = Archive::ReadPduElement(*pdu))
      service->AppendPackageDefineWithoutLock(std::move(package));
  }
  service->Dump();
  return 1;
}

int CCmmArchiveService::ReadPackageDefineStream(const unsigned char*, unsigned, StreamType) {
  return 0;
}

ICmmArchiveObject* CCmmArchiveService::ParseStream(const unsigned char* data, unsigned size,
                                                   StreamType type) {
  if (!data || size < kSmallestText || type != ICmmArchiveStream::StreamType_Xml) return nullptr;
  if (data[size - 1] != 0 && size > kLargestUnterminatedText) return nullptr;
  XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  // It copies the text and terminates the copy. What is no XML leaves the document without an element.
  document.Parse(reinterpret_cast<const char*>(data), size);
  return CCmmArchiveServiceImp::GetImp()->ParsePackageFromXmlDoc(document);
}

ICmmArchiveObject* CCmmArchiveService::ParseFile(const CStringT<wchar_t>& path, StreamType type) {
  if (type != ICmmArchiveStream::StreamType_Xml) return nullptr;
  XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  if (!LoadFile(document, path)) return nullptr;
  return CCmmArchiveServiceImp::GetImp()->ParsePackageFromXmlDoc(document);
}

ICmmArchiveObject* CCmmArchiveService::MakeObject(const CStringT<wchar_t>& name, int version) {
  return CCmmArchiveServiceImp::GetImp()->MakeObject(name, version);
}

void CCmmArchiveService::FreeArchiveObject(ICmmArchiveObject* object) {
  CCmmArchiveServiceImp::GetImp()->FreeDuplicatedObj(object);
}

ICmmArchiveStream* CCmmArchiveService::Flattern(ICmmArchiveObject* object, StreamType type) {
  return CCmmArchiveServiceImp::GetImp()->Flattern(object, type);
}

void CCmmArchiveService::ClearAllPackageDefines() {
  CCmmArchiveServiceImp::GetImp()->ClearAllPackageDefines();
  CCmmArchiveServiceImp::GetImp()->ClearAllDuplicatedPackage();
}

}  // namespace Cmm
