// What a front end of hifx starts with: the site folder, its settings store,
// the desktop sync root, the clock, the person (the shell port) and the one
// exchange object of the run, with the handheld file it holds open. The
// command line and the desktop program start the same way through it.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "base/Clock.h"
#include "base/Shell.h"
#include "config/IRegistryStore.h"
#include "exchange/clsExchange.h"

namespace hifx::app {

// The site folder when none is named: $HIFX_SITE; else, on Windows, the
// program's own folder; elsewhere $XDG_DATA_HOME/hifexchange, else
// ~/.local/share/hifexchange.
std::filesystem::path DefaultSiteFolder();

class Session {
 public:
  // The clock is the system's, or SOURCE_DATE_EPOCH's moment when it is set.
  Session(IShell& shell, std::filesystem::path siteFolder);
  Session(IShell& shell, std::filesystem::path siteFolder, const IClock& clock);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  IShell& Shell() const { return shell_; }
  const IClock& Clock() const { return clock_; }
  // The site folder, made when missing: the site's passwords live in it, so
  // a new one is its owner's alone.
  const std::filesystem::path& SiteFolder() const;
  // The folder as named, whether or not it exists yet.
  const std::filesystem::path& SiteFolderName() const { return site_; }
  // The site's name, as a report's PDF gives its author: the site folder's
  // own name (the settings hold no name of the utility).
  std::string SiteName() const;
  // The desktop sync root: $HIFX_SYNC_ROOT, else the site folder's "sync".
  std::filesystem::path SyncRoot() const;

  // The site's settings store, opened on first use. Raises a failure of the
  // site's kind, naming the store, when it can't be opened.
  IRegistryStore& Store();
  ExchangeEnvironment Environment();
  // The run's exchange object, made on first use with the stored settings
  // loaded. It and the handheld file it holds live as long as the session.
  clsExchange& Exchange();

 private:
  IShell& shell_;
  std::filesystem::path site_;
  SystemClock systemClock_;
  const IClock& clock_;
  std::unique_ptr<IRegistryStore> store_;
  // Declared after the store: the exchange object goes first, saving the
  // site's lists into the store as it goes.
  std::unique_ptr<clsExchange> exchange_;
};

}  // namespace hifx::app
