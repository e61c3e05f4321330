#include "app/Session.h"

#include <cstdlib>
#include <system_error>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#endif

#include "config/SiteRegistry.h"

namespace hifx::app {
namespace {

std::filesystem::path FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? std::filesystem::path(value) : std::filesystem::path();
}

}  // namespace

std::filesystem::path DefaultSiteFolder() {
  if (auto site = FromEnvironment("HIFX_SITE"); !site.empty()) return site;
#ifdef _WIN32
  // The program's own folder, where the maps have always lain beside it.
  char self[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(nullptr, self, sizeof self);
  if (length > 0 && length < sizeof self) return std::filesystem::path(self).parent_path();
  return ".";
#else
  if (auto data = FromEnvironment("XDG_DATA_HOME"); !data.empty()) return data / "hifexchange";
  auto home = FromEnvironment("HOME");
  return (home.empty() ? std::filesystem::path(".") : home) / ".local" / "share" / "hifexchange";
#endif
}

Session::Session(IShell& shell, std::filesystem::path siteFolder)
    : shell_(shell), site_(std::move(siteFolder)), clock_(systemClock_) {}

Session::Session(IShell& shell, std::filesystem::path siteFolder, const IClock& clock)
    : shell_(shell), site_(std::move(siteFolder)), clock_(clock) {}

const std::filesystem::path& Session::SiteFolder() const {
  std::error_code ec;
  if (!std::filesystem::exists(site_, ec) && std::filesystem::create_directories(site_, ec)) {
    std::filesystem::permissions(site_, std::filesystem::perms::owner_all, std::filesystem::perm_options::replace,
                                 ec);
  }
  return site_;
}

std::string Session::SiteName() const {
  std::error_code ec;
  std::filesystem::path folder = std::filesystem::absolute(site_, ec).lexically_normal();
  if (!folder.has_filename()) folder = folder.parent_path();  // written with a separator at its end
  return folder.filename().string();
}

std::filesystem::path Session::SyncRoot() const {
  if (auto root = FromEnvironment("HIFX_SYNC_ROOT"); !root.empty()) return root;
  return SiteFolder() / "sync";
}

IRegistryStore& Session::Store() {
  if (!store_) store_ = OpenSiteRegistry(SiteFolder());
  return *store_;
}

ExchangeEnvironment Session::Environment() { return {Store(), shell_, clock_, SiteFolder(), SyncRoot()}; }

clsExchange& Session::Exchange() {
  if (!exchange_) {
    exchange_ = std::make_unique<clsExchange>(Environment());
    exchange_->LoadSettings();
  }
  return *exchange_;
}

}  // namespace hifx::app
