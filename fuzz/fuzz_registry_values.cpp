// Any keys and values in the site's settings store, and everything that reads
// them: the exchange settings, the site's lists (logins, messages, index
// words, changeout and skip codes, favourites, alert preferences), a route
// conversion of the example route that writes those lists into its HIF, and
// the distribution file of the store.
//
// The input is lines ending LF, one value a line:
//
//   T KEY <tab> NAME <tab> DATA
//
// T is the value's type: s a string stored with its closing NUL as the
// program writes one, z a string without it, d a 32-bit number, b binary,
// x an expandable string, m a list of strings; any other byte is itself the
// type number. KEY is the path under the program's root key, its names
// parted by "\" (empty for the root itself); DATA is the rest of the line,
// where \xHH stands for the byte HH so that a value can hold a line break.
// A line with fewer fields has the missing ones empty.
//
// The settings must read back as they were saved; anything else but a clean
// run is a bug: a crash, a sanitizer report, an exception escaping, a leak,
// a hang.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "ExchangeSite.h"
#include "config/IRegistryStore.h"
#include "config/RegistryRoot.h"
#include "config/clsAdvanced.h"
#include "config/clsDist.h"
#include "config/clsRegistry.h"
#include "exchange/clsExchange.h"

namespace {

struct Site : hifx::fuzz::ExchangeSite {
  hifx::SilentShell shell;
  Site() : ExchangeSite("registry") {
    // The example maps and route; the example settings are emptied out
    // before each input.
    LoadExampleSite();
    std::filesystem::copy_file(HIFX_EXAMPLES_DIR "/route-fixed.txt", folder / "route.txt",
                               std::filesystem::copy_options::overwrite_existing);
  }
};

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string Unescape(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 3 < text.size() && text[i + 1] == 'x' && HexDigit(text[i + 2]) >= 0 &&
        HexDigit(text[i + 3]) >= 0) {
      out.push_back(static_cast<char>(HexDigit(text[i + 2]) * 16 + HexDigit(text[i + 3])));
      i += 3;
    } else {
      out.push_back(text[i]);
    }
  }
  return out;
}

uint32_t TypeOf(char code) {
  switch (code) {
    case 's':
    case 'z': return hifx::kRegSz;
    case 'd': return hifx::kRegDword;
    case 'b': return hifx::kRegBinary;
    case 'x': return hifx::kRegExpandSz;
    case 'm': return hifx::kRegMultiSz;
    default: return static_cast<unsigned char>(code);
  }
}

// Cuts the text at the first tab; the rest goes to rest.
std::string_view Field(std::string_view& rest) {
  const size_t tab = rest.find('\t');
  const std::string_view field = rest.substr(0, tab);
  rest = tab == std::string_view::npos ? std::string_view() : rest.substr(tab + 1);
  return field;
}

void StoreLine(hifx::IRegistryStore& store, std::string_view line) {
  if (line.empty()) return;
  const char code = line.front();
  std::string_view rest = line.substr(1);
  hifx::KeyNames key = hifx::SplitKeyPath(hifx::kRootPath);
  for (std::string& name : hifx::SplitKeyPath(Field(rest))) key.push_back(std::move(name));
  const std::string name(Field(rest));
  std::string data = Unescape(rest);
  if (code == 's') data.push_back('\0');
  store.SetValue(hifx::kHiveLocalMachine, key, name, TypeOf(code), data);
}

// The settings a load gives, side by side.
std::vector<std::string> Settings(const hifx::clsExchange& e) {
  return {e.RouteSource,        e.RouteDestination,
          e.RouteMap,           e.RouteHIFType,
          e.ReReadSource,       e.ReReadDestination,
          e.ReReadMap,          e.ReReadHIFType,
          e.ReadingSource,      e.ReadingDestination,
          e.ReadingMap,         e.AutoReRead ? "Y" : "N",
          e.OrphanDestination,  e.OrphanMap,
          std::to_string(e.OrphanConvert), std::to_string(e.OrphanReplace),
          e.AutoInstall ? "Y" : "N", e.AutoInstallUnit,
          e.AutoInstallPrompt ? "Y" : "N", e.AutoInstallLeave ? "Y" : "N"};
}

// What the site's lists hold, read through their getters.
size_t ReadLists(hifx::clsAdvanced& advanced) {
  size_t seen = advanced.UseLoginSecurity() + advanced.UseFavorite() +
                static_cast<size_t>(advanced.IndexControl() + advanced.AlertOutOfBounds() +
                                    advanced.AlertRollover() + advanced.AlertTamper());
  std::string a, b, c;
  for (int16_t p = 0; p < 64; ++p) {
    const hifx::Value at = hifx::Value::Integer(p);
    if (advanced.GetLogin(at, a, b, c) >= 0) seen += a.size() + b.size() + c.size();
    for (const char* type : {"Account", "SerialNbr", "TagNbr"}) {
      if (advanced.GetMessage(type, at, a, b, c) >= 0) seen += a.size() + b.size() + c.size();
    }
    for (const char* type : {"Address", "Owner"}) {
      if (advanced.GetToken(type, at, a) >= 0) seen += a.size();
    }
    for (const char* type : {"RC", "MT", "MFG", "MS"}) {
      if (advanced.GetChangeout(type, at, a, b) >= 0) seen += a.size() + b.size();
    }
    if (advanced.GetFavorite(at, a, b) >= 0) seen += a.size() + b.size();
    if (advanced.GetSkip(at, a, b) >= 0) seen += a.size() + b.size();
  }
  seen += advanced.LookupMessage("", "0001", "100-003", "SN5501", "1012345").size();
  seen += advanced.LookupMessage("Read me", "ANY", "100-002", "", "").size();
  return seen;
}

}  // namespace

// A smaller quarantine of freed memory than the default 256 MB, which with
// the fuzzer's own tables would pass -rss_limit_mb=512 on its own.
extern "C" const char* __asan_default_options() { return "quarantine_size_mb=64"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Site site;
  site.EmptyRegistry();
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  for (size_t start = 0; start <= input.size();) {
    const size_t end = std::min(input.find('\n', start), input.size());
    StoreLine(*site.store, input.substr(start, end - start));
    start = end + 1;
  }

  hifx::clsExchange exchange({*site.store, site.shell, site.clock, site.folder, site.folder / "sync"});
  exchange.LoadSettings();
  const std::vector<std::string> loaded = Settings(exchange);
  exchange.SaveSettings();
  exchange.LoadSettings();
  if (Settings(exchange) != loaded) {
    std::fprintf(stderr, "fuzz_registry_values: the settings read back changed\n");
    std::abort();
  }

  {
    hifx::clsAdvanced advanced(*site.store);
    volatile size_t sink = ReadLists(advanced);
    (void)sink;
  }  // saves what the load made dirty

  // A route conversion on the stored settings, with the files and map of the
  // example site: the stored paths and the install are left alone, so that
  // no input writes outside the site or asks for a unit.
  std::filesystem::remove(site.folder / "route.pdb");
  exchange.RouteSource = (site.folder / "route.txt").string();
  exchange.RouteDestination = (site.folder / "route.pdb").string();
  exchange.RouteMap = "Billing";
  exchange.AutoInstall = false;
  exchange.ConvertRoute();

  // The distribution file of the store and the site's maps. (Loading one is
  // the dist_load target's; loading this one too would double the time of
  // an input, every value a write of its own.)
  hifx::clsDist dist(*site.store, site.shell, site.folder);
  volatile size_t length = dist.BuildDist().size();
  (void)length;
  return 0;
}
