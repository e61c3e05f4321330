// An MVRS route conversion of any bytes, and the MVRS reading file of the HIF
// it makes: refusals, the error frames and an early end at an unknown line
// are clean outcomes; a crash, a hang or a runaway allocation is a bug.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "config/SqliteRegistryStore.h"
#include "exchange/clsExchange.h"

namespace {

void WriteFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
}

struct Site {
  std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                 ("hifx-fuzz-mvrs-" + std::to_string(::getpid()));
  hifx::SilentShell shell;
  hifx::FixedClock clock{hifx::CivilTime{2024, 2, 29, 13, 5, 9}};
  std::unique_ptr<hifx::SqliteRegistryStore> store;
  Site() {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    store = std::make_unique<hifx::SqliteRegistryStore>(folder / "registry.db");
    WriteFile(folder / "Mvrs.hcm", "HIF=1.1\r\nMAPTYPE=3\r\nMAPOPTIONS=1:Y\r\n");
    WriteFile(folder / "Mvrs.hrm", "HIF=1.1\r\nMAPTYPE=3\r\n");
  }
};

}  // namespace

// A smaller quarantine of freed memory than the default 256 MB, which with
// the fuzzer's own tables would pass -rss_limit_mb=512 on its own.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Site site;
  WriteFile(site.folder / "route.dat", std::string(reinterpret_cast<const char*>(data), size));
  std::filesystem::remove(site.folder / "route.pdb");
  std::filesystem::remove(site.folder / "reading.dat");
  hifx::clsExchange exchange({*site.store, site.shell, site.clock, site.folder, site.folder / "sync"});
  exchange.RouteSource = (site.folder / "route.dat").string();
  exchange.RouteDestination = (site.folder / "route.pdb").string();
  exchange.RouteMap = "Mvrs";
  if (exchange.ConvertRoute()) {
    exchange.ReadingSource = exchange.RouteDestination;
    exchange.ReadingDestination = (site.folder / "reading.dat").string();
    exchange.ReadingMap = "Mvrs";
    exchange.ConvertReading();
  }
  return 0;
}
