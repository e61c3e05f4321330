// route and reread: the conversions that make a route HIF for the handheld.
#include <cstdio>
#include <functional>
#include <memory>

#include "base/Failure.h"
#include "cli/Commands.h"
#include "config/SiteRegistry.h"
#include "exchange/clsExchange.h"

namespace hifx::cli {
namespace {

struct Overrides {
  std::optional<std::string> source, dest, map, format;
};

// Reads --source, --dest, --map, --format; false on anything else.
bool ParseOverrides(const Args& args, Overrides& o, std::string& problem) {
  for (size_t i = 0; i < args.size(); ++i) {
    std::optional<std::string>* slot = nullptr;
    if (args[i] == "--source") slot = &o.source;
    if (args[i] == "--dest") slot = &o.dest;
    if (args[i] == "--map") slot = &o.map;
    if (args[i] == "--format") slot = &o.format;
    if (slot == nullptr) {
      problem = "unknown option " + args[i];
      return false;
    }
    if (i + 1 >= args.size()) {
      problem = args[i] + " needs a value";
      return false;
    }
    *slot = args[++i];
  }
  if (o.format && *o.format != "PDB" && *o.format != "PRC" && *o.format != "VFS") {
    problem = "--format takes PDB, PRC or VFS";
    return false;
  }
  return true;
}

// Loads the stored settings, applies the run's overrides (nothing is saved)
// and runs the conversion.
int RunConversion(Context& context, const Args& args, const char* usage,
                  const std::function<void(clsExchange&, const Overrides&)>& apply,
                  const std::function<bool(clsExchange&)>& convert) {
  Overrides overrides;
  std::string problem;
  if (!ParseOverrides(args, overrides, problem)) return Usage(problem + "\n" + usage);
  const std::unique_ptr<IRegistryStore> store = OpenStore(context);
  if (!store) return kExitUsage;
  clsExchange exchange(Environment(context, *store));
  exchange.LoadSettings();
  apply(exchange, overrides);
  return convert(exchange) ? kExitOk : kExitNotComplete;
}

}  // namespace

int RunRoute(Context& context, const Args& args) {
  return RunConversion(
      context, args, "route [--source F] [--dest F] [--map NAME] [--format PDB|PRC|VFS]",
      [](clsExchange& e, const Overrides& o) {
        if (o.source) e.RouteSource = *o.source;
        if (o.dest) e.RouteDestination = *o.dest;
        if (o.map) e.RouteMap = *o.map;
        if (o.format) e.RouteHIFType = *o.format;
      },
      [](clsExchange& e) { return e.ConvertRoute(); });
}

int RunReRead(Context& context, const Args& args) {
  return RunConversion(
      context, args, "reread [--source F] [--dest F] [--map NAME] [--format PDB|PRC|VFS]",
      [](clsExchange& e, const Overrides& o) {
        if (o.source) e.ReReadSource = *o.source;
        if (o.dest) e.ReReadDestination = *o.dest;
        if (o.map) e.ReReadMap = *o.map;
        if (o.format) e.ReReadHIFType = *o.format;
      },
      [](clsExchange& e) { return e.ConvertReRead(); });
}

int RunReading(Context& context, const Args& args) {
  static const char* kUsage =
      "reading [--source F] [--dest F] [--map NAME] [--orphans F] [--orphan-map NAME] "
      "[--orphan-replace | --orphan-append] [--reread F] [--no-orphans] [--no-reread]";
  // The run's options; nothing is saved.
  std::vector<std::function<void(clsExchange&)>> apply;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto value = [&](std::string& out) {
      if (i + 1 >= args.size()) return false;
      out = args[++i];
      return true;
    };
    std::string v;
    if (a == "--source" && value(v)) {
      apply.push_back([v](clsExchange& e) { e.ReadingSource = v; });
    } else if (a == "--dest" && value(v)) {
      apply.push_back([v](clsExchange& e) { e.ReadingDestination = v; });
    } else if (a == "--map" && value(v)) {
      apply.push_back([v](clsExchange& e) { e.ReadingMap = v; });
    } else if (a == "--orphans" && value(v)) {
      apply.push_back([v](clsExchange& e) {
        e.OrphanDestination = v;
        e.OrphanConvert = -1;
      });
    } else if (a == "--orphan-map" && value(v)) {
      apply.push_back([v](clsExchange& e) { e.OrphanMap = v; });
    } else if (a == "--orphan-replace") {
      apply.push_back([](clsExchange& e) { e.OrphanReplace = -1; });
    } else if (a == "--orphan-append") {
      apply.push_back([](clsExchange& e) { e.OrphanReplace = 0; });
    } else if (a == "--reread" && value(v)) {
      apply.push_back([v](clsExchange& e) {
        e.ReReadDestination = v;
        e.AutoReRead = true;
      });
    } else if (a == "--no-orphans") {
      apply.push_back([](clsExchange& e) { e.OrphanConvert = 0; });
    } else if (a == "--no-reread") {
      apply.push_back([](clsExchange& e) { e.AutoReRead = false; });
    } else {
      return Usage(std::string(kUsage));
    }
  }
  const std::unique_ptr<IRegistryStore> store = OpenStore(context);
  if (!store) return kExitUsage;
  clsExchange exchange(Environment(context, *store));
  exchange.LoadSettings();
  for (const auto& change : apply) change(exchange);
  return exchange.ConvertReading() ? kExitOk : kExitNotComplete;
}

}  // namespace hifx::cli
