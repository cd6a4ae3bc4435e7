#include "archive/ArchiveStream.h"

#include <tinyxml2.h>

namespace Cmm::Archive {

CCmmArchiveXmlStream::CCmmArchiveXmlStream(tinyxml2::XMLElement* element, int ownsDocument)
    : m_element(element), m_ownsDocument(ownsDocument) {
  Refresh();
}

CCmmArchiveXmlStream::~CCmmArchiveXmlStream() {
  if (m_ownsDocument == 1 && m_element) delete m_element->GetDocument();
}

const unsigned char* CCmmArchiveXmlStream::GetStreamData() const {
  return reinterpret_cast<const unsigned char*>(m_text.c_str());
}

unsigned CCmmArchiveXmlStream::GetStreamSize() const {
  return static_cast<unsigned>(m_text.GetLength());
}

tinyxml2::XMLElement* CCmmArchiveXmlStream::GetXmlElement() const {
  return m_element;
}

void CCmmArchiveXmlStream::Refresh() {
  if (!m_element) return;
  tinyxml2::XMLPrinter printer;
  m_element->Accept(&printer);
  m_text.assign(printer.CStr(), static_cast<size_t>(printer.CStrSize() - 1));
}

CCmmArchiveByteStream::CCmmArchiveByteStream(const CStringT<char>& bytes) : m_bytes(bytes), m_ownsBytes(1) {}

CCmmArchiveByteStream::CCmmArchiveByteStream(const unsigned char* external, unsigned size)
    : m_external(external), m_externalSize(size) {}

CCmmArchiveByteStream::~CCmmArchiveByteStream() = default;

const unsigned char* CCmmArchiveByteStream::GetStreamData() const {
  return m_ownsBytes ? reinterpret_cast<const unsigned char*>(m_bytes.c_str()) : m_external;
}

unsigned CCmmArchiveByteStream::GetStreamSize() const {
  return m_ownsBytes ? static_cast<unsigned>(m_bytes.GetLength()) : m_externalSize;
}

}  // namespace Cmm::Archive
