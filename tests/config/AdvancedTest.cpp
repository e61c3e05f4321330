#include <gtest/gtest.h>

#include "base/CaseBlind.h"
#include "config/RegistryRoot.h"
#include "support/TestRegistryStore.h"
#include "config/clsAdvanced.h"
#include "support/TempDir.h"

namespace hifx::test {
namespace {

class Advanced : public testing::Test {
 protected:
  TempDir dir;
  TestRegistryStore store{dir.path()};
  clsRegistry registry{store};

  void Put(const std::string& key, const std::string& name, const std::string& data) {
    ASSERT_TRUE(registry.SaveValue(data, RootValuePath(key, name)));
  }
  size_t CountIn(const std::string& key) { return registry.GetValues(RootKeyPath(key)).Count(); }
};

TEST_F(Advanced, AnEmptyRegistryGivesDefaultsAndTheBuiltInTokens) {
  {
    clsAdvanced advanced(store);
    EXPECT_FALSE(advanced.UseLoginSecurity());
    EXPECT_EQ(advanced.IndexControl(), 1);
    EXPECT_EQ(advanced.AlertOutOfBounds(), 0);
    std::string token;
    EXPECT_EQ(advanced.GetToken("Address", Value::Integer(5), token), 5);
    EXPECT_EQ(token, "BLVD");
    EXPECT_EQ(advanced.GetToken("Owner", Value("llc"), token), 6);
    EXPECT_EQ(advanced.GetToken("Owner", Value::Integer(8), token), -1);
    std::string a, b, c;
    EXPECT_EQ(advanced.GetLogin(Value::Integer(1), a, b, c), -1);
    EXPECT_EQ(advanced.GetSkip(Value::Integer(1), a, b), -1);
    EXPECT_TRUE(advanced.IsDirty(clsAdvanced::kTokens));
    EXPECT_FALSE(advanced.IsDirty(clsAdvanced::kLogins));
    EXPECT_EQ(CountIn("TokenAddress"), 0u);
  }
  // The fourteen built-in tokens reach the registry on the first save, and
  // nothing else does.
  EXPECT_EQ(CountIn("TokenAddress"), 7u);
  EXPECT_EQ(CountIn("TokenOwner"), 7u);
  EXPECT_TRUE(registry.GetValues(RootKeyPath("TokenOwner")).Contains("AND"));
#ifndef _WIN32
  EXPECT_EQ(registry.GetValues(RootKeyPath("TokenOwner")).Key(7), "AND");  // in the order listed
#endif
  EXPECT_EQ(registry.GetValue(RootReadPath("Token", "IndexControl")), Value("1"));
  EXPECT_EQ(CountIn("LoginSetup"), 0u);
  EXPECT_EQ(CountIn("OperPrefs"), 0u);
}

TEST_F(Advanced, LoginsSplitOnDoubleBarsAndAreFoundWithNoRegardToCase) {
  Put("LoginSetup", "UseLogin", "Y");
  // Written in the order of their names, which every store gives back.
  Put("LoginIDs", "amy", "pw");
  Put("LoginIDs", "bob", "a||b||c");
  Put("LoginIDs", "joe", "secret||S");
  clsAdvanced advanced(store);
  EXPECT_TRUE(advanced.UseLoginSecurity());
  // What a look-up gives: the index, then the ID, password and rights.
  auto login = [&](const Value& selector) {
    std::string id, password, rights;
    const auto at = advanced.GetLogin(selector, id, password, rights);
    return std::to_string(at) + " " + id + "|" + password + "|" + rights;
  };
  EXPECT_EQ(login(Value("JOE")), "3 joe|secret|S");
  EXPECT_EQ(login(Value("amy")), "1 amy|pw|");
  EXPECT_EQ(login(Value::Integer(2)), "2 bob|a|b");
  // A 32-bit selector is not a position: it is looked up as the key "3".
  EXPECT_EQ(login(Value::Long(3)).substr(0, 3), "-1 ");
}

TEST_F(Advanced, ADeleteThenAnAddOfOneLoginSurvivesTheSave) {
  Put("LoginIDs", "joe", "old||");
  {
    clsAdvanced advanced(store);
    EXPECT_EQ(advanced.DeleteLogin("JOE"), 1);
    EXPECT_EQ(advanced.AddLogin("joe", "new", "S"), 2);
    std::string id = "x", password = "kept", rights;
    EXPECT_EQ(advanced.GetLogin(Value::Integer(1), id, password, rights), 1);
    EXPECT_EQ(id, "");  // a deleted record reports an empty key
    EXPECT_EQ(password, "kept");
    EXPECT_EQ(advanced.GetLogin(Value("joe"), id, password, rights), 2);
    EXPECT_EQ(advanced.DeleteLogin("nobody"), -1);
    EXPECT_EQ(advanced.UpdateLogin("nobody", "p", ""), -1);
  }
  EXPECT_EQ(registry.GetValue(RootReadPath("LoginIDs", "joe")), Value("new||S"));
  EXPECT_EQ(registry.GetValue(RootReadPath("LoginSetup", "UseLogin")), Value("N"));
}

TEST_F(Advanced, OnlyDirtyGroupsAreWritten) {
  Put("Skip", "DOG", "Dog in yard");
  {
    clsAdvanced advanced(store);
    EXPECT_EQ(advanced.UpdateSkip("dog", "Loose dog"), 1);
    EXPECT_EQ(advanced.AddChangeout("MT", "W", "Water"), 1);
    EXPECT_EQ(advanced.AddChangeout("XX", "W", "Water"), 0);  // unknown type: nothing
    EXPECT_EQ(advanced.UpdateFavorite("UNIT1", "/data/u1.pdb"), 1);  // added
    advanced.AlertTamper(2);
    advanced.SaveValues();
    EXPECT_FALSE(advanced.IsDirty(clsAdvanced::kSkips));
  }
  EXPECT_EQ(registry.GetValue(RootReadPath("Skip", "DOG")), Value("Loose dog"));
  EXPECT_EQ(registry.GetValue(RootReadPath("ChangeoutMT", "W")), Value("Water"));
  EXPECT_EQ(registry.GetValue(RootReadPath("Favorite", "UNIT1")), Value("/data/u1.pdb"));
  EXPECT_EQ(registry.GetValue(RootReadPath("FavoriteSetup", "UseFavorite")), Value("N"));
  EXPECT_EQ(registry.GetValue(RootReadPath("OperPrefs", "AlertTamper")), Value("2"));
  EXPECT_EQ(registry.GetValue(RootReadPath("OperPrefs", "AlertRollover")), Value("0"));
  EXPECT_EQ(CountIn("LoginSetup"), 0u);
  EXPECT_EQ(CountIn("MessagesAccount"), 0u);
}

TEST_F(Advanced, KeyLookupsFindTheFirstLiveRecord) {
  clsAdvanced advanced(store);
  advanced.AddSkip("A", "first");
  advanced.AddSkip("a", "second");
  std::string code, reason;
  EXPECT_EQ(advanced.GetSkip(Value("A"), code, reason), 1);
  EXPECT_EQ(reason, "first");
  advanced.DeleteSkip("A");
  EXPECT_EQ(advanced.GetSkip(Value("A"), code, reason), 2);
  EXPECT_EQ(reason, "second");
  // Long keys, past what the list tells apart by length, in any case.
  const std::string longKey(40, 'k');
  advanced.AddSkip(longKey + "z", "long");
  EXPECT_EQ(advanced.GetSkip(Value(UpperCase(longKey) + "Z"), code, reason), 3);
  EXPECT_EQ(advanced.GetSkip(Value(longKey + "zz"), code, reason), -1);
  EXPECT_EQ(advanced.GetSkip(Value("B"), code, reason), -1);
}

struct LookupCase {
  const char* name;
  const char* billing;
  const char* account;
  const char* serial;
  const char* tag;
  const char* expected;
};

class LookupMessageTest : public Advanced, public testing::WithParamInterface<LookupCase> {};

TEST_P(LookupMessageTest, BuildsTheHandheldText) {
  Put("MessagesAccount", "7||A1", "Dog");
  Put("MessagesAccount", "ANY||A1", "Any dog");
  Put("MessagesAccount", "ANY||A2", "Gate");
  Put("MessagesMeterSerialNbr", "7||S1", "Meter inside");
  Put("MessagesMeterTagNbr", "ANY||T1", "Lockedup");
  Put("MessagesAccount", "ANY||", "Blank id");
  clsAdvanced advanced(store);
  const LookupCase& c = GetParam();
  EXPECT_EQ(advanced.LookupMessage(c.billing, "7", c.account, c.serial, c.tag), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, LookupMessageTest,
    testing::Values(
        LookupCase{"Nothing", "", "", "", "", ""},
        LookupCase{"BillingOnly", "Call first", "", "", "", "Billing: Call first"},
        LookupCase{"RouteMessageWinsOverAny", "", "A1", "", "", "Supervisor: Dog"},
        LookupCase{"AnyRoute", "", "A2", "", "", "Supervisor: Gate"},
        LookupCase{"BlankAccountNotLookedUp", "", "  ", "", "", ""},
        LookupCase{"TwoMessages", "", "A1", "S1", "", "Supervisor: Account: Dog; SerialNbr: Meter inside"},
        LookupCase{"ThreeMessages", "", "A2", "S1", "T1",
                   "Supervisor: Account: Gate; SerialNbr: Meter inside; TagNbr: Lockedup"},
        // 3 (011) and 3 (011) share bits: both parts.
        LookupCase{"LengthsSharingABit", "Bil", "A1", "", "", "Billing: Bil\nSupervisor: Dog"},
        // 4 (100) and 8 (1000) share none: the supervisor text is lost.
        LookupCase{"LengthsSharingNoBit", "Call", "", "S9", "T1", "Billing: Call"},
        LookupCase{"UnknownIds", "", "A9", "S9", "T9", ""}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace hifx::test
