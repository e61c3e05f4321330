#include <gtest/gtest.h>

#include "base/Failure.h"
#include "config/clsRegistry.h"
#include "support/TempDir.h"
#include "support/TestRegistryStore.h"
#include "support/TestShell.h"

#ifndef _WIN32
#include <sqlite3.h>
#endif

namespace hifx::test {
namespace {

const RegPath kKey = {"HKEY_LOCAL_MACHINE", "Software\\Norvane, Inc.\\hifExchange\\", "Route"};

RegPath ValuePath(const std::string& name) {
  RegPath path = kKey;
  path.push_back(name);
  return path;
}

// The platform's own store: the machine registry on Windows, SQLite elsewhere.
class Registry : public testing::Test {
 protected:
  TempDir dir;
  TestRegistryStore store{dir.path()};
  clsRegistry registry{store};
};

TEST_F(Registry, KeysAlongThePathAreMadeInOneCallAndNamesIgnoreCase) {
  EXPECT_TRUE(registry.SaveValue("a.txt",
                                 {"HKEY_LOCAL_MACHINE", "Software", "Norvane, Inc.", "hifExchange",
                                  "Route", "Source"}));
  EXPECT_EQ(registry.GetValue(ValuePath("Source")), Value("a.txt"));
  EXPECT_EQ(registry.GetValue({"HKEY_LOCAL_MACHINE", "SOFTWARE\\norvane, inc.\\HIFEXCHANGE\\route",
                               "SOURCE"}),
            Value("a.txt"));
  EXPECT_TRUE(registry.GetValue(ValuePath("Missing")).IsEmpty());
  EXPECT_TRUE(registry.GetValue({"HKEY_NOWHERE", "Software", "Source"}).IsEmpty());
  EXPECT_FALSE(registry.SaveValue("x", {"HKEY_NOWHERE", "Software", "Source"}));
  uint32_t hive = 1;
  std::string path;
  EXPECT_FALSE(registry.KeyPath(hive, path, {"HKEY_NOWHERE", "A"}));
  EXPECT_EQ(hive, 0u);
  EXPECT_TRUE(registry.KeyPath(hive, path, {"HKEY_CURRENT_USER", "A\\", "B", std::string("C\0D", 3)}));
  EXPECT_EQ(hive, kHiveCurrentUser);
  EXPECT_EQ(path, "A\\B\\CD");
}

// Off Windows values come back in the order they were first written; the
// registry gives them by name.
TEST_F(Registry, AnUpdateKeepsTheNamesCaseAndPlaceAndADeleteHappensOnce) {
  const auto names = [&] { return KeysOf(registry.GetValues(kKey)); };
  for (const char* name : {"Source", "Destination", "HIFType", "Map"}) registry.SaveValue(name, ValuePath(name));
  registry.SaveValue("again", ValuePath("DESTINATION"));
  EXPECT_EQ(names(), StoreOrder({"Source", "Destination", "HIFType", "Map"}));
  EXPECT_TRUE(registry.DeleteValue(ValuePath("source")));
  EXPECT_FALSE(registry.DeleteValue(ValuePath("source")));
  EXPECT_EQ(names(), StoreOrder({"Destination", "HIFType", "Map"}));
  EXPECT_EQ(registry.GetValue(ValuePath("Destination")), Value("again"));
  registry.SaveValue("back", ValuePath("Source"));  // deleted and written again: now last
  EXPECT_EQ(names(), StoreOrder({"Destination", "HIFType", "Map", "Source"}));
}

TEST_F(Registry, LongValuesReadAsEmptyAndEmptyStringsAsEmptyText) {
  registry.SaveValue(std::string(1023, 'x'), ValuePath("Fits"));     // 1,024 bytes with its NUL
  registry.SaveValue(std::string(1024, 'x'), ValuePath("TooLong"));  // 1,025 bytes
  registry.SaveValue("", ValuePath("Empty"));
  EXPECT_EQ(registry.GetValue(ValuePath("Fits")).Text().size(), 1023u);
  EXPECT_TRUE(registry.GetValue(ValuePath("TooLong")).IsEmpty());
  EXPECT_EQ(registry.GetValue(ValuePath("Empty")), Value(""));
}

// Keys and values are made in the order of their names, which is the order in
// which both the registry and the SQLite store give them back.
TEST_F(Registry, KeyDumpShowsEveryType) {
  const KeyNames root = {"Software", "Norvane, Inc.", "hifExchange"};
  store.CreateKey(kHiveLocalMachine, [&] { KeyNames k = root; k.push_back("Empty"); return k; }());
  KeyNames route = root;
  route.push_back("Route");
  store.SetValue(kHiveLocalMachine, route, "Blob", kRegBinary, std::string("\x01\xAB", 2));
  store.SetValue(kHiveLocalMachine, route, "Count", kRegDword, std::string("\x0c\x00\x00\x80", 4));
  store.SetValue(kHiveLocalMachine, route, "Path", kRegExpandSz, std::string("%X%\0", 4));
  store.SetValue(kHiveLocalMachine, route, "Source", kRegSz, std::string("a \"b\".txt\0", 10));
  KeyNames deep = route;
  deep.push_back("Inner");
  store.SetValue(kHiveLocalMachine, deep, "Multi", kRegMultiSz, std::string("a\0b\0\0", 5));
  TestShell shell;
  EXPECT_EQ(registry.GetKeyInfo({"HKEY_LOCAL_MACHINE", "Software\\Norvane, Inc.\\hifExchange\\"}, shell),
            "Empty:\r\n"
            "Route:\r\n"
            "> Blob = [binary]\r\n"
            "01 AB\r\n"
            "> Count = &H8000000C\r\n"
            "> Path = [expand sz]\r\n"
            "> Source = \"a \"b\".txt\"\r\n"
            "Route\\Inner:\r\n"
            "> Multi = [multi sz]\r\n");
  EXPECT_EQ(registry.GetValue(ValuePath("Count")), Value::Long(static_cast<int32_t>(0x8000000C)));
  EXPECT_EQ(registry.GetValue(ValuePath("Path")), Value("%X%"));
  EXPECT_TRUE(registry.GetValue(ValuePath("Blob")).IsEmpty());
  EXPECT_TRUE(shell.questions.empty());
  EXPECT_EQ(registry.GetKeyInfo({"HKEY_LOCAL_MACHINE", "Software\\Nobody"}, shell), "Error opening key.");
  ASSERT_EQ(shell.questions.size(), 1u);
  EXPECT_EQ(shell.questions[0].title, "Error");
}

#ifndef _WIN32
class SqliteRegistry : public Registry {};

// The command line's tests refuse a file that is no database and keep a
// registry private to its owner across runs; here a database of another
// program's.
TEST_F(SqliteRegistry, ADatabaseThatIsNotOursIsRefusedAndLeftAlone) {
  const auto other = dir / "other.db";
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(other.c_str(), &db), SQLITE_OK);
  sqlite3_exec(db, "CREATE TABLE t(x); INSERT INTO t VALUES(1)", nullptr, nullptr, nullptr);
  sqlite3_close(db);
  const std::string before = ReadBytes(other);
  EXPECT_THROW(SqliteRegistryStore{other}, Failure);
  EXPECT_EQ(ReadBytes(other), before);
}

// Only reading the settings, as every conversion does, writes nothing to
// the file: no byte changes and no journal is left to sync.
TEST_F(SqliteRegistry, ReadingTheSettingsLeavesTheFileAsItWas) {
  const auto own = dir / "own.db";
  {
    SqliteRegistryStore first(own);
    ASSERT_TRUE(clsRegistry(first).SaveValue("x", ValuePath("Source")));
  }
  const std::string before = ReadBytes(own);
  {
    SqliteRegistryStore again(own);
    EXPECT_EQ(clsRegistry(again).GetValue(ValuePath("Source")), Value("x"));
  }
  EXPECT_EQ(ReadBytes(own), before);
  EXPECT_FALSE(std::filesystem::exists(dir / "own.db-wal"));
}

// Settings read together at load: a write among them still lands and is
// seen, and once they end another writer is not held up.
TEST_F(SqliteRegistry, ReadsTakenTogetherLetAWriteThroughAndHoldNothingAfter) {
  ASSERT_TRUE(registry.SaveValue("a", ValuePath("A")));
  {
    ReadingTogether together(store);
    EXPECT_EQ(registry.GetValue(ValuePath("A")), Value("a"));
    EXPECT_TRUE(registry.SaveValue("b", ValuePath("B")));
    EXPECT_EQ(registry.GetValue(ValuePath("B")), Value("b"));
  }
  SqliteRegistryStore other(dir / "registry.db", 200);
  EXPECT_TRUE(clsRegistry(other).SaveValue("c", ValuePath("C")));
  EXPECT_EQ(registry.GetValue(ValuePath("C")), Value("c"));
}

// Two processes setting at once lose nothing in the command line's tests;
// here the second writer waits no longer than it was told.
TEST_F(SqliteRegistry, AWriterHeldUpLongerThanItsWaitFailsCleanly) {
  SqliteRegistryStore second(dir / "registry.db", 200);
  clsRegistry b(second);
  ASSERT_TRUE(b.SaveValue("b3", ValuePath("B3")));
  sqlite3* holder = nullptr;
  ASSERT_EQ(sqlite3_open((dir / "registry.db").c_str(), &holder), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(holder, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
  EXPECT_FALSE(b.SaveValue("late", ValuePath("Late")));
  sqlite3_exec(holder, "COMMIT", nullptr, nullptr, nullptr);
  sqlite3_close(holder);
  EXPECT_TRUE(b.GetValue(ValuePath("Late")).IsEmpty());
  EXPECT_EQ(b.GetValue(ValuePath("B3")), Value("b3"));
  EXPECT_TRUE(b.SaveValue("late", ValuePath("Late")));
}

#endif

}  // namespace
}  // namespace hifx::test
