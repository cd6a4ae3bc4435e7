#include "archive/ArchiveDefineFile.h"

#include <tinyxml2.h>

#include <string_view>

#include "archive/ArchiveText.h"

namespace Cmm::Archive {
namespace {

using tinyxml2::XMLElement;

void ApplyDataType(CCmmArchiveTreeNode& node, std::string_view text) {
  CCmmArchiveVarivant& data = node.GetData();
  if (text == "Text") {
    node.SetAsText(1);
    data.SetString(nullptr);
  } else if (text == "String" || text.empty()) {
    data.SetString(nullptr);
  } else if (text == "Int32") {
    data.SetInt32(0);
  } else if (text == "UInt32") {
    data.SetUInt32(0);
  } else if (text == "BOOL") {
    data.SetBool(0);
  } else if (text == "Char") {
    data.SetChar(0);
  } else if (text == "Float") {
    data.SetFloat(0);
  } else if (text == "Double") {
    data.SetDouble(0);
  }
}

std::unique_ptr<CCmmArchiveTreeNode> ReadNodeElement(const XMLElement& element);

void AppendNodes(CCmmArchiveTreeNode& parent, const XMLElement& element) {
  for (const XMLElement* child = element.FirstChildElement("Node"); child;
       child = child->NextSiblingElement("Node")) {
    if (auto node = ReadNodeElement(*child)) parent.AppendChild(node.release());
  }
}

std::unique_ptr<CCmmArchiveTreeNode> ReadNodeElement(const XMLElement& element) {
  const char* name = element.Attribute("name");
  if (!name) return nullptr;
  auto node = std::make_unique<CCmmArchiveTreeNode>();
  node->SetName(WideFromUtf8(name));
  node->SetAsContainer(element.IntAttribute("isContainer", 0) == 1 ? 1 : 0);
  node->SetAsEssential(element.IntAttribute("isEssential", 1) == 1 ? 1 : 0);
  node->SetCountAttr(element.IntAttribute("count", 1));
  if (node->IsContainer()) {
    AppendNodes(*node, element);
  } else {
    const char* type = element.Attribute("dataType");
    ApplyDataType(*node, type ? type : "String");
  }
  return node;
}

}  // namespace

std::unique_ptr<CCmmArchivePackageTree> ReadPduElement(const XMLElement& element) {
  const char* name = element.Attribute("name");
  if (!name) return nullptr;
  auto package = std::make_unique<CCmmArchivePackageTree>();
  package->SetName(WideFromUtf8(name));
  package->SetVersion(element.IntAttribute("version", kAnyPackageVersion));
  package->GetRoot()->SetName(package->GetName());
  AppendNodes(*package->GetRoot(), element);
  return package;
}

}  // namespace Cmm::Archive
