// A route conversion of any bytes, through a fixed-column and a delimited
// map of six-character fields, then through the example site's fixed-column
// (Billing) and delimited (BillingCsv) maps with its lists of messages,
// index words and codes: the driver's refusals and its error frame are clean
// outcomes; a crash, a hang or a runaway allocation is a bug.
#include <cstddef>
#include <cstdint>
#include <string>

#include "ExchangeSite.h"
#include "exchange/clsExchange.h"

namespace {

using hifx::fuzz::WriteFile;

struct Site : hifx::fuzz::ExchangeSite {
  hifx::SilentShell shell;
  Site() : ExchangeSite("route") {
    LoadExampleSite();
    const std::string fields[] = {"RouteNbr", "Sequence", "MeterTagNbr", "MeterType", "Digits", "Decimals",
                                  "PrvReading", "MaxReading", "MinReading", "ReadType", "LstReadingDate",
                                  "UtilityCode", "Lat", "Lng", "ScaleFactor", "InitReading", "InitPulseCount",
                                  "InitTamperCount", "Message", "ServiceAddress", "BillingName",
                                  "ServiceUniqueID", "MeterSerialNbr", "User1", "User2", "User3", "User4",
                                  "User5"};
    std::string fixed = "HIF=1.1\r\nMAPTYPE=1\r\n";
    std::string delimited = "HIF=1.1\r\nMAPTYPE=2\r\nMAPDELIMITER=,\r\nMAPQUOTE=\"\r\n";
    int column = 1;
    int piece = 1;
    for (const std::string& field : fields) {
      const int width = field == "MeterType" || field == "ReadType" ? 1 : 6;
      fixed += field + "=" + std::to_string(column) + "," + std::to_string(width) + ",,,0\r\n";
      delimited += field + "=" + std::to_string(piece++) + ",0,,,0\r\n";
      column += width;
    }
    WriteFile(folder / "Fixed.hcm", fixed);
    WriteFile(folder / "Delimited.hcm", delimited);
  }
};

}  // namespace

// A smaller quarantine of freed memory than the default 256 MB, which with
// the fuzzer's own tables would pass -rss_limit_mb=512 on its own.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Site site;
  WriteFile(site.folder / "route.txt", std::string(reinterpret_cast<const char*>(data), size));
  for (const char* map : {"Fixed", "Delimited", "Billing", "BillingCsv"}) {
    std::filesystem::remove(site.folder / "route.pdb");
    hifx::clsExchange exchange({*site.store, site.shell, site.clock, site.folder, site.folder / "sync"});
    exchange.RouteSource = (site.folder / "route.txt").string();
    exchange.RouteDestination = (site.folder / "route.pdb").string();
    exchange.RouteMap = map;
    exchange.ConvertRoute();
  }
  return 0;
}
