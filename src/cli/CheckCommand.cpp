// check: a route file read and validated as its conversion would read it,
// nothing of the user's written; every fault listed, then a summary and
// whether the conversion would make the file (exit 0) or not (exit 1).
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "cli/Commands.h"
#include "cli/HifFile.h"
#include "exchange/clsExchange.h"

namespace hifx::cli {
namespace {

// The person's shell without the conversion's log: its questions and
// prompts still reach the person, its lines don't.
class UnloggedShell final : public IShell {
 public:
  explicit UnloggedShell(IShell& person) : person_(person) {}
  void WriteLog(std::string_view) override {}
  void SetProgressButton(int32_t, int32_t) override {}
  MsgAnswer MsgBox(std::string_view text, std::string_view title, MsgButtons buttons, MsgIcon icon) override {
    return person_.MsgBox(text, title, buttons, icon);
  }
  bool PromptVariables(const std::vector<PromptField>& fields, std::vector<std::string>& values) override {
    return person_.PromptVariables(fields, values);
  }
  std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                      std::string_view defaultValue) override {
    return person_.InputBox(prompt, title, defaultValue);
  }

 private:
  IShell& person_;
};

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

std::string Count(size_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

// The meters changed out, new and gone since the last readings, one a line,
// then their counts.
void PrintChanges(const RouteCheck& check) {
  std::printf("\n");
  for (const MeterDifference& d : check.changes) {
    const MeterPlace& m = d.change == MeterChange::Removed ? d.before : d.after;
    std::string line = d.change == MeterChange::Replaced ? "changed out" : d.change == MeterChange::Added ? "new" : "gone";
    line += ": account ";
    AppendShown(line, m.account);
    line += ", route " + std::to_string(m.route) + ", sequence " + std::to_string(m.sequence) + ": meter ";
    if (d.change == MeterChange::Replaced) {
      AppendShown(line, FromTo(d.before.serial, m.serial));
      const std::string detail = ReplacedDetail(d.before, m);
      if (!detail.empty()) line += ", " + detail;
    } else {
      AppendShown(line, m.serial);
    }
    std::printf("%s\n", line.c_str());
  }
  const auto count = [&](MeterChange change) {
    return std::count_if(check.changes.begin(), check.changes.end(), [&](auto& d) { return d.change == change; });
  };
  std::printf("Since %s: %ld changed out, %ld new, %ld gone\n", check.since.string().c_str(),
              static_cast<long>(count(MeterChange::Replaced)), static_cast<long>(count(MeterChange::Added)),
              static_cast<long>(count(MeterChange::Removed)));
}

void PrintSummary(const RouteCheck& check) {
  std::string kinds;
  for (const auto& [kind, count] : check.CountByKind()) {
    kinds += (kinds.empty() ? ": " : ", ") + std::to_string(count) + " " + kind;
  }
  const auto whole = [](int32_t n) { return static_cast<size_t>(std::max(n, 0)); };
  std::printf("%s, %s, %s; %s%s\n", Count(whole(check.lines), "line", "lines").c_str(),
              Count(whole(check.routes), "route", "routes").c_str(),
              Count(whole(check.meters), "meter", "meters").c_str(),
              Count(check.faults.size(), "fault", "faults").c_str(), kinds.c_str());
  if (!check.Converts()) {
    std::printf("The route would not convert: %s\n", check.stop.c_str());
  } else if (!check.faults.empty()) {
    std::printf("The route would convert, with warnings.\n");
  } else {
    std::printf("The route would convert.\n");
  }
}

int Check(Context& context, const CheckOptions& options) {
  UnloggedShell shell(context.Shell());
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
