// users and install: handheld delivery through the desktop sync folders.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include "base/Failure.h"
#include "cli/CliShell.h"
#include "cli/Commands.h"
#include "config/SiteRegistry.h"
#include "delivery/SyncFolders.h"
#include "delivery/clsPalmUsers.h"
#include "exchange/clsExchange.h"

namespace hifx::cli {

namespace {

int Users(Context& context) {
  const SyncFolders library(context.SyncRoot());
  const clsPalmUsers users = [&] {
    try {
      return clsPalmUsers(library);
    } catch (const Failure& failure) {
      throw Failure(FailureKind::BadSite, failure.Number(), failure.Description());
    }
  }();
  for (const PalmUser& user : users.Users()) {
    WriteOut(user.UserName);
    std::fputc('\n', stdout);
  }
  if (users.UserCount() == 0) {
    std::fprintf(stderr, "hifx: users: no handheld users in %s\n", library.Root().string().c_str());
  }
  return kExitOk;
}

struct InstallOptions {
  std::string file;
  std::optional<std::string> unit;
};

int Install(Context& context, const InstallOptions& options) {
  const std::string& file = options.file;
  const std::optional<std::string>& unit = options.unit;
  if (unit && !IsUserName(*unit)) throw UsageError("not a unit name: " + *unit);
  std::error_code ec;
  if (!std::filesystem::is_regular_file(file, ec)) {
    const bool folder = std::filesystem::is_directory(file, ec);
    throw Failure(FailureKind::MissingInput, fail::kFileNotFound, "cannot read", file,
                  folder ? "a folder, not a file" : "no such file");
  }
  const std::filesystem::path syncRoot = context.SyncRoot();
  // A fresh exchange object: the stored install settings are not the run's.
  clsExchange exchange(context.Environment());
  // The unit is the one named, or asked for; the file given is never deleted.
  exchange.AutoInstallUnit = unit.value_or("");
  exchange.AutoInstallPrompt = false;
  exchange.AutoInstallLeave = true;
  // A relative FILE is taken from the current folder, never from the site's.
  if (exchange.InstallPRC(std::filesystem::absolute(file))) return kExitOk;
  if (!exchange.AutoInstallUnit.empty()) return kExitNotComplete;  // the install step said why
  if (SyncFolders(syncRoot).UmGetUserCount() == 0) {
    throw Failure(FailureKind::Run, fail::kFileNotFound, "no handheld users in {}; name one with --unit", syncRoot);
  }
  throw Failure(FailureKind::Run, fail::kInvalidCall, "no unit chosen; {} was not queued", file);
}

}  // namespace

void AddDeliveryCommands(CommandTable& table) {
  table.Add("users", "the handheld users of the desktop sync folders", Users);
  auto options = std::make_shared<InstallOptions>();
  CLI::App& install = table.Add("install", "queue FILE for a handheld unit's next sync",
                                [options](Context& context) { return Install(context, *options); });
  install.add_option("file", options->file, "the file to queue")->type_name("FILE")->required();
  install.add_option("--unit", options->unit, "the handheld unit; asked for when not named")->type_name("NAME");
}

}  // namespace hifx::cli
