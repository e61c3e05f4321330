#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace hifx::test {

// Points the temporary folder (TMPDIR, TMP on Windows) at a folder of the
// test's own for as long as it lives.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& folder) {
    if (const char* old = std::getenv(kVariable)) old_ = old;
    Set(folder.string());
  }
  ~TemporaryFolder() { Set(old_.value_or("")); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

 private:
#ifdef _WIN32
  static constexpr const char* kVariable = "TMP";
  static void Set(const std::string& value) { _putenv_s(kVariable, value.c_str()); }
#else
  static constexpr const char* kVariable = "TMPDIR";
  static void Set(const std::string& value) {
    if (value.empty()) ::unsetenv(kVariable);
    else ::setenv(kVariable, value.c_str(), 1);
  }
#endif

  std::optional<std::string> old_;
};

}  // namespace hifx::test
