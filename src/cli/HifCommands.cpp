// dump and view: what a HIF file holds, for scripts and for people.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>

#include "base/Csv.h"
#include "base/Failure.h"
#include "cli/CliShell.h"
#include "cli/Commands.h"
#include "cli/HifFile.h"
#include "handheld/PalmFileCheck.h"
#include "hif/HifView.h"
#include "hif/clsHIF.h"

namespace hifx::cli {

namespace {

bool IsControl(unsigned char byte) { return byte < 0x20 || (byte >= 0x7F && byte <= 0x9F); }

void AppendHex(std::string& line, unsigned char byte) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  line += "\\x";
  line.push_back(kHex[byte >> 4]);
  line.push_back(kHex[byte & 15]);
}

// The letter a cell shows behind a backslash in place of the character, or
// none.
char EscapeLetter(char c) {
  switch (c) {
    case '\\': return '\\';
    case '\t': return 't';
    case '\n': return 'n';
    case '\r': return 'r';
    default: return 0;
  }
}

void AppendShownChar(std::string& line, char c) {
  const auto byte = static_cast<unsigned char>(c);
  if (IsControl(byte)) {
    AppendHex(line, byte);
  } else {
    line.push_back(c);
  }
}

}  // namespace

void AppendShown(std::string& line, const std::string& text) {
  for (const char c : text) AppendShownChar(line, c);
}

void AppendCell(std::string& line, const std::string& text) {
  for (const char c : text) {
    if (const char letter = EscapeLetter(c)) {
      line.push_back('\\');
      line.push_back(letter);
    } else {
      AppendShownChar(line, c);
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
    WriteOut(line);
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

// One row of tab-separated cells, ended by a line feed.
void AppendTsvRecord(std::string& out, const std::vector<std::string>& cells) {
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) out.push_back('\t');
    AppendCell(out, cells[i]);
  }
  out.push_back('\n');
}

int Dump(const std::string& file) {
  // Fields past the end of a short record come out as null rather than as
  // one message a field.
  SilentShell quiet;
  clsHIF hif(quiet);
  OpenToRead(hif, file);
  std::string out;
  RecordJsonWriter json;
  int record = 0;
  try {
    while (hif.ReadData()) {
      json.Append(out, hif);
      out.push_back('\n');
      ++record;
      if (out.size() > (1u << 16)) {
        WriteOut(out);
        out.clear();
      }
    }
  } catch (const WriteFailure&) {
    throw;  // standard output, not the file
  } catch (const Failure& failure) {
    // What was read before the damage is shown, then where it is.
    std::fwrite(out.data(), 1, out.size(), stdout);
    throw Failure(FailureKind::BadInput, failure.Number(), {}, file,
                  "record " + std::to_string(record) + ": " + failure.Description());
  }
  WriteOut(out);
  return kExitOk;
}

int View(Context& context, const std::string& file, std::optional<int32_t> route, bool csv) {
  RaiseIfDamaged(file);
  HifView view(context.Shell());
  if (!view.Display(file)) {
    context.Shell().MsgBox("Unable to display file", {}, MsgButtons::OK, MsgIcon::None);
    return SayUnreadable("view", file);
  }
  const TextTable table = route ? view.Meters(*route) : view.Routes();
  const auto append = csv ? AppendCsvRecord : AppendTsvRecord;
  std::string out;
  append(out, table.columns);
  for (const auto& row : table.rows) {
    append(out, row);
    if (out.size() > (1u << 16)) {
      WriteOut(out);
      out.clear();
    }
  }
  WriteOut(out);
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
  auto csv = std::make_shared<bool>(false);
  CLI::App& view = table.Add("view", "the routes, or the meters of route N, tab-separated or as CSV",
                             [viewed, route, csv](Context& context) {
                               return ReadingFile(*viewed, [&] { return View(context, *viewed, *route, *csv); });
                             });
  view.add_option("file", *viewed, "the HIF file")->type_name("FILE")->required();
  view.add_option("--route", *route, "the route whose meters are shown")->type_name("N");
  view.add_flag("--csv", *csv, "comma-separated values (RFC 4180) instead");
}

}  // namespace hifx::cli
