#include "config/SiteRegistry.h"

#ifdef _WIN32
#include "config/WinRegistryStore.h"
#else
#include "config/SqliteRegistryStore.h"
#endif

namespace hifx {

std::unique_ptr<IRegistryStore> OpenSiteRegistry(const std::filesystem::path& siteFolder) {
#ifdef _WIN32
  (void)siteFolder;
  return std::make_unique<WinRegistryStore>();
#else
  return std::make_unique<SqliteRegistryStore>(siteFolder / "registry.db");
#endif
}

}  // namespace hifx
