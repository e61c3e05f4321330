// check: a route file (or a re-read list) read and validated as its
// conversion would read it, nothing of the user's written; every fault
// listed, then a summary and whether the conversion would make the file
// (exit 0) or not (exit 1). For scripts, the same as one JSON object.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/UnloggedShell.h"
#include "cli/Commands.h"
#include "cli/HifFile.h"
#include "cli/MapNames.h"
#include "exchange/clsExchange.h"

namespace hifx::cli {
namespace {

struct CheckOptions {
  std::optional<std::string> map;
  std::optional<std::string> since;
  std::string file;
  bool reread = false;
  bool json = false;
};

void PrintFault(const RouteFault& fault) {
  if (fault.line == 0) {
    std::printf("file: %s\n", fault.message.c_str());
  } else if (fault.field.empty()) {
    std::printf("line %d: %s\n", fault.line, fault.message.c_str());
  } else {
    std::printf("line %d: %s \"%s\": %s\n", fault.line, fault.field.c_str(), fault.value.c_str(), fault.message.c_str());
  }
}

// The meters changed out, new and gone since the last readings, one a line,
// then their counts.
void PrintChanges(const RouteCheck& check) {
  std::printf("\n");
  for (const MeterDifference& d : check.changes) std::printf("%s\n", ChangeLine(d, AppendShown).c_str());
  std::printf("%s\n", ChangesSummary(check).c_str());
}

void PrintSummary(const RouteCheck& check) {
  std::printf("%s\n%s\n", CheckSummary(check).c_str(), CheckVerdict(check).c_str());
}

std::string FaultJson(const RouteFault& fault) {
  std::string out = "{";
  AppendField(out, "line", std::to_string(fault.line));
  AppendField(out, "field", JsonText(fault.field));
  AppendField(out, "value", JsonText(fault.value));
  AppendField(out, "kind", JsonText(fault.kind));
  AppendField(out, "message", JsonText(fault.message));
  return out + "}";
}

template <typename Item, typename ToJson>
std::string JsonList(const std::vector<Item>& items, ToJson toJson) {
  std::string list = "[";
  for (const Item& item : items) list += (list.size() > 1 ? "," : "") + toJson(item);
  return list + "]";
}

void PrintJson(const CheckOptions& options, const RouteCheck& check) {
  std::string out = "{";
  AppendField(out, "file", JsonText(options.file));
  AppendField(out, "kind", JsonText(check.rereadList ? "reread" : "route"));
  AppendField(out, "converts", check.Converts() ? "true" : "false");
  AppendField(out, "verdict", JsonText(CheckVerdict(check)));
  AppendField(out, "lines", std::to_string(check.lines));
  AppendField(out, "routes", std::to_string(check.routes));
  AppendField(out, "meters", std::to_string(check.meters));
  std::string counts = "{";
  for (const auto& [kind, count] : check.CountByKind()) AppendField(counts, kind.c_str(), std::to_string(count));
  AppendField(out, "faultsByKind", counts + "}");
  AppendField(out, "faults", JsonList(check.faults, FaultJson));
  if (options.since) {
    AppendField(out, "since", JsonText(*options.since));
    AppendField(out, "changes", JsonList(check.changes, DifferenceJson));
  }
  std::printf("%s}\n", out.c_str());
}

void PrintText(const CheckOptions& options, const RouteCheck& check) {
  for (const RouteFault& fault : check.faults) PrintFault(fault);
  PrintSummary(check);
  if (options.since && check.Converts()) PrintChanges(check);
}

int Check(Context& context, const CheckOptions& options) {
  app::UnloggedShell shell(context.Shell());
  ExchangeEnvironment environment = context.Environment();
  clsExchange exchange({environment.store, shell, environment.clock, environment.siteFolder, environment.syncRoot});
  exchange.LoadSettings();
  (options.reread ? exchange.ReReadSource : exchange.RouteSource) = options.file;
  if (options.map) (options.reread ? exchange.ReReadMap : exchange.RouteMap) = *options.map;
  RouteCheck check;
  check.rereadList = options.reread;
  if (options.since) check.since = *options.since;
  exchange.CheckRoute(check);
  if (options.json) {
    PrintJson(options, check);
  } else {
    PrintText(options, check);
  }
  std::fflush(stdout);
  return NameTheInput("check", options.file, false, check.Converts() ? kExitOk : kExitNotComplete);
}

}  // namespace

void AddCheckCommand(CommandTable& table) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App& check = table.Add("check", "a route file read and validated as the conversion would, nothing written",
                              [options](Context& context) { return Check(context, *options); });
  check.add_flag("--reread", options->reread, "the file is a list of meters to read again, read by a re-read map");
  check.add_option("--map", options->map, "the route or re-read map, by its name (else the stored one)")
      ->type_name("NAME")
      ->transform(MapOfUse(kUseRoute));
  check.add_option("--since", options->since, "the last readings, to list the meters changed out, new and gone")
      ->type_name("READINGS");
  check.add_flag("--json", options->json, "one JSON object instead of the list");
  check.add_option("file", options->file, "the route file")->type_name("FILE")->required();
}

}  // namespace hifx::cli
