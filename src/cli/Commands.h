// The commands of the hifx command line, one family a file. Each takes the
// run's context and its own arguments, and returns the exit status.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/Clock.h"
#include "cli/CliShell.h"
#include "exchange/clsExchange.h"

namespace hifx::cli {

inline constexpr int kExitOk = 0;
inline constexpr int kExitNotComplete = 1;
inline constexpr int kExitUsage = 2;

struct Context {
  CliShell& shell;
  // The site folder: --site, else $HIFX_SITE, else $XDG_DATA_HOME/hifexchange,
  // else ~/.local/share/hifexchange. Created by SiteFolder() on first use.
  std::filesystem::path site;
  std::vector<std::string> sets;  // --set FIELD=VALUE answers, in order
  const IClock& clock;

  // The site folder, created when missing.
  const std::filesystem::path& SiteFolder() const;
  // The desktop sync root: $HIFX_SYNC_ROOT, else the site folder's "sync".
  std::filesystem::path SyncRoot() const;
};

using Args = std::vector<std::string>;

// Writes "hifx: PROBLEM" and the usage to standard error; returns 2.
int Usage(const std::string& problem);

// The site's settings store; nullptr, said on standard error, when it can't
// be opened.
std::unique_ptr<IRegistryStore> OpenStore(Context& context);
// What a clsExchange of this run works with.
ExchangeEnvironment Environment(Context& context, IRegistryStore& store);

int RunDump(Context& context, const Args& args);
int RunView(Context& context, const Args& args);
int RunSort(Context& context, const Args& args);
int RunMap(Context& context, const Args& args);
int RunSettings(Context& context, const Args& args);
int RunSite(Context& context, const Args& args);
int RunDist(Context& context, const Args& args);
int RunRegistry(Context& context, const Args& args);
int RunRoute(Context& context, const Args& args);
int RunReRead(Context& context, const Args& args);
int RunReading(Context& context, const Args& args);
int RunUsers(Context& context, const Args& args);
int RunInstall(Context& context, const Args& args);
int RunReport(Context& context, const Args& args);

}  // namespace hifx::cli
