// diff: what changed between two route or reading files, meter by meter, as
// a table for people or one JSON object for scripts. Exits 0 when nothing
// did, 1 when something did, as diff does.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/HifFile.h"
#include "hif/HifView.h"
#include "hif/MeterDiff.h"

namespace hifx::cli {
namespace {

struct DiffOptions {
  std::string before;
  std::string after;
  bool json = false;
};

std::string MeterDetail(const MeterPlace& m) {
  return "tag " + std::to_string(m.tag) + ", type " + std::to_string(m.type) + ", digits " +
         std::to_string(m.digits);
}

std::vector<std::string> RowOf(const MeterDifference& d) {
  const MeterPlace& m = d.change == MeterChange::Removed ? d.before : d.after;
  std::vector<std::string> row{ChangeWord(d.change), {}, {}};
  AppendShown(row[1], m.account);
  switch (d.change) {
    case MeterChange::Added:
    case MeterChange::Removed:
      AppendShown(row[2], m.serial);
      row.insert(row.end(), {std::to_string(m.route), std::to_string(m.sequence), MeterDetail(m)});
      break;
    case MeterChange::Moved:
    case MeterChange::Resequenced:
      AppendShown(row[2], m.serial);
      row.insert(row.end(), {FromTo(d.before.route, m.route), FromTo(d.before.sequence, m.sequence), ""});
      break;
    case MeterChange::Replaced:
      AppendShown(row[2], FromTo(d.before.serial, m.serial));
      row.insert(row.end(), {std::to_string(m.route), std::to_string(m.sequence), ReplacedDetail(d.before, m)});
      break;
  }
  return row;
}

std::string Summary(const MeterDiff& diff) {
  const auto count = [&](MeterChange c, const char* words) { return std::to_string(diff.Count(c)) + " " + words; };
  return count(MeterChange::Added, "added, ") + count(MeterChange::Removed, "removed, ") +
         count(MeterChange::Moved, "moved to another route, ") + count(MeterChange::Resequenced, "resequenced, ") +
         count(MeterChange::Replaced, "changed out; ") + std::to_string(diff.unchanged) + " unchanged";
}

void PrintText(const MeterDiff& diff) {
  if (!diff.differences.empty()) {
    std::vector<std::vector<std::string>> rows{{"Change", "Account", "Meter", "Route", "Sequence", "Detail"}};
    for (const MeterDifference& d : diff.differences) rows.push_back(RowOf(d));
    PrintTable(rows, {false, false, false, false, false, false});
    std::printf("\n");
  }
  std::printf("%s\n", Summary(diff).c_str());
}

void PrintJson(const DiffOptions& options, const MeterDiff& diff) {
  std::string out = "{";
  AppendField(out, "old", JsonText(options.before));
  AppendField(out, "new", JsonText(options.after));
  std::string list = "[";
  for (const MeterDifference& d : diff.differences) list += (list.size() > 1 ? "," : "") + DifferenceJson(d);
  AppendField(out, "differences", list + "]");
  std::string counts = "{";
  for (const MeterChange c : {MeterChange::Added, MeterChange::Removed, MeterChange::Moved, MeterChange::Resequenced,
                              MeterChange::Replaced}) {
    AppendField(counts, ChangeWord(c), std::to_string(diff.Count(c)));
  }
  AppendField(counts, "unchanged", std::to_string(diff.unchanged));
  AppendField(out, "counts", counts + "}");
  std::printf("%s}\n", out.c_str());
}

int Diff(const DiffOptions& options) {
  SilentShell quiet;
  const auto before = ReadingFile(options.before, [&] { return ReadMeterPlaces(quiet, options.before); });
  const auto after = ReadingFile(options.after, [&] { return ReadMeterPlaces(quiet, options.after); });
  const MeterDiff diff = CompareMeters(before, after);
  if (options.json) {
    PrintJson(options, diff);
  } else {
    PrintText(diff);
  }
  std::fflush(stdout);
  return diff.differences.empty() ? kExitOk : kExitNotComplete;
}

}  // namespace

void AddDiffCommand(CommandTable& table) {
  auto options = std::make_shared<DiffOptions>();
  CLI::App& diff = table.Add("diff", "two route or reading HIFs compared by account and meter",
                             [options](Context&) { return Diff(*options); });
  diff.add_flag("--json", options->json, "one JSON object instead of the table");
  diff.add_option("old", options->before, "the earlier file")->type_name("OLD")->required();
  diff.add_option("new", options->after, "the later file")->type_name("NEW")->required();
}

}  // namespace hifx::cli
