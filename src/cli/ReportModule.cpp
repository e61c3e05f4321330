#include "cli/ReportModule.h"

#include <filesystem>

#include "cli/Commands.h"

#ifdef HIFX_HAVE_QT
#include <dlfcn.h>
#endif

namespace hifx::cli {

#ifndef HIFX_HAVE_QT

std::unique_ptr<IReportSurfaces> LoadReportSurfaces(const std::string& what) {
  throw UsageError(what + " need the Qt build of hifx");
}

#else

namespace {

namespace fs = std::filesystem;

// Beside the program in the build folder; else in the library folder of an
// install.
fs::path ModulePath() {
  std::error_code error;
  const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path beside = folder / kReportModuleName;
  if (!error && fs::exists(beside, error)) return beside;
  return (folder / HIFX_MODULE_FROM_BIN / kReportModuleName).lexically_normal();
}

// The system's reason, without the module's name that it starts with.
std::string LoadError(const fs::path& module) {
  const char* said = dlerror();
  std::string reason = said != nullptr ? said : "no entry " + std::string(kReportModuleEntry);
  const std::string named = module.string() + ": ";
  if (reason.compare(0, named.size(), named) == 0) reason.erase(0, named.size());
  return reason;
}

// The module's entry, or a failure naming the module the system could not
// load and why.
OpenReportSurfaces LoadEntry(const std::string& what) {
  const fs::path module = ModulePath();
  // Kept for the life of the process: the toolkit does not unload.
  void* handle = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* entry = handle != nullptr ? dlsym(handle, kReportModuleEntry) : nullptr;
  if (entry == nullptr) {
    throw Failure(FailureKind::Run, fail::kFileNotFound, what + " need the Qt part of hifx, {}", module,
                  LoadError(module));
  }
  return reinterpret_cast<OpenReportSurfaces>(entry);
}

}  // namespace

std::unique_ptr<IReportSurfaces> LoadReportSurfaces(const std::string& what) {
  std::unique_ptr<IReportSurfaces> surfaces(LoadEntry(what)());
  if (!surfaces) throw Failure(FailureKind::Run, what + " need Qt, which could not start");
  return surfaces;
}

#endif

}  // namespace hifx::cli
