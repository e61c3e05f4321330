// settings, site, dist and registry: the site's configuration from the
// command line.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>

#include "base/Failure.h"
#include "cli/CliShell.h"
#include "cli/Commands.h"
#include "cli/MapNames.h"
#include "cli/RunSummary.h"
#include "config/RegistryRoot.h"
#include "config/SiteRegistry.h"
#include "config/clsAdvanced.h"
#include "config/clsDist.h"
#include "config/clsRegistry.h"
#include "exchange/ExchangeSettings.h"
#include "exchange/clsExchange.h"

namespace hifx::cli {
namespace {

void PrintLine(const std::string& line) {
  WriteOut(line);
  std::fputc('\n', stdout);
}

// A value of the command line for a setting, in the form the registry
// stores; nothing when the words don't fit its kind.
std::optional<std::string> StoredWords(const ExchangeSetting& setting, const std::string& value) {
  if (setting.IsText()) return value;
  if (setting.IsFlag()) {
    const std::string v = UpperCase(value);
    if (v == "Y" || v == "YES" || v == "TRUE" || v == "1" || v == "-1") return "Y";
    if (v == "N" || v == "NO" || v == "FALSE" || v == "0") return "N";
    return std::nullopt;
  }
  char* end = nullptr;
  const long n = std::strtol(value.c_str(), &end, 10);
  if (value.empty() || *end != '\0' || n < -32768 || n > 32767) return std::nullopt;
  return std::to_string(n);
}

const ExchangeSetting& NamedSetting(const std::string& name) {
  const ExchangeSetting* setting = FindExchangeSetting(name);
  if (setting == nullptr) throw UsageError("no setting named " + name);
  return *setting;
}

int ShowSettings(Context& context) {
  clsExchange& exchange = context.Exchange();
  for (const ExchangeSetting& s : ExchangeSettings()) {
    PrintLine(std::string(s.name) + "=" + StoredForm(exchange, s));
  }
  return kExitOk;
}

// The use whose settings are under the key: "Route", "ReRead", ...
int32_t UseOfSettingKey(std::string_view key) {
  for (const int32_t use : {kUseRoute, kUseReRead, kUseReading, kUseOrphan}) {
    if (TypeDescr(static_cast<int16_t>(use)) == key) return use;
  }
  return 0;
}

// A map setting takes the map's name with or without its extension, and
// holds it without, as the conversions look it up.
std::string MapSettingValue(const ExchangeSetting& setting, std::string value) {
  if (setting.valueName != "Map") return value;
  const std::string error = MapOfUse(UseOfSettingKey(setting.key))(value);
  if (!error.empty()) throw UsageError(std::string(setting.name) + ": " + error);
  return value;
}

int SetSetting(Context& context, const std::string& name, const std::string& given) {
  const ExchangeSetting& setting = NamedSetting(name);
  const std::string value = MapSettingValue(setting, given);
  const std::optional<std::string> expected = StoredWords(setting, value);
  if (!expected) {
    throw UsageError(std::string(setting.name) + (setting.IsFlag() ? " takes Y or N" : " takes a whole number"));
  }
  clsExchange& exchange = context.Exchange();
  // Only this setting is written: another process may be setting another.
  if (!exchange.SaveParm(setting.key, setting.valueName, *expected)) {
    throw Failure(FailureKind::WriteFailed, fail::kPathAccess, std::string(setting.name) + " could not be saved");
  }
  // A failed write is silent in the engine, and an empty value reads back as
  // the default; a script wants to know either way.
  exchange.LoadSettings();
  const std::string stored = StoredForm(exchange, setting);
  if (stored != *expected) {
    throw Failure(FailureKind::Run, fail::kPathAccess,
                  std::string(setting.name) + " reads back as \"" + stored + "\"");
  }
  return kExitOk;
}

int ShowSite(Context& context) {
  {
    clsAdvanced advanced(context.Store());
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
  }
  return kExitOk;
}

int RegistryDump(Context& context) {
  const std::string dump = clsRegistry(context.Store()).GetKeyInfo(
      {std::string(kRootHive), std::string(kRootPath)}, context.Shell());
  WriteOut(dump);
  return dump == "Error opening key." ? kExitNotComplete : kExitOk;
}

}  // namespace

void AddSiteCommands(CommandTable& table) {
  struct Given {
    CLI::App* get = nullptr;
    CLI::App* set = nullptr;
    CLI::App* write = nullptr;
    std::string name, value, file;
  };
  auto given = std::make_shared<Given>();
  CLI::App& settings = table.Add("settings", "the exchange settings", [given](Context& context) {
    if (given->get->parsed()) {
      const ExchangeSetting& setting = NamedSetting(given->name);
      PrintLine(StoredForm(context.Exchange(), setting));
      return kExitOk;
    }
    if (given->set->parsed()) return SetSetting(context, given->name, given->value);
    return ShowSettings(context);
  });
  settings.require_subcommand(0, 1);
  settings.add_subcommand("show", "every setting as NAME=VALUE");
  given->get = settings.add_subcommand("get", "the value of setting NAME");
  given->set = settings.add_subcommand("set", "setting NAME saved as VALUE, alone");
  for (CLI::App* named : {given->get, given->set}) {
    named->add_option("name", given->name, "a setting's name, such as RouteSource")->type_name("NAME")->required();
  }
  given->set->add_option("value", given->value, "the new value; Y or N for a flag")->type_name("VALUE")->required();

  CLI::App& site = table.Add("site", "every site list, one section each", ShowSite);
  site.require_subcommand(1);
  site.add_subcommand("show", "every site list, one section each");

  CLI::App& dist = table.Add("dist", "distribution files", [given](Context& context) {
    clsDist distribution(context.Store(), context.Shell(), context.SiteFolder());
    if (!given->write->parsed()) return distribution.LoadDist(given->file) ? kExitOk : kExitNotComplete;
    RunSummary summary("dist write", false);
    summary.Watch(given->file);
    return summary.Finish(distribution.WriteDist(given->file) ? kExitOk : kExitNotComplete);
  });
  dist.require_subcommand(1);
  CLI::App* load = dist.add_subcommand("load", "the site's settings and maps set from FILE");
  given->write = dist.add_subcommand("write", "the site's settings and maps written to FILE");
  for (CLI::App* filed : {load, given->write}) {
    filed->add_option("file", given->file, "the distribution file")->type_name("FILE")->required();
  }

  CLI::App& registry = table.Add("registry", "the settings tree as a distribution file carries it", RegistryDump);
  registry.require_subcommand(1);
  registry.add_subcommand("dump", "the settings tree as a distribution file carries it");
}

}  // namespace hifx::cli
