// The whole command line defined and nothing run: the one definition that
// parses a line and from which its help, its manual pages and its shell
// completion are made.
#pragma once

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <vector>

#include "cli/Commands.h"

namespace hifx::cli {

struct GlobalOptions {
  std::optional<std::string> site;
  bool yes = false;
  bool no = false;
  bool noInput = false;
  std::vector<std::string> sets;
};

class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  CLI::App& Root() { return root_; }
  const CommandTable& Table() const { return table_; }
  const GlobalOptions& Global() const { return global_; }

 private:
  CLI::App root_;
  GlobalOptions global_;
  CommandTable table_;
};

// The usage line of a command, from its definition: options and positionals
// in the order defined, options in brackets unless required, options that
// exclude each other joined with "|", then the commands under it.
std::string UsageLine(const CLI::App& command, const std::string& path);
// "hifx map show": the words that reach a command from the program's name.
std::string PathOf(const CLI::App& command);

}  // namespace hifx::cli
