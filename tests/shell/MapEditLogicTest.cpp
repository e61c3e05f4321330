// What the map editor decides that its window's tests do not reach: codes
// no map of the examples carries, every date format, the mappings of
// delimited maps, typed names and numbers, and the buttons' failures.
#include <gtest/gtest.h>

#include <deque>

#include "maps/MapCatalogues.h"
#include "shell/MapEditLogic.h"
#include "support/TempDir.h"

namespace hifx::test {
namespace {

using namespace hifx::shell;

std::vector<int32_t> Codes(const MapList& list) {
  std::vector<int32_t> codes;
  for (const MapListItem& item : list) codes.push_back(item.data);
  return codes;
}

TEST(MapEditLists, OptionsDependOnTheUseAndCodesFromElsewhereShowNothing) {
  for (int32_t use : {kUseRoute, kUseReRead}) {
    EXPECT_EQ(Codes(MapOptionItems(use, "RouteNbr")), (std::vector<int32_t>{1, 2, 3, 4})) << use;
  }
  for (int32_t use : {kUseReading, kUseOrphan}) {
    EXPECT_EQ(Codes(MapOptionItems(use, "Sequence")), (std::vector<int32_t>{1, 5})) << use;
  }
  EXPECT_EQ(ListIndexOf(MapTerminatorItems(), 4), -1) << "code 4 comes only from files written elsewhere";
  EXPECT_EQ(MapEditCaption(kUseOrphan, "Orphans.hom", true), "New Orphan Map") << "a new map's name is not shown";
}

// The units of a format code are flags its text must agree with: 1 a "-",
// 2 a "/" (":" in times), 4 a four-digit year.
TEST(MapEditLists, FormatsAreTheDateCodesForDatesAndTheTimeCodesForTimes) {
  const MapList dates = MapFormatItems(kTypeDate);
  ASSERT_EQ(dates.size(), 18u);
  for (const MapListItem& item : dates) {
    const int units = item.data % 10;
    EXPECT_TRUE(item.data >= 10 && item.data < 40) << item.data;
    EXPECT_EQ(item.text.find('-') != std::string::npos, (units & 1) != 0) << item.text;
    EXPECT_EQ(item.text.find('/') != std::string::npos, (units & 2) != 0) << item.text;
    EXPECT_EQ(item.text.find("YYYY") != std::string::npos, (units & 4) != 0) << item.text;
  }
  EXPECT_EQ(dates.front(), (MapListItem{"MMDDYY", 20}));
  EXPECT_EQ(Codes(MapFormatItems(kTypeTime)), (std::vector<int32_t>{40, 42, 41, 43}));
  for (int32_t type : {kTypeText, kTypeInteger, kTypeLong, kTypeNumber}) EXPECT_TRUE(MapFormatItems(type).empty());
}

TEST(MapEditRules, ANewMapWithoutATypeMapsItsFieldsByColumn) {
  const MapHeaderRules rules = HeaderRules(kUseReRead, 0);
  EXPECT_TRUE(rules.fieldsEnabled && rules.lengthShown && !rules.delimiterEnabled);
  EXPECT_EQ(rules.positionCaption, "Column");
}

struct FieldRuleCase {
  int32_t type;
  int32_t option;
  int32_t dataType;
  MapFieldRules rules;  // option, position, width, constant, align, pad, format
};

class MapEditFieldRules : public testing::TestWithParam<FieldRuleCase> {};

TEST_P(MapEditFieldRules, TheMappingEnablesWhatItUses) {
  const FieldRuleCase& c = GetParam();
  EXPECT_EQ(FieldRules(c.type, c.option, c.dataType), c.rules);
}

INSTANTIATE_TEST_SUITE_P(
    Table, MapEditFieldRules,
    testing::Values(FieldRuleCase{1, kOptionDoNotMap, kTypeDate, {true, false, false, false, false, false, false}},
                    FieldRuleCase{2, kOptionSource, kTypeText, {true, true, false, false, false, false, false}},
                    FieldRuleCase{1, kOptionSource, kTypeDate, {true, true, true, false, false, false, true}},
                    FieldRuleCase{2, kOptionSource, kTypeTime, {true, true, false, false, false, false, true}},
                    FieldRuleCase{1, kOptionConstant, kTypeDate, {true, false, false, true, false, false, false}},
                    FieldRuleCase{1, kOptionPrompt, kTypeText, {true, false, false, false, false, false, false}},
                    FieldRuleCase{1, kOptionAutonumber, kTypeNumber, {true, false, false, false, false, false, false}},
                    FieldRuleCase{1, kOptionDestination, kTypeNumber, {true, true, true, false, true, true, false}},
                    FieldRuleCase{2, kOptionDestination, kTypeDate, {true, true, false, false, false, false, true}},
                    FieldRuleCase{0, kOptionDestination, kTypeDate, {true, true, false, false, false, false, true}},
                    // A layout of its own leaves nothing of a field to change.
                    FieldRuleCase{4, kOptionSource, kTypeText, {}}));

TEST(MapEditNames, NumbersAreTheLeadingDigitsWithinSixteenBits) {
  EXPECT_EQ(MapNumber(""), 0);
  EXPECT_EQ(MapNumber("40"), 40);
  EXPECT_EQ(MapNumber("12ab"), 12);
  EXPECT_EQ(MapNumber("-3"), 0);
  EXPECT_EQ(MapNumber("32767"), 32767);
  EXPECT_EQ(MapNumber("99999999999"), 32767);
}

TEST(MapEditNames, ATypedNameStaysAFileNameWithTheUsesExtension) {
  EXPECT_EQ(MapNameFromAnswer("x\\y:z", kUseReRead), "x_y_z.hcm");
  EXPECT_EQ(MapNameFromAnswer("Billing", kUseReading), "Billing.hrm");
  EXPECT_EQ(MapNameFromAnswer("Orphans", kUseOrphan), "Orphans.hom");
  EXPECT_EQ(MapNameFromAnswer("Billing.hrm", kUseReading), "Billing_hrm.hrm") << "an extension typed is part of the name";
  EXPECT_EQ(MapNameFromAnswer("", kUseRoute), std::nullopt);
}

// Answers the editor's questions from a script and keeps what it was asked.
class EditorShell final : public IShell {
 public:
  void WriteLog(std::string_view) override {}
  void SetProgressButton(int32_t, int32_t) override {}
  MsgAnswer MsgBox(std::string_view text, std::string_view title, MsgButtons, MsgIcon icon) override {
    asked.push_back(std::string(title) + ": " + std::string(text));
    icons.push_back(icon);
    if (answers.empty()) return MsgAnswer::Cancel;
    const MsgAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }
  std::optional<std::string> InputBox(std::string_view prompt, std::string_view title, std::string_view) override {
    asked.push_back(std::string(title) + ": " + std::string(prompt));
    if (names.empty()) return std::nullopt;
    std::optional<std::string> name = names.front();
    names.pop_front();
    return name;
  }

