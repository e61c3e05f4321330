// settings, site, dist and registry: the site's configuration from the
// command line.
#include <cstdio>
#include <functional>
#include <memory>

#include "base/Failure.h"
#include "config/RegistryRoot.h"
#include "config/SiteRegistry.h"
#include "config/clsAdvanced.h"
#include "config/clsDist.h"
#include "config/clsRegistry.h"
#include "cli/Commands.h"
#include "exchange/clsExchange.h"

namespace hifx::cli {
namespace {

void PrintLine(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
}

// Runs body with the site's registry store, or says why it can't be opened.
int WithStore(Context& context, const std::function<int(IRegistryStore&)>& body) {
  std::unique_ptr<IRegistryStore> store = OpenStore(context);
  if (!store) return kExitUsage;
  try {
    return body(*store);
  } catch (const WriteFailure& failure) {
    // The command ran and its file could not be written: the old one stays.
    std::fprintf(stderr, "hifx: %s\n", failure.Description().c_str());
    return kExitNotComplete;
  } catch (const Failure& failure) {
    std::fprintf(stderr, "hifx: %s\n", failure.Description().c_str());
    return kExitUsage;
  }
}

enum class Kind { Text, Flag, Integer };

struct Setting {
  const char* name;
  const char* section;  // where the registry keeps it
  const char* key;
  Kind kind;
  std::string clsExchange::*text = nullptr;
  bool clsExchange::*flag = nullptr;
  int16_t clsExchange::*integer = nullptr;
};

Setting Text(const char* name, const char* section, const char* key, std::string clsExchange::*member) {
  return {name, section, key, Kind::Text, member};
}
Setting Flag(const char* name, const char* section, const char* key, bool clsExchange::*member) {
  return {name, section, key, Kind::Flag, nullptr, member};
}
Setting Integer(const char* name, const char* section, const char* key, int16_t clsExchange::*member) {
  return {name, section, key, Kind::Integer, nullptr, nullptr, member};
}

// The twenty settings in the order they are loaded.
const std::vector<Setting>& Settings() {
  static const std::vector<Setting> settings = {
      Text("RouteSource", "Route", "Source", &clsExchange::RouteSource),
      Text("RouteDestination", "Route", "Destination", &clsExchange::RouteDestination),
      Text("RouteMap", "Route", "Map", &clsExchange::RouteMap),
      Text("RouteHIFType", "Route", "HIFType", &clsExchange::RouteHIFType),
      Text("ReReadSource", "ReRead", "Source", &clsExchange::ReReadSource),
      Text("ReReadDestination", "ReRead", "Destination", &clsExchange::ReReadDestination),
      Text("ReReadMap", "ReRead", "Map", &clsExchange::ReReadMap),
      Text("ReReadHIFType", "ReRead", "HIFType", &clsExchange::ReReadHIFType),
      Text("ReadingSource", "Reading", "Source", &clsExchange::ReadingSource),
      Text("ReadingDestination", "Reading", "Destination", &clsExchange::ReadingDestination),
      Text("ReadingMap", "Reading", "Map", &clsExchange::ReadingMap),
      Flag("AutoReRead", "Reading", "AutoReRead", &clsExchange::AutoReRead),
      Text("OrphanDestination", "Orphan", "Destination", &clsExchange::OrphanDestination),
      Text("OrphanMap", "Orphan", "Map", &clsExchange::OrphanMap),
      Integer("OrphanConvert", "Orphan", "Convert", &clsExchange::OrphanConvert),
      Integer("OrphanReplace", "Orphan", "Replace", &clsExchange::OrphanReplace),
      Flag("AutoInstall", "PRCInstall", "AutoInstall", &clsExchange::AutoInstall),
      Text("AutoInstallUnit", "PRCInstall", "Unit", &clsExchange::AutoInstallUnit),
      Flag("AutoInstallPrompt", "PRCInstall", "Prompt", &clsExchange::AutoInstallPrompt),
      Flag("AutoInstallLeave", "PRCInstall", "Leave", &clsExchange::AutoInstallLeave),
  };
  return settings;
}

const Setting* FindSetting(const std::string& name) {
  for (const Setting& s : Settings()) {
    if (EqualsCaseBlind(s.name, name)) return &s;
  }
  return nullptr;
}

std::string Show(const clsExchange& exchange, const Setting& s) {
  switch (s.kind) {
    case Kind::Text: return exchange.*s.text;
    case Kind::Flag: return exchange.*s.flag ? "Y" : "N";
    case Kind::Integer: return std::to_string(exchange.*s.integer);
  }
  return {};
}

bool Assign(clsExchange& exchange, const Setting& s, const std::string& value) {
  switch (s.kind) {
    case Kind::Text: exchange.*s.text = value; return true;
    case Kind::Flag: {
      const std::string v = UpperCase(value);
      if (v == "Y" || v == "YES" || v == "TRUE" || v == "1" || v == "-1") {
        exchange.*s.flag = true;
      } else if (v == "N" || v == "NO" || v == "FALSE" || v == "0") {
        exchange.*s.flag = false;
      } else {
        return false;
      }
      return true;
    }
    case Kind::Integer: {
      char* end = nullptr;
      const long n = std::strtol(value.c_str(), &end, 10);
      if (value.empty() || *end != '\0' || n < -32768 || n > 32767) return false;
      exchange.*s.integer = static_cast<int16_t>(n);
      return true;
    }
  }
  return false;
}

}  // namespace

std::unique_ptr<IRegistryStore> OpenStore(Context& context) {
  try {
    return OpenSiteRegistry(context.SiteFolder());
  } catch (const Failure& failure) {
    std::fprintf(stderr, "hifx: %s\n", failure.Description().c_str());
    return nullptr;
  }
}

ExchangeEnvironment Environment(Context& context, IRegistryStore& store) {
  return {store, context.shell, context.clock, context.SiteFolder(), context.SyncRoot()};
}

int RunSettings(Context& context, const Args& args) {
  const std::string verb = args.empty() ? "show" : args[0];
  if (verb == "show" && args.size() <= 1) {
    return WithStore(context, [&](IRegistryStore& store) {
      clsExchange exchange(Environment(context, store));
      exchange.LoadSettings();
      for (const Setting& s : Settings()) PrintLine(std::string(s.name) + "=" + Show(exchange, s));
      return kExitOk;
    });
  }
  if (verb == "get" && args.size() == 2) {
    const Setting* setting = FindSetting(args[1]);
    if (setting == nullptr) return Usage("no setting named " + args[1]);
    return WithStore(context, [&](IRegistryStore& store) {
      clsExchange exchange(Environment(context, store));
      exchange.LoadSettings();
      PrintLine(Show(exchange, *setting));
      return kExitOk;
    });
  }
  if (verb == "set" && args.size() == 3) {
    const Setting* setting = FindSetting(args[1]);
    if (setting == nullptr) return Usage("no setting named " + args[1]);
    return WithStore(context, [&](IRegistryStore& store) {
      clsExchange exchange(Environment(context, store));
      exchange.LoadSettings();
      if (!Assign(exchange, *setting, args[2])) {
        return Usage(std::string(setting->name) +
                     (setting->kind == Kind::Flag ? " takes Y or N" : " takes a whole number"));
      }
      const std::string expected = Show(exchange, *setting);
      // Only this setting is written: another process may be setting another.
      if (!exchange.SaveParm(setting->section, setting->key, expected)) {
        std::fprintf(stderr, "hifx: settings: %s could not be saved\n", setting->name);
        return kExitNotComplete;
      }
      // A failed write is silent in the engine, and an empty value reads
      // back as the default; a script wants to know either way.
      exchange.LoadSettings();
      const std::string stored = Show(exchange, *setting);
      if (stored != expected) {
        std::fprintf(stderr, "hifx: settings: %s reads back as \"%s\"\n", setting->name, stored.c_str());
        return kExitNotComplete;
      }
      return kExitOk;
    });
  }
  return Usage("settings [show] | settings get NAME | settings set NAME VALUE");
}

int RunSite(Context& context, const Args& args) {
  if (args.size() != 1 || args[0] != "show") return Usage("site show");
  return WithStore(context, [](IRegistryStore& store) {
    clsAdvanced advanced(store);
    std::string a, b, c;
    auto walk = [&](const char* section, const std::function<int16_t(int16_t)>& get,
                    const std::function<std::string()>& line) {
      PrintLine(std::string("[") + section + "]");
      for (int16_t position = 1;; ++position) {
        a.clear();
        b.clear();
        c.clear();
        if (get(position) < 0) break;
        if (!a.empty()) PrintLine(line());
      }
    };
    PrintLine("[LoginSetup]");
    PrintLine(std::string("UseLogin=") + (advanced.UseLoginSecurity() ? "Y" : "N"));
    walk("LoginIDs", [&](int16_t p) { return advanced.GetLogin(Value::Integer(p), a, b, c); },
         [&] { return a + "\t" + b + "\t" + c; });
    for (const auto& [section, type] : {std::pair{"MessagesAccount", "Account"},
                                        std::pair{"MessagesMeterSerialNbr", "SerialNbr"},
                                        std::pair{"MessagesMeterTagNbr", "TagNbr"}}) {
      std::string route;
      walk(section,
           [&, type = type](int16_t p) {
             const int16_t at = advanced.GetMessage(type, Value::Integer(p), route, b, c);
             a = route;
             return at;
           },
           [&] { return a + "||" + b + "\t" + c; });
    }
    PrintLine("[Token]");
    PrintLine("IndexControl=" + std::to_string(advanced.IndexControl()));
    for (const auto& [section, type] : {std::pair{"TokenAddress", "Address"}, std::pair{"TokenOwner", "Owner"}}) {
      walk(section, [&, type = type](int16_t p) { return advanced.GetToken(type, Value::Integer(p), a); },
           [&] { return a; });
    }
    for (const char* type : {"RC", "MT", "MFG", "MS"}) {
      walk((std::string("Changeout") + type).c_str(),
           [&](int16_t p) { return advanced.GetChangeout(type, Value::Integer(p), a, b); },
           [&] { return a + "\t" + b; });
    }
    PrintLine("[FavoriteSetup]");
    PrintLine(std::string("UseFavorite=") + (advanced.UseFavorite() ? "Y" : "N"));
    walk("Favorite", [&](int16_t p) { return advanced.GetFavorite(Value::Integer(p), a, b); },
         [&] { return a + "\t" + b; });
    walk("Skip", [&](int16_t p) { return advanced.GetSkip(Value::Integer(p), a, b); },
         [&] { return a + "\t" + b; });
    PrintLine("[OperPrefs]");
    PrintLine("AlertOutOfBounds=" + std::to_string(advanced.AlertOutOfBounds()));
    PrintLine("AlertRollover=" + std::to_string(advanced.AlertRollover()));
    PrintLine("AlertTamper=" + std::to_string(advanced.AlertTamper()));
    return kExitOk;
  });
}

int RunDist(Context& context, const Args& args) {
  if (args.size() != 2 || (args[0] != "load" && args[0] != "write")) {
    return Usage("dist load FILE | dist write FILE");
  }
  return WithStore(context, [&](IRegistryStore& store) {
    clsDist dist(store, context.shell, context.SiteFolder());
    if (args[0] == "write") return dist.WriteDist(args[1]) ? kExitOk : kExitNotComplete;
    return dist.LoadDist(args[1]) ? kExitOk : kExitNotComplete;
  });
}

int RunRegistry(Context& context, const Args& args) {
  if (args.size() != 1 || args[0] != "dump") return Usage("registry dump");
  return WithStore(context, [&](IRegistryStore& store) {
    const std::string dump = clsRegistry(store).GetKeyInfo(
        {std::string(kRootHive), std::string(kRootPath)}, context.shell);
    std::fwrite(dump.data(), 1, dump.size(), stdout);
    return dump == "Error opening key." ? kExitNotComplete : kExitOk;
  });
}

}  // namespace hifx::cli
