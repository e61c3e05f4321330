// dump and view: what a HIF file holds, for scripts and for people.
#include <cstdio>
#include <cstdlib>

#include "base/Failure.h"
#include "cli/Commands.h"
#include "handheld/PalmFileCheck.h"
#include "hif/HifView.h"
#include "hif/clsHIF.h"

namespace hifx::cli {
namespace {

// A control character of a file's text shown as \xHH: a terminal never
// receives an escape sequence it would act on, nor a tab or line break that
// would shift the table.
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

void PrintRow(const std::vector<std::string>& cells) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line.push_back('\t');
    AppendShown(line, cells[i]);
  }
  line.push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stdout);
}

// Whether the file's structure holds as the handheld's own readers want it;
// says what is wrong when it doesn't.
bool Sound(const char* command, const std::string& file) {
  // A file that can't be read at all is said so by the reading itself.
  std::error_code ec;
  if (!std::filesystem::is_regular_file(file, ec)) return true;
  const std::string damage = PalmFileDamage(file);
  if (damage.empty()) return true;
  std::fprintf(stderr, "hifx: %s: %s: damaged handheld file: %s\n", command, file.c_str(), damage.c_str());
  return false;
}

}  // namespace

int RunDump(Context&, const Args& args) {
  if (args.size() != 1) return Usage("dump takes one FILE");
  const std::string& file = args[0];
  // Fields past the end of a short record come out as null rather than as
  // one message a field.
  SilentShell quiet;
  try {
    if (!Sound("dump", file)) return kExitUsage;
    const int16_t version = ReadFileVersion(quiet, file);
    clsHIF hif(quiet);
    if (version < 0 || (hif.SetVersion(version), hif.OpenHIF(file))) {
      std::fprintf(stderr, "hifx: dump: could not read HIF file %s\n", file.c_str());
      return kExitUsage;
    }
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
      std::fwrite(out.data(), 1, out.size(), stdout);
      std::fflush(stdout);
      std::fprintf(stderr, "hifx: dump: %s: record %d: %s\n", file.c_str(), record,
                   failure.Description().c_str());
      return kExitUsage;
    }
    std::fwrite(out.data(), 1, out.size(), stdout);
  } catch (const Failure& failure) {
    std::fprintf(stderr, "hifx: dump: %s: %s\n", file.c_str(), failure.Description().c_str());
    return kExitUsage;
  }
  return kExitOk;
}

int RunView(Context& context, const Args& args) {
  std::string file;
  std::optional<int32_t> route;
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--route") {
      if (i + 1 >= args.size()) return Usage("--route needs a number");
      char* end = nullptr;
      const long n = std::strtol(args[i + 1].c_str(), &end, 10);
      if (end == args[i + 1].c_str() || *end != '\0') return Usage("--route needs a number");
      route = static_cast<int32_t>(n);
      ++i;
    } else if (file.empty()) {
      file = args[i];
    } else {
      return Usage("view takes one FILE");
    }
  }
  if (file.empty()) return Usage("view takes one FILE");
  try {
    if (!Sound("view", file)) return kExitUsage;
    HifView view(context.shell);
    if (!view.Display(file)) {
      context.shell.MsgBox("Unable to display file", {}, MsgButtons::OK, MsgIcon::None);
      return kExitUsage;
    }
    const TextTable table = route ? view.Meters(*route) : view.Routes();
    PrintRow(table.columns);
    for (const auto& row : table.rows) PrintRow(row);
  } catch (const Failure& failure) {
    std::fflush(stdout);
    std::fprintf(stderr, "hifx: view: %s: %s\n", file.c_str(), failure.Description().c_str());
    return kExitUsage;
  }
  return kExitOk;
}

}  // namespace hifx::cli