  std::vector<std::string> asked;
  std::vector<MsgIcon> icons;
  std::deque<MsgAnswer> answers;
  std::deque<std::optional<std::string>> names;
};

const std::string kSaveChanges = "Mapping Information: Save Changes?";
const std::string kMapName = "Save Map: Map Name";

struct MapEditButtons : testing::Test {
  TempDir dir;
  clsExchMap map{dir.path()};
  EditorShell shell;
  MapEditActions actions{map, shell};
};

TEST_F(MapEditButtons, YesWithoutANameStaysOpenWithTheChanges) {
  map.NewMap("", kUseRoute);
  shell.answers = {MsgAnswer::Yes};
  EXPECT_EQ(actions.Action("CLOSE"), MapEditOutcome{});
  EXPECT_EQ(shell.asked, (std::vector<std::string>{kSaveChanges, kMapName}));
  EXPECT_TRUE(map.Dirty());
  EXPECT_EQ(FilesIn(dir.path()), 0u);
}

TEST_F(MapEditButtons, SaveKeepsTheNameAndSaveAsAsksForAnother) {
  map.NewMap("Billing.hrm", kUseReading);
  EXPECT_EQ(actions.Action("SAVE"), (MapEditOutcome{true, "Billing.hrm"}));
  EXPECT_TRUE(shell.asked.empty());

  map.SetMapLength(80);
  shell.names = {"Copy"};
  EXPECT_EQ(actions.Action("SAVEAS"), (MapEditOutcome{true, "Copy.hrm"}));
  EXPECT_EQ(shell.asked, std::vector<std::string>{kMapName});
  EXPECT_EQ(FilesIn(dir.path()), 2u);
  EXPECT_NE(ReadBytes(dir / "Copy.hrm").find("MAPLENGTH=80\r\n"), std::string::npos);
  EXPECT_NE(ReadBytes(dir / "Billing.hrm").find("MAPLENGTH=0\r\n"), std::string::npos);
}

TEST_F(MapEditButtons, DeleteNeedsANamedMapWithAFile) {
  map.NewMap("", kUseOrphan);
  EXPECT_EQ(actions.Action("DELETE"), MapEditOutcome{}) << "a map never saved has no file";
  map.SetMapName("   ");
  EXPECT_EQ(actions.Action("DELETE"), MapEditOutcome{});
  EXPECT_TRUE(shell.asked.empty());

  // Named but never written: the window says why and stays.
  map.SetMapName("Orphans.hom");
  EXPECT_EQ(actions.Action("DELETE"), MapEditOutcome{});
  ASSERT_EQ(shell.asked.size(), 1u);
  EXPECT_EQ(shell.asked[0].rfind("Mapping Information: File not found:", 0), 0u) << shell.asked[0];
  EXPECT_EQ(shell.icons.at(0), MsgIcon::Critical);
}

TEST_F(MapEditButtons, AMapThatCanNotBeWrittenStaysOpenWithItsChanges) {
  clsExchMap lost(dir / "no such folder");
  MapEditActions lostActions(lost, shell);
  lost.NewMap("Billing.hcm", kUseRoute);
  EXPECT_EQ(lostActions.Action("SAVE"), MapEditOutcome{});
  EXPECT_TRUE(lost.Dirty());
  ASSERT_EQ(shell.asked.size(), 1u);
  EXPECT_EQ(shell.icons.at(0), MsgIcon::Critical);
}

}  // namespace
}  // namespace hifx::test
