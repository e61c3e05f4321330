// On Windows the command line keeps its settings in the machine registry, one
// for every site of the machine. The tests that run it take a lock on that
// registry and start each from a machine with no settings of ours, as a
// fresh install would.
#include <gtest/gtest.h>
#include <windows.h>

namespace hifx::test {
namespace {

void RemoveOurSettings() { RegDeleteTreeA(HKEY_LOCAL_MACHINE, "Software\\Norvane, Inc."); }

class MachineRegistryReset : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override { RemoveOurSettings(); }
  void OnTestEnd(const testing::TestInfo&) override { RemoveOurSettings(); }
};

const bool kInstalled = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new MachineRegistryReset);
  return true;
}();

}  // namespace
}  // namespace hifx::test
