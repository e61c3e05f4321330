// Runs the hifx command line as a script would and captures what it says.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/TempDir.h"

namespace hifx::test {

struct RunResult {
  bool exited = false;  // false when it died of a signal
  int status = -1;
  std::string out;
  std::string err;
};

inline std::string ShellQuote(const std::string& s) {
  std::string q = "'";
  for (const char c : s) {
    if (c == '\'') q += "'\\''";
    else q += c;
  }
  return q + "'";
}

inline RunResult RunHifx(const std::vector<std::string>& args, const TempDir& dir,
                         const std::string& env = {}) {
  std::string command = env + " " + ShellQuote(HIFX_BINARY);
  for (const auto& a : args) command += " " + ShellQuote(a);
  const auto out = dir / "stdout.txt";
  const auto err = dir / "stderr.txt";
  command += " </dev/null >" + ShellQuote(out.string()) + " 2>" + ShellQuote(err.string());
  const int raw = std::system(command.c_str());
  RunResult result;
  result.exited = WIFEXITED(raw);
  result.status = result.exited ? WEXITSTATUS(raw) : -1;
  result.out = ReadBytes(out);
  result.err = ReadBytes(err);
  return result;
}

}  // namespace hifx::test
