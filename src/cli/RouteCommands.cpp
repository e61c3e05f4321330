// route, reread and reading: the conversions, with the stored settings and
// the run's own options over them. Nothing of the options is saved.
#include <CLI/CLI.hpp>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "cli/CliShell.h"
#include "cli/Commands.h"
#include "cli/MapNames.h"
#include "cli/RunSummary.h"
#include "exchange/clsExchange.h"

namespace hifx::cli {
namespace {

struct RouteOptions {
  std::optional<std::string> source, dest, map, format;
  bool json = false;
};

// The options of route and reread: which of the exchange's settings each
// stands for this run.
struct RouteSettings {
  std::string clsExchange::*source;
  std::string clsExchange::*destination;
  std::string clsExchange::*map;
  std::string clsExchange::*format;
};

void AddRouteOptions(CLI::App& command, RouteOptions& options, int32_t use) {
  command.add_option("--source", options.source, "the route file")->type_name("F");
  command.add_option("--dest", options.dest, "the HIF file to make")->type_name("F");
  command.add_option("--map", options.map, "the map, by its name")->type_name("NAME")->transform(MapOfUse(use));
  command.add_option("--format", options.format, "the HIF's form")
      ->type_name("PDB|PRC|VFS")
      ->check(CLI::Validator(
          [](const std::string& v) { return v == "PDB" || v == "PRC" || v == "VFS" ? "" : "takes PDB, PRC or VFS"; },
          ""));
  AddJsonFlag(command, options.json);
}

void AddRouteConversion(CommandTable& table, const std::string& name, const std::string& help,
                        RouteSettings settings, bool (clsExchange::*convert)(), int32_t use) {
  auto options = std::make_shared<RouteOptions>();
  CLI::App& command = table.Add(name, help, [name, options, settings, convert](Context& context) {
    clsExchange& exchange = context.Exchange();
    if (options->source) exchange.*settings.source = *options->source;
    if (options->dest) exchange.*settings.destination = *options->dest;
    if (options->map) exchange.*settings.map = *options->map;
    if (options->format) exchange.*settings.format = *options->format;
    RunSummary summary(name, options->json);
    summary.Watch(exchange.*settings.destination);
    const int exitCode = (exchange.*convert)() ? kExitOk : kExitNotComplete;
    return summary.Finish(NameTheInput(name, exchange.*settings.source, false, exitCode));
  });
  AddRouteOptions(command, *options, use);
}

// What each option of reading does to the settings of the run. They take
// effect in the order given, so a later one wins over an earlier.
using ReadingChange = std::function<void(clsExchange&, const std::string&)>;

const std::map<std::string, ReadingChange>& ReadingChanges() {
  static const std::map<std::string, ReadingChange> changes = {
      {"--source", [](clsExchange& e, const std::string& v) { e.ReadingSource = v; }},
      {"--dest", [](clsExchange& e, const std::string& v) { e.ReadingDestination = v; }},
      {"--map", [](clsExchange& e, const std::string& v) { e.ReadingMap = v; }},
      {"--orphans",
       [](clsExchange& e, const std::string& v) {
         e.OrphanDestination = v;
         e.OrphanConvert = -1;
       }},
      {"--orphan-map", [](clsExchange& e, const std::string& v) { e.OrphanMap = v; }},
      {"--orphan-replace", [](clsExchange& e, const std::string&) { e.OrphanReplace = -1; }},
      {"--orphan-append", [](clsExchange& e, const std::string&) { e.OrphanReplace = 0; }},
      {"--reread",
       [](clsExchange& e, const std::string& v) {
         e.ReReadDestination = v;
         e.AutoReRead = true;
       }},
      {"--no-orphans", [](clsExchange& e, const std::string&) { e.OrphanConvert = 0; }},
      {"--no-reread", [](clsExchange& e, const std::string&) { e.AutoReRead = false; }},
  };
  return changes;
}

// The re-read question is always put; answered No it ends the run after the
// billing file is written. Known before the run, that No stops it before
// anything is written.
void RefuseHalfARun(Context& context, const clsExchange& exchange) {
  const auto* shell = dynamic_cast<const CliShell*>(&context.Shell());
  if (!exchange.AutoReRead || shell == nullptr || !shell->AnswersNo()) return;
  throw UsageError(
      "the question \"ReRead Destination already exists\" would be answered No and end the run after the billing "
      "file; nothing was written: give --yes to write the re-read file, or --no-reread to leave it out");
}

int Reading(Context& context, const CLI::App& command) {
  clsExchange& exchange = context.Exchange();
  for (const CLI::Option* option : command.parse_order()) {
    const auto change = ReadingChanges().find(option->get_name());
    if (change == ReadingChanges().end()) continue;  // --json
    const std::string value = option->get_type_size_max() > 0 ? option->as<std::string>() : std::string();
    change->second(exchange, value);
  }
  RefuseHalfARun(context, exchange);
  RunSummary summary("reading", command.get_option("--json")->count() > 0);
  summary.Watch(exchange.ReadingDestination);
  if (exchange.OrphanConvert != 0) summary.Watch(exchange.OrphanDestination);
  if (exchange.AutoReRead) summary.Watch(exchange.ReReadDestination);
  const int exitCode = exchange.ConvertReading() ? kExitOk : kExitNotComplete;
  return summary.Finish(NameTheInput("reading", exchange.ReadingSource, true, exitCode));
}

void AddReadingConversion(CommandTable& table) {
  auto command = std::make_shared<CLI::App*>();
  CLI::App& reading = table.Add("reading", "reading conversion: billing file, orphan file, re-read file",
                                [command](Context& context) { return Reading(context, **command); });
  *command = &reading;
  reading.add_option("--source", "the reading HIF")->type_name("F");
  reading.add_option("--dest", "the billing file to write")->type_name("F");
  reading.add_option("--map", "the reading map, by its name")->type_name("NAME")->transform(MapOfUse(kUseReading));
  reading.add_option("--orphans", "the orphan file to write")->type_name("F");
  reading.add_option("--orphan-map", "the orphan map, by its name")->type_name("NAME")->transform(MapOfUse(kUseOrphan));
  CLI::Option* replace = reading.add_flag("--orphan-replace")->description("the orphan file replaced");
  CLI::Option* append = reading.add_flag("--orphan-append")->description("the orphans added to the orphan file");
  replace->excludes(append);
  append->excludes(replace);
  reading.add_option("--reread", "the re-read file to write")->type_name("F");
  reading.add_flag("--no-orphans")->description("no orphan file");
  reading.add_flag("--no-reread")->description("no re-read file");
  auto json = std::make_shared<bool>(false);
  AddJsonFlag(reading, *json);
}

}  // namespace

void AddConversionCommands(CommandTable& table) {
  AddRouteConversion(table, "route", "route conversion with the stored settings",
                     {&clsExchange::RouteSource, &clsExchange::RouteDestination, &clsExchange::RouteMap,
                      &clsExchange::RouteHIFType},
                     &clsExchange::ConvertRoute, kUseRoute);
  AddRouteConversion(table, "reread", "re-read conversion with the stored settings",
                     {&clsExchange::ReReadSource, &clsExchange::ReReadDestination, &clsExchange::ReReadMap,
                      &clsExchange::ReReadHIFType},
                     &clsExchange::ConvertReRead, kUseReRead);
  AddReadingConversion(table);
}

}  // namespace hifx::cli
