// The registry store of a site: the machine registry on Windows, the site
// folder's registry.db elsewhere.
#pragma once

#include <filesystem>
#include <memory>

#include "config/IRegistryStore.h"

namespace hifx {

// Raises a failure naming the file when the store can't be opened.
std::unique_ptr<IRegistryStore> OpenSiteRegistry(const std::filesystem::path& siteFolder);

}  // namespace hifx
