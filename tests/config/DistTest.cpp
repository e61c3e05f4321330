#include <gtest/gtest.h>

#include <algorithm>

#include "config/RegistryRoot.h"
#include "support/TestRegistryStore.h"
#include "config/clsDist.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

const RegPath kRoot = {"HKEY_LOCAL_MACHINE", "Software\\Norvane, Inc.\\hifExchange\\"};

class Site {
 public:
  explicit Site(const std::filesystem::path& folder)
      : folder_(folder), store_((std::filesystem::create_directories(folder), folder)) {}
  clsRegistry Registry() { return clsRegistry(store_); }
  std::string Dump() {
    TestShell shell;
    return Registry().GetKeyInfo(kRoot, shell);
  }
  clsDist Dist(TestShell& shell) { return clsDist(store_, shell, folder_); }
  const std::filesystem::path& Folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
  TestRegistryStore store_;
};

// The file's text is held to the example distribution's in the command
// line's tests; here values with quotes, a map without a final line break
// and a file that is no map.
TEST(Dist, WriteThenLoadGivesTheSameRegistryAndMaps) {
  TempDir dir;
  Site from(dir / "from");
  auto registry = from.Registry();
  // Keys and values in the order of their names, which every store gives back.
  registry.SaveValue("pw||S", RootValuePath("LoginIDs", "joe"));
  registry.SaveValue("Say \"hi\"", RootValuePath("MessagesAccount", "ANY||100"));
  registry.SaveValue("Billing", RootValuePath("Route", "Map"));
  registry.SaveValue("route.txt", RootValuePath("Route", "Source"));
  registry.SaveValue("", RootValuePath("TokenAddress", "RD"));
  const std::string routeMap = "HIF=1.1\r\nMAPNAME=Billing.hcm\r\nMAPTYPE=1\r\nRouteNbr=1,4,,,0\r\n";
  const std::string readingMap = "HIF=1.1\r\nMAPNAME=Out.hrm\r\nCurReading=13,8,R,Z,0";  // no final break
  WriteBytes(from.Folder() / "Billing.hcm", routeMap);
  WriteBytes(from.Folder() / "Out.hrm", readingMap);
  WriteBytes(from.Folder() / "notes.txt", "not a map");

  TestShell shell;
  const auto file = dir / "site.dst";
  ASSERT_TRUE(from.Dist(shell).WriteDist(file));
  EXPECT_EQ(shell.questions, (std::vector<Question>{{file.string() + " written.", "Distribution", MsgButtons::OK}}));

  Site to(dir / "to");
  TestShell loadShell;
  ASSERT_TRUE(to.Dist(loadShell).LoadDist(file));
  EXPECT_EQ(to.Dump(), from.Dump());
  EXPECT_EQ(ReadBytes(to.Folder() / "Billing.hcm"), routeMap);
  EXPECT_EQ(ReadBytes(to.Folder() / "Out.hrm"), readingMap);
  EXPECT_FALSE(std::filesystem::exists(to.Folder() / "notes.txt"));
  EXPECT_EQ(to.Registry().GetValue(RootReadPath("MessagesAccount", "ANY||100")), Value("Say \"hi\""));
}

// A long file is read a stretch at a time: a section's break that falls
// across two stretches still starts a section.
TEST(Dist, ASectionBreakAcrossTheReadingStretchesIsFound) {
  TempDir dir;
  Site site(dir / "site");
  std::string text = "DIST 1.0\r\n[UNKNOWN MAP pad.hxm]\r\n";
  text.resize(32767, 'x');  // the break's CR is the stretch's last byte
  text += "\r\n[REGISTRY]\r\nRoute:\r\n> Map = \"M\"\r\n[ROUTE MAP B.hcm]\r\nHIF=1.1\r\nMAPNAME=B.hcm\r\nMAPTYPE=1\r\n";
  WriteBytes(dir / "long.dst", text);
  TestShell shell;
  ASSERT_TRUE(site.Dist(shell).LoadDist(dir / "long.dst"));
  EXPECT_EQ(site.Registry().GetValue(RootReadPath("Route", "Map")), Value("M"));
  EXPECT_EQ(ReadBytes(site.Folder() / "B.hcm"), "HIF=1.1\r\nMAPNAME=B.hcm\r\nMAPTYPE=1\r\n");
}

