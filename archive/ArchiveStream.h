#pragma once

// The flattened forms of a package. One is in use: XML text in UTF-8, which is the payload of every message.

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace tinyxml2 {
class XMLElement;
}

namespace Cmm {

class ICmmArchiveStream {
 public:
  enum StreamType {
    StreamType_Xml = 1,
    StreamType_Byte = 2,  // declared only: no package reads or writes it
  };

  virtual ~ICmmArchiveStream() = default;
  virtual const unsigned char* GetStreamData() const = 0;  // the stream's; good until it changes
  virtual unsigned GetStreamSize() const = 0;              // in bytes, without a terminator
};

namespace Archive {

// An XML element and its text: the element alone, in the printer's default form, with no declaration
// before it and a line feed behind it.
class CMM_EXPORT CCmmArchiveXmlStream : public ICmmArchiveStream {
 public:
  // Prints the element. With `ownsDocument` 1 the stream destroys the element's document, and with it the
  // element, when it goes; otherwise the element must outlive the stream's use of it. Null has no text.
  CCmmArchiveXmlStream(tinyxml2::XMLElement* element, int ownsDocument);
  CCmmArchiveXmlStream(const CCmmArchiveXmlStream&) = delete;
  CCmmArchiveXmlStream& operator=(const CCmmArchiveXmlStream&) = delete;
  ~CCmmArchiveXmlStream() override;

  const unsigned char* GetStreamData() const override;
  unsigned GetStreamSize() const override;
  virtual tinyxml2::XMLElement* GetXmlElement() const;

  void Refresh();  // prints the element again, after a change to it

 private:
  tinyxml2::XMLElement* m_element;
  int m_ownsDocument;
  CStringT<char> m_text;
};

// Bytes, its own or another's.
class CMM_EXPORT CCmmArchiveByteStream : public ICmmArchiveStream {
 public:
  explicit CCmmArchiveByteStream(const CStringT<char>& bytes);          // keeps a copy
  CCmmArchiveByteStream(const unsigned char* external, unsigned size);  // borrows; never frees it
  CCmmArchiveByteStream(const CCmmArchiveByteStream&) = delete;
  CCmmArchiveByteStream& operator=(const CCmmArchiveByteStream&) = delete;
  ~CCmmArchiveByteStream() override;

  const unsigned char* GetStreamData() const override;
  unsigned GetStreamSize() const override;

 private:
  CStringT<char> m_bytes;
  const unsigned char* m_external = nullptr;
  unsigned m_externalSize = 0;
  int m_ownsBytes = 0;
};

}  // namespace Archive
}  // namespace Cmm
