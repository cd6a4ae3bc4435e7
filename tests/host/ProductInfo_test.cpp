#include "host/ProductInfo.h"

#include <filesystem>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;
using velm_test::ScratchDirectory;

const std::vector<std::string> kClientFiles{"Velm.exe", "vPTApp.dll", "vVideoApp.dll", "basekit.dll"};

class ProductInfo : public testing::Test {
 protected:
  void MakeFiles(const std::vector<std::string>& names, const std::filesystem::path& directory) {
    for (const std::string& name : names)
      velm_test::WriteFile(L"\\\\?\\" + (directory / name).wstring(), "x");
  }
  void MakeFiles(const std::vector<std::string>& names) { MakeFiles(names, scratch.Path()); }

  int Check(uint32_t kind, const std::string& base, const std::string& sub = "") {
    return Cmm::CheckVelmProductInfo(Cmm::FileSystemView::OfThisSystem(), kind, base.c_str(), sub.c_str(),
                                     list);
  }
  int Check(uint32_t kind = Cmm::kMeetingClient) { return Check(kind, scratch.Narrow()); }

  ScratchDirectory scratch;
  std::vector<Cmm::ProductRecord> list;
};

TEST_F(ProductInfo, DirectoryWithAllFilesOfTheClientGivesOneRecord) {
  MakeFiles(kClientFiles);
  EXPECT_EQ(Check(), 1);
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list[0].path, scratch.Narrow());
  EXPECT_EQ(list[0].kind, 0u);
  EXPECT_EQ(list[0].found, 1u);
  EXPECT_EQ(list[0].reserved16[0], 0);
  EXPECT_EQ(list[0].reserved16[1], 0);
  EXPECT_EQ(list[0].reserved32, 0u);
}

TEST_F(ProductInfo, ChatLibraryStandsInForTheMainLibrary) {
  MakeFiles({"Velm.exe", "vChatApp.dll", "vVideoApp.dll", "basekit.dll"});
  EXPECT_EQ(Check(), 1);
  EXPECT_THAT(list, SizeIs(1));
}

TEST_F(ProductInfo, EveryFileOfEveryKindIsNeeded) {
  const std::vector<std::pair<uint32_t, std::vector<std::string>>> products{
      {Cmm::kMeetingClient, kClientFiles},
      {Cmm::kConnector, {"SuiteBridge.exe", "edge_conf_peer.dll", "hlnq.dll", "hkraut.dll"}},
      {Cmm::kController, {"Panel.exe", "basekit.dll", "vrc_kit.dll"}},
  };
  for (const auto& [kind, files] : products) {
    for (const std::string& missing : files) {
      const ScratchDirectory directory;
      for (const std::string& file : files)
        if (file != missing) MakeFiles({file}, directory.Path());
      EXPECT_EQ(Check(kind, directory.Narrow()), 1) << missing;
      EXPECT_THAT(list, IsEmpty()) << missing;
    }
    const ScratchDirectory directory;
    MakeFiles(files, directory.Path());
    EXPECT_EQ(Check(kind, directory.Narrow()), 1);
    EXPECT_THAT(list, SizeIs(1)) << kind;
    list.clear();
  }
}

TEST_F(ProductInfo, UnknownKindCountsAsTheClient) {
  MakeFiles(kClientFiles);
  for (const uint32_t kind : {3u, 77u, 0xFFFFFFFFu}) {
    list.clear();
    EXPECT_EQ(Check(kind), 1);
    EXPECT_THAT(list, SizeIs(1)) << kind;
  }
}

TEST_F(ProductInfo, KindOfTheRecordIsZeroWhateverWasLookedFor) {
  MakeFiles({"Panel.exe", "basekit.dll", "vrc_kit.dll"});
  EXPECT_EQ(Check(Cmm::kController), 1);
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list[0].kind, 0u);
}

TEST_F(ProductInfo, AnythingOfTheRightNameCountsAsTheFile) {
  MakeFiles({"Velm.exe", "vPTApp.dll", "vVideoApp.dll"});
  scratch.MakeDirectory(L"basekit.dll");
  EXPECT_EQ(Check(), 1);
  EXPECT_THAT(list, SizeIs(1));
}

TEST_F(ProductInfo, NullPointersGive1AndNoRecord) {
  const Cmm::FileSystemView& view = Cmm::FileSystemView::OfThisSystem();
  EXPECT_EQ(Cmm::CheckVelmProductInfo(view, 0, nullptr, "bin", list), 1);
  EXPECT_EQ(Cmm::CheckVelmProductInfo(view, 0, "C:\\", nullptr, list), 1);
  EXPECT_EQ(Cmm::CheckVelmProductInfo(view, 0, nullptr, nullptr, list), 1);
  EXPECT_THAT(list, IsEmpty());
}

TEST_F(ProductInfo, MissingOrEmptyDirectoryGives1AndNoRecord) {
  EXPECT_EQ(Check(0, scratch.Narrow() + "\\absent"), 1);
  EXPECT_EQ(Check(0, ""), 1);
  EXPECT_THAT(list, IsEmpty());
}

