// Loading a site's settings and lists, and looking meter messages up, on a
// site with 10,000 messages.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>
#include <string>

#include "config/RegistryRoot.h"
#include "config/SqliteRegistryStore.h"
#include "config/clsAdvanced.h"
#include "exchange/clsExchange.h"

namespace {

constexpr int kMessages = 10000;


hifx::SilentShell shell;
const hifx::FixedClock clock{hifx::CivilTime{}};

std::filesystem::path SiteWithMessages() {
  static const std::filesystem::path folder = [] {
    std::random_device random;
    const auto path =
        std::filesystem::temp_directory_path() / ("hifx-bench-site-" + std::to_string(random()));
    std::filesystem::create_directories(path);
    hifx::SqliteRegistryStore store(path / "registry.db");
    hifx::clsExchange exchange({store, shell, clock, path, path / "sync"});
    exchange.SaveSettings();
    hifx::clsAdvanced advanced(store);
    const char* types[] = {"Account", "SerialNbr", "TagNbr"};
    for (int i = 0; i < kMessages; ++i) {
      advanced.AddMessage(types[i % 3], i % 5 == 0 ? "ANY" : std::to_string(i % 40 + 1),
                          "ID" + std::to_string(i), "Message number " + std::to_string(i));
    }
    for (int i = 0; i < 200; ++i) advanced.AddSkip("S" + std::to_string(i), "Skip reason");
    advanced.SaveValues();
    return path;
  }();
  return folder;
}

void BM_LoadSettingsAndLists(benchmark::State& state) {
  const auto site = SiteWithMessages();
  hifx::SqliteRegistryStore store(site / "registry.db");
  for (auto _ : state) {
    hifx::clsExchange exchange({store, shell, clock, site, site / "sync"});
    exchange.LoadSettings();
    hifx::clsAdvanced advanced(store);
    benchmark::DoNotOptimize(advanced.IndexControl());
  }
}
BENCHMARK(BM_LoadSettingsAndLists)->Unit(benchmark::kMillisecond);

void BM_LookupMessage(benchmark::State& state) {
  const auto site = SiteWithMessages();
  hifx::SqliteRegistryStore store(site / "registry.db");
  hifx::clsAdvanced advanced(store);
  int i = 0;
  for (auto _ : state) {
    const int n = i++ % kMessages;
    const std::string id = "ID" + std::to_string(n);
    benchmark::DoNotOptimize(advanced.LookupMessage("Read carefully", std::to_string(n % 40 + 1),
                                                    id, id, "ID" + std::to_string((n * 7) % kMessages)));
  }
}
BENCHMARK(BM_LookupMessage)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