TEST(Dist, BadSectionsAreReportedAndTheRestLoads) {
  TempDir dir;
  Site site(dir / "site");
  WriteBytes(site.Folder() / "Keep.hcm", "HIF=1.1\r\nold\r\n");
  WriteBytes(dir / "mixed.dst",
             "DIST 9.9\n[REGISTRY]\nRoute:\nSource missing its arrow\n> Map = \"M\"\n"
             "[ROUTE MAP Keep.hcm]\nMAPNAME=Keep.hcm\n"                  // no HIF=
             "[ORPHAN MAP ../escape.hom]\nHIF=1.1\n"                    // not a plain name
             "[READING MAP New.hrm]\nHIF=1.1\nMAPTYPE=2\n[weird line]\n"  // cut at the "["
             "[UNKNOWN MAP x.hxm]\nHIF=1.1\n");
  TestShell shell;
  ASSERT_TRUE(site.Dist(shell).LoadDist(dir / "mixed.dst"));
  ASSERT_EQ(shell.questions.size(), 4u);
  EXPECT_EQ(shell.questions[0].text, "Improperly formatted registry entry\r\nSource missing its arrow");
  EXPECT_EQ(shell.questions[1].text, "Improperly formatted map file\r\nROUTE MAP Keep.hcm");
  EXPECT_EQ(shell.questions[2].text.rfind("Improperly formatted map file", 0), 0u);
  EXPECT_EQ(site.Registry().GetValue(RootReadPath("Route", "Map")), Value("M"));
  EXPECT_EQ(ReadBytes(site.Folder() / "Keep.hcm"), "HIF=1.1\r\nold\r\n");
  EXPECT_EQ(ReadBytes(site.Folder() / "New.hrm"), "HIF=1.1\nMAPTYPE=2");
  EXPECT_FALSE(std::filesystem::exists(dir / "escape.hom"));
  EXPECT_FALSE(std::filesystem::exists(site.Folder() / "x.hxm"));
}

// A map section names a map of its section's kind, nothing else of the
// site's; what it holds must load as a map. A refused section leaves the file
// of that name as it was and nothing beside it.
TEST(Dist, AMapSectionWritesOnlyAMapOfItsOwnKind) {
  TempDir dir;
  Site site(dir / "site");
  WriteBytes(site.Folder() / "Keep.hcm", "HIF=1.1\r\nold\r\n");
  const std::string huge = "HIF=1.1\r\n" + std::string(1024 * 1024 + 1, 'x');
  for (const std::string name : {"registry.db", "HALVERNLINK.PRC", "Keep.hrm", "Keep.hom", ".hcm",
                                  ".Keep.hcm", "Keep.hcm.txt", "Keep"}) {
    WriteBytes(dir / "one.dst", "DIST 1.0\r\n[ROUTE MAP " + name + "]\r\nHIF=1.1\r\nMAPTYPE=1\r\n");
    const bool existed = std::filesystem::exists(site.Folder() / name);
    const std::string before = ReadBytes(site.Folder() / name);
    TestShell shell;
    ASSERT_TRUE(site.Dist(shell).LoadDist(dir / "one.dst"));
    ASSERT_EQ(shell.questions.size(), 2u) << name;
    EXPECT_EQ(shell.questions[0].text, "Improperly formatted map file\r\nROUTE MAP " + name);
    EXPECT_EQ(std::filesystem::exists(site.Folder() / name), existed) << name;
    EXPECT_EQ(ReadBytes(site.Folder() / name), before) << name;
  }
  WriteBytes(dir / "big.dst", "DIST 1.0\r\n[ROUTE MAP Keep.hcm]\r\n" + huge);
  TestShell shell;
  ASSERT_TRUE(site.Dist(shell).LoadDist(dir / "big.dst"));
  EXPECT_EQ(shell.questions[0].text, "Improperly formatted map file\r\nROUTE MAP Keep.hcm");
  EXPECT_EQ(ReadBytes(site.Folder() / "Keep.hcm"), "HIF=1.1\r\nold\r\n");
  // The ending is the kind's in any case; the new map replaces the old whole.
  WriteBytes(dir / "good.dst", "DIST 1.0\r\n[ROUTE MAP Keep.HCM]\r\nHIF=1.1\r\nMAPTYPE=2\r\n");
  TestShell good;
  ASSERT_TRUE(site.Dist(good).LoadDist(dir / "good.dst"));
  EXPECT_EQ(good.questions.size(), 1u);
  EXPECT_EQ(ReadBytes(site.Folder() / "Keep.HCM"), "HIF=1.1\r\nMAPTYPE=2\r\n");
  std::vector<std::string> left;
  for (const auto& entry : std::filesystem::directory_iterator(site.Folder())) {
    left.push_back(entry.path().filename().string());
  }
  std::sort(left.begin(), left.end());
  // No temporary file stays behind a refused or a loaded section.
  for (const std::string& name : left) EXPECT_NE(name.front(), '.') << name;
}

}  // namespace
}  // namespace hifx::test
