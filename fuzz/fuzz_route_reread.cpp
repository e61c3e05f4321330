// A re-read conversion of any bytes taken as a list of meters to read again:
// through the example site's ReRead map (the tag in the first ten columns)
// and through a delimited map that takes tag, address, name, account,
// serial, date, previous reading and read type from quoted fields. The driver's refusals are clean outcomes; a crash, a hang or a
// runaway allocation is a bug.
#include <cstddef>
#include <cstdint>
#include <string>

#include "ExchangeSite.h"
#include "exchange/clsExchange.h"

namespace {

using hifx::fuzz::WriteFile;

struct Site : hifx::fuzz::ExchangeSite {
  hifx::SilentShell shell;
  Site() : ExchangeSite("reread") {
    LoadExampleSite();
    // Every field named, as the map editor writes them.
    WriteFile(folder / "ReReadCsv.hcm",
              "HIF=1.1\r\nMAPNAME=ReReadCsv.hcm\r\nMAPTYPE=2\r\nMAPFILTER=0\r\nMAPDELIMITER=,\r\n"
              "MAPQUOTE=\"\r\nMAPTERMINATOR= 0 \r\nMAPLENGTH=0\r\nRouteNbr=C,1\r\nSequence=A\r\n"
              "MeterTagNbr=1,0,,,0\r\nMeterType=C,W\r\nDigits=N\r\nDecimals=N\r\nPrvReading=7,0,,,0\r\n"
              "MaxReading=N\r\nMinReading=N\r\nReadType=8,0,,,0\r\nLstReadingDate=6,0,,,15\r\n"
              "UtilityCode=C,1\r\nLat=N\r\nLng=N\r\nScaleFactor=N\r\nInitReading=N\r\n"
              "InitPulseCount=N\r\nInitTamperCount=N\r\nMessage=N\r\nServiceAddress=2,0,,,0\r\n"
              "BillingName=3,0,,,0\r\nServiceUniqueID=4,0,,,0\r\nMeterSerialNbr=5,0,,,0\r\nUser1=N\r\n"
              "User2=N\r\nUser3=N\r\nUser4=N\r\nUser5=N\r\n");
  }
};

}  // namespace

// A smaller quarantine of freed memory than the default 256 MB, which with
// the fuzzer's own tables would pass -rss_limit_mb=512 on its own.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Site site;
  WriteFile(site.folder / "tags.txt", std::string(reinterpret_cast<const char*>(data), size));
  for (const char* map : {"ReRead", "ReReadCsv"}) {
    std::filesystem::remove(site.folder / "reread.pdb");
    hifx::clsExchange exchange({*site.store, site.shell, site.clock, site.folder, site.folder / "sync"});
    exchange.ReReadSource = (site.folder / "tags.txt").string();
    exchange.ReReadDestination = (site.folder / "reread.pdb").string();
    exchange.ReReadMap = map;
    exchange.ConvertReRead();
  }
  return 0;
}
