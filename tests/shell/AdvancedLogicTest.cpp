// The advanced window's lists and record dialogs, and the favourites, on a
// real settings store.
#include <gtest/gtest.h>

#include "shell/AdvancedLogic.h"
#include "support/RouteSite.h"

namespace hifx::test {
namespace {

using namespace hifx::shell;

std::vector<std::string> Shown(const std::vector<ListRow>& rows) {
  std::vector<std::string> shown;
  for (const ListRow& row : rows) shown.push_back(row.shown);
  return shown;
}

TEST(AdvancedLists, RowsWalkThePositionsAndPassOverDeletedRecords) {
  RouteSite site;
  clsAdvanced& advanced = site.Exchange().Advanced();
  advanced.AddSkip("01", "Dog");
  advanced.AddSkip("02", "Locked");
  advanced.AddSkip("03", "Snow");
  advanced.DeleteSkip("02");
  EXPECT_EQ(Shown(ListRows(advanced, SiteList::Skips)), (std::vector<std::string>{"01\tDog", "03\tSnow"}));

  advanced.AddMessage("SerialNbr", "ANY", "SN1", "Behind fence");
  advanced.AddMessage("Account", "0001", "100-3", "Gate 4411");
  EXPECT_EQ(Shown(ListRows(advanced, SiteList::Messages, "SerialNbr")),
            std::vector<std::string>{"ANY||SN1\tBehind fence"});
  EXPECT_EQ(ListRows(advanced, SiteList::Messages, "Account").at(0).key, "0001||100-3");

  advanced.AddLogin("joe", "pw", "S");
  EXPECT_EQ(Shown(ListRows(advanced, SiteList::Logins)), std::vector<std::string>{"joe"});
  EXPECT_EQ(ListRows(advanced, SiteList::Tokens, "Owner").size(), 7U) << "the built-in words";
  EXPECT_TRUE(ListRows(advanced, SiteList::Changeouts, "XX").empty()) << "an unknown type has nothing";
}

TEST(AdvancedLists, DialogsCheckTheirFieldsInOrderAndKeysOnlyWhenAdding) {
  RouteSite site;
  clsAdvanced& advanced = site.Exchange().Advanced();
  advanced.AddLogin("joe", "pw", "");
  struct Case {
    SiteList list;
    const char* type;
    std::vector<std::string> values;
    bool adding;
    std::optional<size_t> field;
    const char* message;
  };
  const Case cases[] = {
      {SiteList::Logins, "", {" ", ""}, true, 0, "Login ID is required"},
      {SiteList::Logins, "", {"ann", " "}, true, 1, "Password is required"},
      {SiteList::Logins, "", {" JOE ", "x"}, true, 0, "Already have a login with this ID"},
      {SiteList::Logins, "", {"JOE", "x"}, false, std::nullopt, ""},
      {SiteList::Messages, "Account", {"", "7", "x"}, true, 0, "Route Nbr or (ANY) is required"},
      {SiteList::Tokens, "Owner", {"inc"}, true, 0, "Already have this Token"},
      {SiteList::Tokens, "Owner", {""}, true, 0, "Address Token is required"},
      {SiteList::Favorites, "", {"U1", "/x.pdb"}, true, std::nullopt, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    const auto problem = CheckRecord(advanced, c.list, c.type, c.values, c.adding);
    ASSERT_EQ(problem.has_value(), c.field.has_value());
    if (problem) {
      EXPECT_EQ(problem->field, *c.field);
      EXPECT_EQ(problem->message, c.message);
    }
  }
}

// Save and Delete go through the dialogs in the window's tests; here, what
// they do not show: a key typed with spaces, and Cancel.
TEST(AdvancedLists, AKeyIsTrimmedAndACancelledDialogChangesNothing) {
  RouteSite site;
  clsAdvanced& advanced = site.Exchange().Advanced();
  ApplyRecord(advanced, SiteList::Changeouts, "MT", "Save", true, {" W5 ", "Water 5/8"});
  ApplyRecord(advanced, SiteList::Changeouts, "MT", "Cancel", false, {"W5", "lost"});
  EXPECT_EQ(Shown(ListRows(advanced, SiteList::Changeouts, "MT")), std::vector<std::string>{"W5\tWater 5/8"});
}

TEST(Favorites, RowsShowTheFileDateOrWhyThereIsNone) {
  RouteSite site;
  clsAdvanced& advanced = site.Exchange().Advanced();
  EXPECT_FALSE(AnyFavoritePath(advanced));
  WriteBytes(site.dir / "unit1.pdb", "x");
  advanced.AddFavorite("UNIT1", (site.dir / "unit1.pdb").string());
  advanced.AddFavorite("UNIT2", (site.dir / "gone.pdb").string());
  advanced.AddFavorite("UNIT3", "");
  const std::vector<FavoriteRow> rows = FavoriteRows(advanced);
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_EQ(std::count(rows[0].date.begin(), rows[0].date.end(), '/'), 2) << rows[0].date;
  EXPECT_EQ(rows[1].date, "[File Not Found]");
  EXPECT_EQ(rows[2].date, "[No Path set]");
  EXPECT_TRUE(AnyFavoritePath(advanced));

  const std::vector<ListRow> tab = FavoriteTabRows(advanced, {"unit3", "UNIT4"});
  EXPECT_EQ(Shown(tab).back(), "UNIT4\t");
  EXPECT_EQ(tab.size(), 4U) << "a unit with a favourite is not added twice";
}

}  // namespace
}  // namespace hifx::test
