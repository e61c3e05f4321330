// hifx: the command line of the exchange engine. Scripts rely on its words,
// its output and its exit codes; keep them.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "cli/CliShell.h"
#include "hif/HifView.h"
#include "hif/clsHIF.h"

namespace {

using hifx::CliShell;
using hifx::Failure;

constexpr int kExitOk = 0;
constexpr int kExitUsage = 2;

constexpr const char* kUsage =
    "usage: hifx [--site DIR] [--yes | --no] [--set FIELD=VALUE]... COMMAND [ARGS]\n"
    "commands:\n"
    "  dump FILE                 every record of a HIF as one JSON object per line\n"
    "  view FILE [--route N]     the routes, or the meters of route N, tab-separated\n";

struct GlobalOptions {
  std::string site;
  std::optional<bool> answer;
  std::vector<std::string> sets;
};

int Usage(const std::string& problem) {
  if (!problem.empty()) std::fprintf(stderr, "hifx: %s\n", problem.c_str());
  std::fputs(kUsage, stderr);
  return kExitUsage;
}

void PrintRow(const std::vector<std::string>& cells) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line.push_back('\t');
    line += cells[i];
  }
  line.push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stdout);
}

int RunDump(const std::vector<std::string>& args) {
  if (args.size() != 1) return Usage("dump takes one FILE");
  const std::string& file = args[0];
  hifx::SilentShell quiet;
  try {
    const int16_t version = hifx::ReadFileVersion(quiet, file);
    hifx::clsHIF hif(quiet);
    if (version < 0 || (hif.SetVersion(version), hif.OpenHIF(file))) {
      std::fprintf(stderr, "hifx: dump: could not read HIF file %s\n", file.c_str());
      return kExitUsage;
    }
    std::string out;
    int record = 0;
    try {
      while (hif.ReadData()) {
        out += hifx::RecordToJson(hif);
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

int RunView(CliShell& shell, const std::vector<std::string>& args) {
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
    hifx::HifView view(shell);
    if (!view.Display(file)) {
      shell.MsgBox("Unable to display file", {}, hifx::MsgButtons::OK, hifx::MsgIcon::None);
      return kExitUsage;
    }
    const hifx::TextTable table = route ? view.Meters(*route) : view.Routes();
    PrintRow(table.columns);
    for (const auto& row : table.rows) PrintRow(row);
  } catch (const Failure& failure) {
    std::fflush(stdout);
    std::fprintf(stderr, "hifx: view: %s: %s\n", file.c_str(), failure.Description().c_str());
    return kExitUsage;
  }
  return kExitOk;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  GlobalOptions options;
  size_t i = 0;
  for (; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--site") {
      if (i + 1 >= args.size()) return Usage("--site needs a folder");
      options.site = args[++i];
    } else if (a == "--yes") {
      options.answer = true;
    } else if (a == "--no") {
      options.answer = false;
    } else if (a == "--set") {
      if (i + 1 >= args.size() || args[i + 1].find('=') == std::string::npos) {
        return Usage("--set needs FIELD=VALUE");
      }
      options.sets.push_back(args[++i]);
    } else if (a == "--help" || a == "-h") {
      std::fputs(kUsage, stdout);
      return kExitOk;
    } else {
      break;
    }
  }
  if (i >= args.size()) return Usage("no command");
  const std::string command = args[i];
  const std::vector<std::string> rest(args.begin() + static_cast<std::ptrdiff_t>(i) + 1, args.end());

  CliShell shell(options.answer, isatty(STDIN_FILENO) != 0, isatty(STDERR_FILENO) != 0);
  if (command == "dump") return RunDump(rest);
  if (command == "view") return RunView(shell, rest);
  return Usage("unknown command: " + command);
}
