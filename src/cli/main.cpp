// hifx: the command line of the exchange engine. Scripts rely on its words,
// its output and its exit codes; keep them.
#ifdef _WIN32
#include <windows.h>
#endif

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "cli/Commands.h"

namespace hifx::cli {
namespace {

constexpr const char* kUsage =
    "usage: hifx [--site DIR] [--yes | --no] [--set FIELD=VALUE]... COMMAND [ARGS]\n"
    "commands:\n"
    "  dump FILE                 every record of a HIF as one JSON object per line\n"
    "  view FILE [--route N]     the routes, or the meters of route N, tab-separated\n"
    "  sort FILE                 the meters of each route put in Sequence order\n"
    "  map list|show|check NAME  the site folder's map files; show or validate map NAME\n"
    "  settings [show|get NAME|set NAME VALUE]   the exchange settings\n"
    "  site show                 every site list, one section each\n"
    "  dist load FILE | dist write FILE          distribution files\n"
    "  registry dump             the settings tree as a distribution file carries it\n"
    "  users                     the handheld users of the desktop sync folders\n"
    "  install FILE [--unit NAME]  queue FILE for a handheld unit's next sync\n"
    "  route [--source F] [--dest F] [--map NAME] [--format PDB|PRC|VFS]   route conversion\n"
    "  reread [--source F] [--dest F] [--map NAME] [--format PDB|PRC|VFS]  re-read conversion\n"
    "  reading [--source F] [--dest F] [--map NAME] [--orphans F] [--orphan-map NAME]\n"
    "          [--orphan-replace | --orphan-append] [--reread F] [--no-orphans] [--no-reread]\n"
    "  report --type reading|exception|missed|orphan[,...] (--pdf OUT | --printer NAME) [--title T] FILE\n"
    "                            the meter reports of a reading HIF; several types: one file each\n";

std::filesystem::path DefaultSite() {
  if (const char* site = std::getenv("HIFX_SITE"); site != nullptr && *site != '\0') return site;
#ifdef _WIN32
  // The program's own folder, where the maps have always lain beside it.
  char self[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(nullptr, self, sizeof self);
  if (length > 0 && length < sizeof self) return std::filesystem::path(self).parent_path();
  return ".";
#else
  if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data != '\0') {
    return std::filesystem::path(data) / "hifexchange";
  }
  const char* home = std::getenv("HOME");
  return std::filesystem::path(home != nullptr ? home : ".") / ".local" / "share" / "hifexchange";
#endif
}

using Command = std::function<int(Context&, const Args&)>;

const std::map<std::string, Command>& Commands() {
  static const std::map<std::string, Command> commands = {
      {"dump", RunDump},
      {"view", RunView},
      {"sort", RunSort},
      {"map", RunMap},
      {"settings", RunSettings},
      {"site", RunSite},
      {"dist", RunDist},
      {"registry", RunRegistry},
      {"route", RunRoute},
      {"reread", RunReRead},
      {"reading", RunReading},
      {"users", RunUsers},
      {"install", RunInstall},
      {"report", RunReport},
  };
  return commands;
}

}  // namespace

int Usage(const std::string& problem) {
  if (!problem.empty()) std::fprintf(stderr, "hifx: %s\n", problem.c_str());
  std::fputs(kUsage, stderr);
  return kExitUsage;
}

const std::filesystem::path& Context::SiteFolder() const {
  std::error_code ec;
  // The site's passwords live in it: a new site folder is its owner's alone.
  if (!std::filesystem::exists(site, ec) && std::filesystem::create_directories(site, ec)) {
    std::filesystem::permissions(site, std::filesystem::perms::owner_all, std::filesystem::perm_options::replace,
                                 ec);
  }
  return site;
}

std::filesystem::path Context::SyncRoot() const {
  if (const char* root = std::getenv("HIFX_SYNC_ROOT"); root != nullptr && *root != '\0') return root;
  return SiteFolder() / "sync";
}

}  // namespace hifx::cli

int main(int argc, char** argv) {
  using namespace hifx::cli;
  hifx::UseBinaryStandardStreams();
  const Args args(argv + 1, argv + argc);
  std::optional<std::string> site;
  std::optional<bool> answer;
  std::vector<std::string> sets;
  size_t i = 0;
  for (; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--site") {
      if (i + 1 >= args.size() || args[i + 1].empty()) return Usage("--site needs a folder");
      site = args[++i];
    } else if (a == "--yes") {
      answer = true;
    } else if (a == "--no") {
      answer = false;
    } else if (a == "--set") {
      if (i + 1 >= args.size() || args[i + 1].find('=') == std::string::npos) {
        return Usage("--set needs FIELD=VALUE");
      }
      sets.push_back(args[++i]);
    } else if (a == "--help" || a == "-h") {
      std::fputs(kUsage, stdout);
      return kExitOk;
    } else {
      break;
    }
  }
  if (i >= args.size()) return Usage("no command");
  const auto command = Commands().find(args[i]);
  if (command == Commands().end()) return Usage("unknown command: " + args[i]);

  hifx::CliShell shell(answer, hifx::IsTerminal(0), hifx::IsTerminal(2), sets);
  const hifx::SystemClock clock;
  Context context{shell, site ? std::filesystem::path(*site) : DefaultSite(), sets, clock};
  // A failure no command frame took, running out of memory above all: the
  // run's files are left as their writers leave them on the way out, and
  // the run ends with a word and a non-zero exit.
  try {
    return command->second(context, Args(args.begin() + static_cast<std::ptrdiff_t>(i) + 1, args.end()));
  } catch (const std::bad_alloc&) {
    // Said without asking for memory, of which there is none to be had.
    std::fflush(stdout);
    std::fputs("hifx: not enough memory to go on: the run needs more than the system gives it\n", stderr);
    return kExitNotComplete;
  } catch (const std::exception& failure) {
    std::fflush(stdout);
    std::fprintf(stderr, "hifx: %s: %s\n", args[i].c_str(), hifx::Describe(failure).c_str());
    return kExitNotComplete;
  }
}