TEST_F(ProductInfo, PlainFileWhereTheDirectoryShouldBeGives1AndNoRecord) {
  scratch.MakeFile(L"bin");
  EXPECT_EQ(Check(0, scratch.Narrow() + "\\", "bin"), 1);
  EXPECT_THAT(list, IsEmpty());
}

TEST_F(ProductInfo, BaseAndSubdirectoryAreJoinedWithNothingBetween) {
  MakeFiles(kClientFiles, scratch.MakeDirectory(L"bin"));
  EXPECT_EQ(Check(0, scratch.Narrow(), "bin"), 1);
  EXPECT_THAT(list, IsEmpty());
  EXPECT_EQ(Check(0, scratch.Narrow() + "\\b", "in"), 1);
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list[0].path, scratch.Narrow() + "\\bin");
}

TEST_F(ProductInfo, RecordsAreAppended) {
  MakeFiles(kClientFiles);
  Check();
  Check();
  EXPECT_THAT(list, SizeIs(2));
}

TEST_F(ProductInfo, SeparatorAtTheEndOfTheDirectoryIsNotInTheRecord) {
  MakeFiles(kClientFiles);
  EXPECT_EQ(Check(0, scratch.Narrow() + "\\"), 1);
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list[0].path, scratch.Narrow());
}

// The system functions of this contract refuse a file whose path has more than 259 characters, on most
// machines, before the length of its directory comes to count. Here every path exists.
class ProductInfoOfEveryPath : public testing::Test {
 protected:
  ProductInfoOfEveryPath() { s_asked.clear(); }
  int Check(const std::string& base, const std::string& sub = "") {
    return Cmm::CheckVelmProductInfo(kEverything, 0, base.c_str(), sub.c_str(), list);
  }
  static std::string DirectoryOfLength(size_t length) { return "C:\\" + std::string(length - 3, 'd'); }

  static inline std::vector<std::string> s_asked;
  std::vector<Cmm::ProductRecord> list;

 private:
  static constexpr Cmm::FileSystemView kEverything{nullptr, nullptr, nullptr, nullptr, [](const char* path) {
                                                     s_asked.emplace_back(path);
                                                     return Cmm::FileSystemView::kDirectoryAttribute;
                                                   }};
};

TEST_F(ProductInfoOfEveryPath, DirectoryAndFilesAreAskedForOnceInTheirOrder) {
  EXPECT_EQ(Check("C:\\Velm\\", "bin"), 1);
  EXPECT_THAT(s_asked,
              testing::ElementsAre("C:\\Velm\\bin", "C:\\Velm\\bin\\Velm.exe", "C:\\Velm\\bin\\vPTApp.dll",
                                   "C:\\Velm\\bin\\vVideoApp.dll", "C:\\Velm\\bin\\basekit.dll"));
}

TEST_F(ProductInfoOfEveryPath, DirectoryOf258CharactersFitsIntoARecord) {
  EXPECT_EQ(Check(DirectoryOfLength(258)), 1);
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list[0].path, DirectoryOfLength(258));
}

TEST_F(ProductInfoOfEveryPath, DirectoryOf259CharactersGives0) {
  EXPECT_EQ(Check(DirectoryOfLength(259)), 0);
  EXPECT_THAT(list, IsEmpty());
}

TEST_F(ProductInfoOfEveryPath, DirectoryOf260CharactersGives0) {
  EXPECT_EQ(Check(DirectoryOfLength(260)), 0);
  EXPECT_THAT(list, IsEmpty());
}

TEST_F(ProductInfoOfEveryPath, BaseAndSubdirectoryCountTogether) {
  EXPECT_EQ(Check(DirectoryOfLength(255), "bin"), 1);
  EXPECT_EQ(Check(DirectoryOfLength(255), "bin_"), 0);
  EXPECT_THAT(list, SizeIs(1));
}

TEST_F(ProductInfoOfEveryPath, PathsEndAtTheLimitOf1023Characters) {
  EXPECT_EQ(Check(DirectoryOfLength(1022), "bin"), 0);
  EXPECT_EQ(s_asked.front(), DirectoryOfLength(1022) + "b");
  EXPECT_EQ(s_asked.back(), s_asked.front());

  s_asked.clear();
  EXPECT_EQ(Check(DirectoryOfLength(1014)), 0);
  EXPECT_EQ(s_asked[1], DirectoryOfLength(1014) + "\\Velm.exe");      // 1023 characters
  EXPECT_EQ(s_asked[2], DirectoryOfLength(1014) + "\\vPTApp.d");      // cut
  EXPECT_EQ(s_asked.back(), DirectoryOfLength(1014) + "\\basekit.");  // cut

  s_asked.clear();
  EXPECT_EQ(Check(DirectoryOfLength(5000), DirectoryOfLength(5000)), 0);
  EXPECT_EQ(s_asked.front().size(), 1023u);
}

TEST_F(ProductInfo, LongDirectoryWithoutAProductGives1) {
  const std::filesystem::path directory = velm_test::MakeDirectoryOfLength(scratch.Path(), 259);
  EXPECT_EQ(Check(0, directory.string()), 1);
  EXPECT_THAT(list, IsEmpty());
}

}  // namespace
