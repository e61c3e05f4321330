// check: a route file read and validated as its conversion would read it,
// nothing of the user's written; every fault listed, then a summary and
// whether the conversion would make the file (exit 0) or not (exit 1).
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "app/UnloggedShell.h"
#include "cli/Commands.h"
#include "cli/HifFile.h"
#include "exchange/clsExchange.h"

namespace hifx::cli {
namespace {

struct CheckOptions {
  std::optional<std::string> map;
  std::optional<std::string> since;
  std::string file;
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

int Check(Context& context, const CheckOptions& options) {
  app::UnloggedShell shell(context.Shell());
  ExchangeEnvironment environment = context.Environment();
  clsExchange exchange({environment.store, shell, environment.clock, environment.siteFolder, environment.syncRoot});
  exchange.LoadSettings();
  exchange.RouteSource = options.file;
  if (options.map) exchange.RouteMap = *options.map;
  RouteCheck check;
  if (options.since) check.since = *options.since;
  exchange.CheckRoute(check);
  for (const RouteFault& fault : check.faults) PrintFault(fault);
  PrintSummary(check);
  if (options.since && check.Converts()) PrintChanges(check);
  std::fflush(stdout);
  return check.Converts() ? kExitOk : kExitNotComplete;
}

}  // namespace

void AddCheckCommand(CommandTable& table) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App& check = table.Add("check", "a route file read and validated as the conversion would, nothing written",
                              [options](Context& context) { return Check(context, *options); });
  check.add_option("--map", options->map, "the route map, by its file name (else the stored one)")->type_name("NAME");
  check.add_option("--since", options->since, "the last readings, to list the meters changed out, new and gone")
      ->type_name("READINGS");
  check.add_option("file", options->file, "the route file")->type_name("FILE")->required();
}

}  // namespace hifx::cli
