// A reading conversion of any bytes taken as a reading HIF: billing file,
// orphan file and re-read file. The driver's own words are clean outcomes; a
// crash, a hang or a runaway allocation is a bug.
#include <cstddef>
#include <cstdint>
#include <string>

#include "ExchangeSite.h"
#include "exchange/clsExchange.h"

namespace {

using hifx::fuzz::WriteFile;

// Answers Yes, so that the re-read file is always made.
class YesShell final : public hifx::IShell {
 public:
  void WriteLog(std::string_view) override {}
  void SetProgressButton(int32_t, int32_t) override {}
  hifx::MsgAnswer MsgBox(std::string_view, std::string_view, hifx::MsgButtons buttons, hifx::MsgIcon) override {
    return buttons == hifx::MsgButtons::YesNo ? hifx::MsgAnswer::Yes : hifx::DefaultAnswer(buttons);
  }
};

struct Site : hifx::fuzz::ExchangeSite {
  YesShell shell;
  Site() : ExchangeSite("reading") {
    WriteFile(folder / "Bill.hrm",
              "HIF=1.1\r\nMAPTYPE=1\r\nMAPTERMINATOR= 3 \r\nRouteNbr=1,4,L,B,0\r\nMeterTagNbr=5,8,R,Z,0\r\n"
              "CurReading=13,8,R,Z,0\r\nReadingDate=21,8,L,B,14\r\nReadingTime=29,4,L,B,40\r\n"
              "ReadType=33,1,L,B,0\r\nResponseText=34,10,L,B,0\r\nInitPulseCount=44,4,R,Z,0\r\n");
    WriteFile(folder / "Orph.hom",
              "HIF=1.1\r\nMAPTYPE=2\r\nMAPDELIMITER=,\r\nMAPQUOTE=\"\r\nMAPTERMINATOR= 3 \r\n"
              "MeterTagNbr=1,0,R,B,0\r\nCurReading=2,0,R,B,0\r\nReadingDate=3,0,L,B,15\r\n");
  }
};

}  // namespace

// A smaller quarantine of freed memory than the default 256 MB, which with
// the fuzzer's own tables would pass -rss_limit_mb=512 on its own.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Site site;
  WriteFile(site.folder / "reading.pdb", std::string(reinterpret_cast<const char*>(data), size));
  hifx::clsExchange exchange({*site.store, site.shell, site.clock, site.folder, site.folder / "sync"});
  exchange.ReadingSource = (site.folder / "reading.pdb").string();
  exchange.ReadingDestination = (site.folder / "billing.txt").string();
  exchange.ReadingMap = "Bill";
  exchange.OrphanConvert = -1;
  exchange.OrphanReplace = -1;
  exchange.OrphanDestination = (site.folder / "orphans.txt").string();
  exchange.OrphanMap = "Orph";
  exchange.AutoReRead = true;
  exchange.ReReadDestination = (site.folder / "reread.pdb").string();
  exchange.ConvertReading();
  return 0;
}
