// Loading a distribution file of any content into a site: the registry
// section, the map sections and the header test. A Failure is a clean
// refusal; anything else is a bug.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "ExchangeSite.h"
#include "base/Failure.h"
#include "base/Shell.h"
#include "config/SqliteRegistryStore.h"
#include "config/clsDist.h"

namespace {


struct Site {
  std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                 ("hifx-fuzz-dist-" + std::to_string(::getpid()));
  std::filesystem::path input = folder.string() + ".dst";
  std::unique_ptr<hifx::SqliteRegistryStore> store;
  Site() {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    store = std::make_unique<hifx::SqliteRegistryStore>(folder / "registry.db");
  }
};

}  // namespace

// A smaller quarantine of freed memory than the default 256 MB, which with
// the fuzzer's own tables would pass -rss_limit_mb=512 on its own.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Site site;
  // Each input starts from an empty registry, so that what one loads can't
  // change how the next runs, nor make the store grow from input to input.
  hifx::fuzz::EmptyRegistry(site.folder / "registry.db");
  {
    std::ofstream out(site.input, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  hifx::SilentShell shell;
  hifx::clsDist dist(*site.store, shell, site.folder);
  try {
    dist.LoadDist(site.input);
    dist.BuildDist();
  } catch (const hifx::Failure&) {
  }
  // Keep the folder from filling up with the maps of earlier inputs.
  for (const auto& entry : std::filesystem::directory_iterator(site.folder)) {
    if (entry.path().filename().string().rfind("registry.db", 0) != 0) {
      std::filesystem::remove(entry.path());
    }
  }
  return 0;
}
