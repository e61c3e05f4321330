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

}  // namespace hifx::cli
