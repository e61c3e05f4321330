// The commands of the hifx command line, one family a file. Each family
// defines its commands once: their words, options and help on the one
// parser, and what runs when one is given. A run raises its usage problems
// and failures; the command line says them and picks the exit code in one
// place.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/Exit.h"
#include "app/Session.h"
#include "base/Failure.h"

namespace CLI {
class App;
}

namespace hifx::cli {

using app::kExitNotComplete;
using app::kExitOk;
using app::kExitUsage;

// After the system's own words for a file a command could not read, which
// don't name it: "hifx: COMMAND: FILE: what is wrong" on standard error.
// Returns the exit: 66 when it is not there, else 65.
int SayUnreadable(const std::string& command, const std::string& file);
// After a run that failed (exitCode not 0): when the file it read is not
// there, can't be opened or (a handheld file) is damaged, that line too,
// and the exit that says so; else exitCode as it was.
int NameTheInput(const std::string& command, const std::string& file, bool handheld, int exitCode);
// The exit of a failure that a command's own frame has said.
int ExitCodeOf(const Failure& failure);
using Context = app::Session;

// What a command does once its line is parsed; returns the exit status.
using Runner = std::function<int(Context&)>;

class CommandTable {
 public:
  explicit CommandTable(CLI::App& root) : root_(root) {}

  // A command of the line with its help words; its options and positionals
  // are added to the definition returned.
  CLI::App& Add(const std::string& name, const std::string& help, Runner run);
  // The command the line gave, and its runner; nullptr when none.
  const std::pair<CLI::App*, Runner>* Given() const;

 private:
  CLI::App& root_;
  std::vector<std::pair<CLI::App*, Runner>> commands_;
};

// A command given wrongly in a way the parser can't see: exit 64.
Failure UsageError(const std::string& words);

// --json on a command that writes files: its summary as one JSON object on
// standard output, the log on standard error.
inline constexpr const char* kJsonHelp = "the run's summary as one JSON object on standard output, the log on standard error";
void AddJsonFlag(CLI::App& command, bool& json);

void AddHifCommands(CommandTable& table);         // dump, view
void AddSortCommand(CommandTable& table);         // sort
void AddMapCommands(CommandTable& table);         // map list|show|check
void AddSiteCommands(CommandTable& table);        // settings, site, dist, registry
void AddDeliveryCommands(CommandTable& table);    // users, install
void AddConversionCommands(CommandTable& table);  // route, reread, reading
void AddReportCommand(CommandTable& table);       // report
void AddCheckCommand(CommandTable& table);        // check
void AddStatsCommand(CommandTable& table);        // stats
void AddDiffCommand(CommandTable& table);         // diff
void AddPlotCommand(CommandTable& table);         // plot

// The whole command line: parses it, runs the command, says any failure;
// returns the exit status.
int Main(int argc, const char* const* argv);

}  // namespace hifx::cli
