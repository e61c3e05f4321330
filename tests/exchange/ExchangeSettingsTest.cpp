#include <gtest/gtest.h>

#include "config/RegistryRoot.h"
#include "config/SqliteRegistryStore.h"
#include "exchange/clsExchange.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

class ExchangeSettings : public testing::Test {
 protected:
  TempDir dir;
  SqliteRegistryStore store{dir / "registry.db"};
  clsRegistry registry{store};
  TestShell shell;
  FixedClock clock{CivilTime{}};
};

TEST_F(ExchangeSettings, AnEmptyRegistryLoadsTheDefaults) {
  clsExchange exchange({store, shell, clock, dir.path(), dir / "sync"});
  exchange.RouteSource = "changed";
  exchange.LoadSettings();
  EXPECT_EQ(exchange.RouteSource, "");
  EXPECT_EQ(exchange.RouteDestination, "RouteHIF.pdb");
  EXPECT_EQ(exchange.RouteHIFType, "PDB");
  EXPECT_EQ(exchange.ReReadDestination, "RouteHIF.pdb");
  EXPECT_EQ(exchange.ReReadHIFType, "PDB");
  EXPECT_EQ(exchange.ReadingSource, "ReadingHIF.pdb");
  EXPECT_FALSE(exchange.AutoReRead);
  EXPECT_EQ(exchange.OrphanConvert, 0);
  EXPECT_FALSE(exchange.AutoInstall);
  EXPECT_TRUE(registry.GetKeys(RootKeyPath("")).Count() == 0);  // loading writes nothing
}

TEST_F(ExchangeSettings, TheFirstSaveWritesTheWholeTreeInItsOrder) {
  clsExchange exchange({store, shell, clock, dir.path(), dir / "sync"});
  exchange.LoadSettings();
  exchange.SaveSettings();
  const auto keys = registry.GetKeys(RootKeyPath(""));
  ASSERT_EQ(keys.Count(), 5u);
  const char* expectedKeys[] = {"Route", "ReRead", "Reading", "Orphan", "PRCInstall"};
  for (size_t i = 0; i < 5; ++i) EXPECT_EQ(keys.Key(i + 1), expectedKeys[i]);
  const auto route = registry.GetValues(RootKeyPath("Route"));
  const char* routeOrder[] = {"Source", "Destination", "HIFType", "Map"};
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(route.Key(i + 1), routeOrder[i]);
  const auto install = registry.GetValues(RootKeyPath("PRCInstall"));
  const char* installOrder[] = {"AutoInstall", "Prompt", "Leave", "Unit"};
  for (size_t i = 0; i < 4; ++i) EXPECT_EQ(install.Key(i + 1), installOrder[i]);
  EXPECT_EQ(registry.GetValue(RootReadPath("Reading", "AutoReRead")), Value("N"));
  EXPECT_EQ(registry.GetValue(RootReadPath("Orphan", "Convert")), Value("0"));
}

TEST_F(ExchangeSettings, StoredFormsAreDecodedLiterally) {
  clsExchange exchange({store, shell, clock, dir.path(), dir / "sync"});
  exchange.SaveParm("Route", "Destination", "");
  exchange.SaveParm("Reading", "AutoReRead", "y");
  exchange.SaveParm("PRCInstall", "AutoInstall", "Y");
  exchange.SaveParm("Orphan", "Convert", "abc");
  exchange.SaveParm("Orphan", "Replace", "-1");
  exchange.SaveParm("Route", "Map", "Billing");
  exchange.LoadSettings();
  EXPECT_EQ(exchange.RouteDestination, "RouteHIF.pdb");  // empty counts as missing
  EXPECT_FALSE(exchange.AutoReRead);                     // only exactly "Y" is true
  EXPECT_TRUE(exchange.AutoInstall);
  EXPECT_EQ(exchange.OrphanConvert, 0);
  EXPECT_EQ(exchange.OrphanReplace, -1);
  EXPECT_EQ(exchange.RouteMap, "Billing");
  exchange.SaveSettings();
  EXPECT_EQ(registry.GetValue(RootReadPath("Reading", "AutoReRead")), Value("N"));
  EXPECT_EQ(registry.GetValue(RootReadPath("Route", "Destination")), Value("RouteHIF.pdb"));
  EXPECT_EQ(exchange.GetParm("Route", "Nothing", Value("dflt")), Value("dflt"));
}

TEST(ExchangeTypes, ExtensionsAndWords) {
  EXPECT_EQ(MapExtension(1), ".hcm");
  EXPECT_EQ(MapExtension(2), ".hcm");
  EXPECT_EQ(MapExtension(3), ".hrm");
  EXPECT_EQ(MapExtension(99), ".hom");
  EXPECT_EQ(MapExtension(4), "");
  EXPECT_EQ(DefaultFileExtension(99), ".txt");
  EXPECT_EQ(DefaultFileExtension(0), "");
  EXPECT_EQ(TypeDescr(2), "ReRead");
  EXPECT_EQ(TypeDescr(4), "");
}

}  // namespace
}  // namespace hifx::test
