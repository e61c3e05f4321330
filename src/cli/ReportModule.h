// The report surfaces of the Qt build, loaded by the commands that draw, so
// that no other command waits for the toolkit's libraries to load.
#pragma once

#include <memory>
#include <string>

#include "reports/ReportSurfaces.h"

namespace hifx::cli {

// The surfaces, with the toolkit started. `what` names what needs them in
// the failure ("PDF and printed reports"): a build without Qt says so, and a
// module that can't be loaded is named with the system's reason.
std::unique_ptr<IReportSurfaces> LoadReportSurfaces(const std::string& what);

}  // namespace hifx::cli
