#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace hifx::test {

// Sets an environment variable for as long as it lives, an empty value
// unsetting it, and puts back what was there.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const std::string& value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    Set(value);
  }
  ~ScopedVariable() { Set(old_.value_or("")); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  void Set(const std::string& value) const {
#ifdef _WIN32
    _putenv_s(name_, value.c_str());
#else
    if (value.empty()) ::unsetenv(name_);
    else ::setenv(name_, value.c_str(), 1);
#endif
  }

  const char* name_;
  std::optional<std::string> old_;
};

// Points the temporary folder (TMPDIR, TMP on Windows) at a folder of the
// test's own for as long as it lives.
class TemporaryFolder : public ScopedVariable {
 public:
#ifdef _WIN32
  explicit TemporaryFolder(const std::filesystem::path& folder) : ScopedVariable("TMP", folder.string()) {}
#else
  explicit TemporaryFolder(const std::filesystem::path& folder) : ScopedVariable("TMPDIR", folder.string()) {}
#endif
};

}  // namespace hifx::test
