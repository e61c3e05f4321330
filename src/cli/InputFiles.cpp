// The line that names a file a command could not read, after the system's
// own words for it, and the exit that goes with what is wrong.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "base/Text.h"
#include "cli/Commands.h"
#include "handheld/PalmFileCheck.h"

namespace hifx::cli {
namespace {

struct InputProblem {
  std::string why;  // empty: nothing found wrong
  int exitCode = kExitOk;
};

// A handheld file is also looked through for damage; any other file only
// has to be there and open for reading.
InputProblem ProblemOf(const std::string& file, bool handheld) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (!std::filesystem::exists(status)) return {"no such file", app::kExitNoInput};
  if (std::filesystem::is_directory(status)) {
    return {handheld ? "a folder, not a handheld file" : "a folder, not a file", app::kExitBadInput};
  }
  std::FILE* opened = std::fopen(file.c_str(), "rb");
  if (opened == nullptr) return {std::string("can't be opened: ") + std::strerror(errno), app::kExitNoInput};
  std::fclose(opened);
  if (!handheld) return {};
  try {
    const std::string damage = PalmFileDamage(file);
    if (damage.empty()) return {};
    return {"damaged handheld file: " + damage, app::kExitBadInput};
  } catch (const Failure& failure) {
    return {failure.Description(), app::kExitBadInput};
  }
}

void Say(const std::string& command, const std::string& file, const std::string& why) {
  std::fflush(stdout);
  std::fprintf(stderr, "hifx: %s: %s: %s\n", command.c_str(), file.c_str(), why.c_str());
}

}  // namespace

int SayUnreadable(const std::string& command, const std::string& file) {
  InputProblem problem = ProblemOf(file, true);
  if (problem.why.empty()) problem = {"not a handheld file of a version this program reads", app::kExitBadInput};
  Say(command, file, problem.why);
  return problem.exitCode;
}

int NameTheInput(const std::string& command, const std::string& file, bool handheld, int exitCode) {
  const std::string name(Trim(file));
  if (exitCode == kExitOk || name.empty()) return exitCode;
  const InputProblem problem = ProblemOf(name, handheld);
  if (problem.why.empty()) return exitCode;
  Say(command, name, problem.why);
  return problem.exitCode;
}

}  // namespace hifx::cli
