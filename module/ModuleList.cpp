#include "module/ModuleList.h"

#include <tinyxml2.h>

namespace Cmm::module {
namespace {

CStringT<char> Attribute(const tinyxml2::XMLElement& element, const char* name) {
  const char* const value = element.Attribute(name);
  return value ? value : "";
}

std::optional<std::vector<ModuleEntry>> Entries(const tinyxml2::XMLDocument& document) {
  const tinyxml2::XMLElement* const root = document.FirstChildElement();
  if (document.Error() || !root) return std::nullopt;
  std::vector<ModuleEntry> entries;
  for (auto* element = root->FirstChildElement("module"); element;
       element = element->NextSiblingElement("module"))
    entries.push_back(
        {Attribute(*element, "name"), Attribute(*element, "type"), Attribute(*element, "caps")});
  return entries;
}

}  // namespace

std::optional<std::vector<ModuleEntry>> ReadModuleListFile(const char* path) {
  tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  document.LoadFile(path);
  return Entries(document);
}

std::optional<std::vector<ModuleEntry>> ParseModuleList(const char* xml) {
  tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
  document.Parse(xml);
  return Entries(document);
}

}  // namespace Cmm::module
