// Any bytes taken as an E5000 download: a whole E5000 route conversion, the
// route HIF it made filled as a handheld fills it, and the E5000 reading
// conversion of that. Unknown lines, the drivers' refusals and failures of
// the run are clean outcomes; a crash, a hang or a runaway allocation is a
// bug.
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "ExchangeSite.h"
#include "exchange/clsExchange.h"
#include "tools/FillReadings.h"

namespace {

using hifx::fuzz::WriteFile;

struct Site : hifx::fuzz::ExchangeSite {
  hifx::SilentShell shell;
  Site() : ExchangeSite("e5k") {
    WriteFile(folder / "E5000.hcm", "HIF=1.1\r\nMAPTYPE=4\r\n");
    WriteFile(folder / "E5000.hrm", "HIF=1.1\r\nMAPTYPE=4\r\n");
  }
};

}  // namespace

// A smaller quarantine of freed memory than the default 256 MB, which with
// the fuzzer's own tables would pass -rss_limit_mb=512 on its own.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Site site;
  WriteFile(site.folder / "route.txt", std::string(reinterpret_cast<const char*>(data), size));
  for (const char* made : {"route.pdb", "reading.pdb", "upload.txt"}) std::filesystem::remove(site.folder / made);
  hifx::clsExchange exchange({*site.store, site.shell, site.clock, site.folder, site.folder / "sync"});
  exchange.RouteSource = (site.folder / "route.txt").string();
  exchange.RouteDestination = (site.folder / "route.pdb").string();
  exchange.RouteMap = "E5000";
  exchange.ConvertRoute();
  try {
    hifx::FillReadings(site.shell, site.folder / "route.pdb", site.folder / "reading.pdb",
                       static_cast<uint32_t>(size));
  } catch (const std::exception&) {
    return 0;  // no route file, or one a handheld couldn't fill
  }
  exchange.ReadingSource = (site.folder / "reading.pdb").string();
  exchange.ReadingDestination = (site.folder / "upload.txt").string();
  exchange.ReadingMap = "E5000";
  exchange.ConvertReading();
  return 0;
}
