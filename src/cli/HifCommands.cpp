// dump and view: what a HIF file holds, for scripts and for people.
#include <cstdio>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <optional>

#include "base/Failure.h"
#include "cli/Commands.h"
#include "cli/HifFile.h"
#include "handheld/PalmFileCheck.h"
#include "hif/HifView.h"
#include "hif/clsHIF.h"

namespace hifx::cli {

void AppendShown(std::string& line, const std::string& text) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || (byte >= 0x7F && byte <= 0x9F)) {
      line += "\\x";
      line.push_back(kHex[byte >> 4]);
      line.push_back(kHex[byte & 15]);
    } else {
      line.push_back(c);
    }
  }
}

void PrintTable(const std::vector<std::vector<std::string>>& rows, const std::vector<bool>& right) {
  std::vector<size_t> width(rows.front().size());
  for (const auto& row : rows) {
    for (size_t c = 0; c < row.size(); ++c) width[c] = std::max(width[c], row[c].size());
  }
  for (const auto& row : rows) {
    std::string line;
    for (size_t c = 0; c < row.size(); ++c) {
      const std::string pad(width[c] - row[c].size(), ' ');
      const bool last = c + 1 == row.size();
      line += right[c] ? pad + row[c] : row[c] + (last ? "" : pad);
      if (!last) line += "  ";
    }
    line.erase(line.find_last_not_of(' ') + 1);
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
  }
}

void AppendField(std::string& out, const char* name, const std::string& json) {
  if (out.back() != '{') out += ',';
  AppendJsonText(out, name);
  out += ':';
  out += json;
}

std::string JsonText(const std::string& text) {
  std::string out;
  AppendJsonText(out, text);
  return out;
}

namespace {

std::string MeterJson(const MeterPlace& m) {
  std::string out = "{";
  AppendField(out, "serial", JsonText(m.serial));
  const std::pair<const char*, int32_t> numbers[] = {{"tag", m.tag},       {"type", m.type},
                                                     {"digits", m.digits}, {"route", m.route},
                                                     {"sequence", m.sequence}};
  for (const auto& [name, number] : numbers) AppendField(out, name, std::to_string(number));
  return out + "}";
}

}  // namespace

std::string DifferenceJson(const MeterDifference& d) {
  std::string out = "{";
  AppendField(out, "change", JsonText(ChangeWord(d.change)));
  const MeterPlace& m = d.change == MeterChange::Removed ? d.before : d.after;
  AppendField(out, "account", JsonText(m.account));
  AppendField(out, "old", d.change == MeterChange::Added ? "null" : MeterJson(d.before));
  AppendField(out, "new", d.change == MeterChange::Removed ? "null" : MeterJson(d.after));
  return out + "}";
}

namespace {

void PrintRow(const std::vector<std::string>& cells) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line.push_back('\t');
    AppendShown(line, cells[i]);
  }
  line.push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stdout);
}

int Dump(const std::string& file) {
  // Fields past the end of a short record come out as null rather than as
  // one message a field.
  SilentShell quiet;
  clsHIF hif(quiet);
  OpenToRead(hif, quiet, file);
  std::string out;
  int record = 0;
  try {
    while (hif.ReadData()) {
      out += RecordToJson(hif);
      out.push_back('\n');
      ++record;
      if (out.size() > (1u << 16)) {
        std::fwrite(out.data(), 1, out.size(), stdout);
        out.clear();
      }
    }
  } catch (const Failure& failure) {
    // What was read before the damage is shown, then where it is.
    std::fwrite(out.data(), 1, out.size(), stdout);
    throw Failure(FailureKind::BadInput, failure.Number(), {}, file,
                  "record " + std::to_string(record) + ": " + failure.Description());
  }
  std::fwrite(out.data(), 1, out.size(), stdout);
  return kExitOk;
}

int View(Context& context, const std::string& file, std::optional<int32_t> route) {
  RaiseIfDamaged(file);
  HifView view(context.Shell());
  if (!view.Display(file)) {
    context.Shell().MsgBox("Unable to display file", {}, MsgButtons::OK, MsgIcon::None);
    return UnreadableInputCode(file);
  }
  const TextTable table = route ? view.Meters(*route) : view.Routes();
  PrintRow(table.columns);
  for (const auto& row : table.rows) PrintRow(row);
  return kExitOk;
}

}  // namespace

void AddHifCommands(CommandTable& table) {
  auto file = std::make_shared<std::string>();
  CLI::App& dump = table.Add("dump", "every record of a HIF as one JSON object per line", [file](Context&) {
    return ReadingFile(*file, [&] { return Dump(*file); });
  });
  dump.add_option("file", *file, "the HIF file")->type_name("FILE")->required();

  auto viewed = std::make_shared<std::string>();
  auto route = std::make_shared<std::optional<int32_t>>();
  CLI::App& view = table.Add("view", "the routes, or the meters of route N, tab-separated",
                             [viewed, route](Context& context) {
                               return ReadingFile(*viewed, [&] { return View(context, *viewed, *route); });
                             });
  view.add_option("file", *viewed, "the HIF file")->type_name("FILE")->required();
  view.add_option("--route", *route, "the route whose meters are shown")->type_name("N");
}

}  // namespace hifx::cli
