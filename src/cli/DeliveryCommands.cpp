// users and install: handheld delivery through the desktop sync folders.
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include "base/Failure.h"
#include "cli/Commands.h"
#include "config/SiteRegistry.h"
#include "delivery/SyncFolders.h"
#include "delivery/clsPalmUsers.h"
#include "exchange/clsExchange.h"

namespace hifx::cli {

int RunUsers(Context& context, const Args& args) {
  if (!args.empty()) return Usage("users takes no arguments");
  const SyncFolders library(context.SyncRoot());
  try {
    const clsPalmUsers users(library);
    for (const PalmUser& user : users.Users()) {
      std::fwrite(user.UserName.data(), 1, user.UserName.size(), stdout);
      std::fputc('\n', stdout);
    }
    if (users.UserCount() == 0) {
      std::fprintf(stderr, "hifx: users: no handheld users in %s\n", library.Root().string().c_str());
    }
  } catch (const Failure& failure) {
    std::fprintf(stderr, "hifx: users: %s\n", failure.Description().c_str());
    return kExitUsage;
  }
  return kExitOk;
}

int RunInstall(Context& context, const Args& args) {
  std::optional<std::string> file;
  std::optional<std::string> unit;
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--unit") {
      if (i + 1 >= args.size()) return Usage("install: --unit needs a NAME");
      unit = args[++i];
    } else if (!file) {
      file = args[i];
    } else {
      return Usage("install takes one FILE");
    }
  }
  if (!file) return Usage("install takes one FILE");
  if (unit && !IsUserName(*unit)) return Usage("install: not a unit name: " + *unit);
  std::error_code ec;
  if (!std::filesystem::is_regular_file(*file, ec)) {
    std::fprintf(stderr, "hifx: install: cannot read %s\n", file->c_str());
    return kExitUsage;
  }

  const std::unique_ptr<IRegistryStore> store = OpenStore(context);
  if (!store) return kExitUsage;
  const std::filesystem::path syncRoot = context.SyncRoot();
  clsExchange exchange(Environment(context, *store));
  // The unit is the one named, or asked for; the file given is never deleted.
  exchange.AutoInstallUnit = unit.value_or("");
  exchange.AutoInstallPrompt = false;
  exchange.AutoInstallLeave = true;
  // A relative FILE is taken from the current folder, never from the site's.
  if (exchange.InstallPRC(std::filesystem::absolute(*file))) return kExitOk;
  if (exchange.AutoInstallUnit.empty()) {
    if (SyncFolders(syncRoot).UmGetUserCount() == 0) {
      std::fprintf(stderr, "hifx: install: no handheld users in %s; name one with --unit\n",
                   syncRoot.string().c_str());
    } else {
      std::fprintf(stderr, "hifx: install: no unit chosen; %s was not queued\n", file->c_str());
    }
  }
  return kExitNotComplete;
}

}  // namespace hifx::cli
