#include <gtest/gtest.h>

#include "config/RegistryRoot.h"
#include "support/TestRegistryStore.h"
#include "exchange/clsExchange.h"
#include "support/TempDir.h"
#include "support/TestShell.h"

namespace hifx::test {
namespace {

class ExchangeSettings : public testing::Test {
 protected:
  TempDir dir;
  TestRegistryStore store{dir.path()};
  clsRegistry registry{store};
  TestShell shell;
  FixedClock clock{CivilTime{}};
  clsExchange exchange{{store, shell, clock, dir.path(), dir / "sync"}};
};

TEST_F(ExchangeSettings, AnEmptyRegistryLoadsTheDefaults) {
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
  exchange.LoadSettings();
  exchange.SaveSettings();
  EXPECT_EQ(StoreOrder(KeysOf(registry.GetKeys(RootKeyPath("")))),
            StoreOrder({"Route", "ReRead", "Reading", "Orphan", "PRCInstall"}));
  EXPECT_EQ(StoreOrder(KeysOf(registry.GetValues(RootKeyPath("Route")))),
            StoreOrder({"Source", "Destination", "HIFType", "Map"}));
  EXPECT_EQ(StoreOrder(KeysOf(registry.GetValues(RootKeyPath("PRCInstall")))),
            StoreOrder({"AutoInstall", "Prompt", "Leave", "Unit"}));
  EXPECT_EQ(registry.GetValue(RootReadPath("Reading", "AutoReRead")), Value("N"));
  EXPECT_EQ(registry.GetValue(RootReadPath("Orphan", "Convert")), Value("0"));
}

TEST_F(ExchangeSettings, StoredFormsAreDecodedLiterally) {
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

}  // namespace
}  // namespace hifx::test
