// dump and view: what a HIF file holds, for scripts and for people.
#include <cstdio>
#include <cstdlib>

#include "base/Failure.h"
#include "cli/Commands.h"
#include "hif/HifView.h"
#include "hif/clsHIF.h"

namespace hifx::cli {
namespace {

void PrintRow(const std::vector<std::string>& cells) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line.push_back('\t');
    line += cells[i];
  }
  line.push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stdout);
}

}  // namespace

int RunDump(Context&, const Args& args) {
  if (args.size() != 1) return Usage("dump takes one FILE");
  const std::string& file = args[0];
  // Fields past the end of a short record come out as null rather than as
  // one message a field.
  SilentShell quiet;
  try {
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
