#include "module/ModuleList.h"

#include <fstream>
#include <string>

#include "gtest/gtest.h"
#include "tests/support/ScratchDirectory.h"

namespace Cmm::module {
namespace {

std::string Described(const std::optional<std::vector<ModuleEntry>>& entries) {
  if (!entries) return "unreadable";
  std::string text;
  for (const ModuleEntry& entry : *entries)
    text += std::string("[") + entry.name.c_str() + "|" + entry.type.c_str() + "|" + entry.caps.c_str() + "]";
  return text;
}

struct Case {
  const char* xml;
  const char* expected;
};

TEST(ModuleList, ReadsTheModuleElementsBelowARootOfAnyName) {
  const Case cases[] = {
      {"<modules/>", ""},
      {R"(<any><module name="a"/><module name="b" type="App" caps="IdleHandler"/></any>)",
       "[a||][b|App|IdleHandler]"},
      {R"(<m><other name="x"/><module name="a"/><Module name="y"/><sub><module name="z"/></sub></m>)",
       "[a||]"},
      {R"(<m><module/><module name="" type="UI"/></m>)", "[||][|UI|]"},
      {R"(<m><module name="a&amp;b" caps=" IdleHandler ; x "/></m>)", "[a&b|| IdleHandler ; x ]"},
      {R"(<?xml version="1.0"?><!-- list --><m><module name="a"/></m><n><module name="b"/></n>)", "[a||]"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(Described(ParseModuleList(c.xml)), c.expected) << c.xml;
}

TEST(ModuleList, WhatIsNoDocumentIsUnreadable) {
  for (const char* xml : {"", "text", "<m>", "<m><module name=a/></m>", "<!-- only a comment -->", "<m></n>"})
    EXPECT_EQ(Described(ParseModuleList(xml)), "unreadable") << xml;
}

TEST(ModuleList, IsReadFromAFile) {
  const velm_test::ScratchDirectory scratch;
  const auto path = scratch.Path() / "list.xml";
  std::ofstream(path) << R"(<m><module name="from file"/></m>)";
  EXPECT_EQ(Described(ReadModuleListFile(path.string().c_str())), "[from file||]");
}

TEST(ModuleList, AFileThatIsNotThereOrEmptyIsUnreadable) {
  const velm_test::ScratchDirectory scratch;
  const auto path = scratch.Path() / "list.xml";
  EXPECT_EQ(Described(ReadModuleListFile(path.string().c_str())), "unreadable");
  std::ofstream(path).close();
  EXPECT_EQ(Described(ReadModuleListFile(path.string().c_str())), "unreadable");
}

}  // namespace
}  // namespace Cmm::module
