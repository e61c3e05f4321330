// The command line as a whole: the global options, one parser for every
// command, usage lines made from the same definitions, and the one place
// where a failure becomes words on standard error and an exit code.
#include "cli/CommandLine.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "cli/CliShell.h"
#include "cli/Version.h"

namespace hifx::cli {
namespace {

constexpr const char* kCommandArgs = "COMMAND [ARGS]";
// Options of the whole line that its usage line leaves out.
constexpr const char* kOtherOptions = "Other options";

// An option as the usage line shows it: "--map NAME", "--yes".
std::string OptionUsage(const CLI::Option& option) {
  std::string words = option.get_name(false, true);
  if (option.get_positional()) return option.get_type_name();
  if (option.get_type_size_max() > 0 && !option.get_type_name().empty()) words += " " + option.get_type_name();
  return words;
}

}  // namespace

std::string UsageLine(const CLI::App& command, const std::string& path) {
  std::string line = path;
  std::vector<const CLI::Option*> shown;
  for (const CLI::Option* option : command.get_options()) {
    // Help and the options of a group of their own are left to the help text.
    if (option->get_name() == "--help" || option->get_group() != "Options") continue;
    bool joined = false;
    for (const CLI::Option* other : option->get_excludes()) {
      for (const CLI::Option* done : shown) joined = joined || done == other;
    }
    shown.push_back(option);
    const std::string words = OptionUsage(*option);
    if (joined) {
      line.insert(line.size() - 1, " | " + words);
    } else {
      line += option->get_required() ? " " + words : " [" + words + "]";
    }
    if (option->get_expected_max() > 1) line += "...";
  }
  if (command.get_parent() == nullptr) return line + " " + kCommandArgs;
  std::string choices;
  for (const CLI::App* sub : command.get_subcommands([](const CLI::App*) { return true; })) {
    choices += (choices.empty() ? "" : " | ") + UsageLine(*sub, sub->get_name());
  }
  if (!choices.empty()) line += command.get_require_subcommand_min() > 0 ? " " + choices : " [" + choices + "]";
  return line;
}

namespace {

class UsageFormatter : public CLI::Formatter {
 public:
  UsageFormatter() { label("Subcommands", "Commands"); }
  std::string make_usage(const CLI::App* app, std::string name) const override {
    return "usage: " + UsageLine(*app, name) + "\n";
  }
  // An option's value as the usage line shows it, and nothing more: the
  // usage line says which exclude each other.
  std::string make_option_opts(const CLI::Option* option) const override {
    if (option->get_type_size_max() == 0 || option->get_type_name().empty()) return {};
    return " " + option->get_type_name() + (option->get_expected_max() > 1 ? " ..." : "");
  }
};

// The deepest command the line reached.
const CLI::App& Deepest(const CLI::App& root) {
  const CLI::App* at = &root;
  while (!at->get_subcommands().empty()) at = at->get_subcommands().front();
  return *at;
}

}  // namespace

std::string PathOf(const CLI::App& command) {
  std::string path = command.get_name();
  for (const CLI::App* up = command.get_parent(); up != nullptr; up = up->get_parent()) {
    path = up->get_name() + " " + path;
  }
  return path;
}

namespace {

// What a command takes, said from its positionals: "sort takes one FILE".
std::string TakesWords(const CLI::App& command) {
  std::string path = PathOf(command);
  path = path.substr(path.find(' ') + 1);
  std::vector<std::string> names;
  for (const CLI::Option* p : command.get_options([](const CLI::Option* o) { return o->get_positional(); })) {
    names.push_back(p->get_type_name());
  }
  if (names.empty()) return path + " takes no arguments";
  if (names.size() == 1) return path + " takes one " + names[0];
  std::string all;
  for (const std::string& n : names) all += (all.empty() ? "" : " ") + n;
  return path + " takes " + all;
}

// Whether the parser's words are about an option of the whole line.
bool AboutGlobalOption(const CLI::App& root, const std::string& words) {
  for (const CLI::Option* option : root.get_options()) {
    const std::string name = option->get_name();
    if (words.rfind(name + ":", 0) == 0 || words.rfind(name + " ", 0) == 0) return true;
  }
  return false;
}

// A problem the parser found, in the words of this command line.
std::string ProblemOf(const CLI::App& root, const CLI::App& command, const CLI::ParseError& error) {
  if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr) {
    // "--site: needs a folder" said as "--site needs a folder".
    std::string words = error.what();
    if (const size_t colon = words.find(": "); colon != std::string::npos && words.rfind("--", 0) == 0) {
      words.erase(colon, 1);
    }
    return words;
  }
  if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) {
    // "Could not convert: --route = one"
    const std::string words = error.what();
    const size_t name = words.find(": "), equals = words.find(" = ");
    if (name != std::string::npos && equals != std::string::npos && equals > name) {
      const std::string option = words.substr(name + 2, equals - name - 2);
      const CLI::Option* known = command.get_option_no_throw(option);
      const std::string kind = known != nullptr ? known->get_type_name() : "a value";
      return option + " takes " + kind + ", not \"" + words.substr(equals + 3) + "\"";
    }
  }
  if (const auto* extras = dynamic_cast<const CLI::ExtrasError*>(&error)) {
    const std::string what = extras->what();
    const std::string first = what.substr(what.find(": ") + 2);
    if (&command == &root) return first.rfind('-', 0) == 0 ? "unknown option: " + first : "unknown command: " + first;
    if (first.rfind('-', 0) == 0) return "unknown option: " + first;
    return TakesWords(command);
  }
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    if (&command == &root) return root.remaining().empty() ? "no command" : "unknown command: " + root.remaining().front();
    for (const CLI::Option* p : command.get_options([](const CLI::Option* o) { return o->get_positional(); })) {
      if (p->count() == 0) return TakesWords(command);
    }
  }
  return error.what();
}

// "hifx: PROBLEM" and the usage of the command the line reached; 2.
int SayUsage(const CLI::App& root, const CLI::App& command, const std::string& problem) {
  std::fprintf(stderr, "hifx: %s\n", problem.c_str());
  if (&command == &root) {
    // The line's own help, not that of a command it may have reached.
    std::fputs(root.get_formatter()->make_help(&root, root.get_name(), CLI::AppFormatMode::Normal).c_str(), stderr);
  } else {
    std::fprintf(stderr, "usage: %s\nSee: hifx %s --help\n", UsageLine(command, PathOf(command)).c_str(),
                 PathOf(command).substr(PathOf(command).find(' ') + 1).c_str());
  }
  return kExitUsage;
}

void AddGlobalOptions(CLI::App& root, GlobalOptions& global) {
  root.add_option("--site", global.site, "the site folder: map files and the settings")
      ->type_name("DIR")
      ->check([](const std::string& v) { return v.empty() ? std::string("needs a folder") : std::string(); });
  CLI::Option* yes = root.add_flag("--yes", global.yes, "answer every yes/no question of the run with Yes");
  CLI::Option* no = root.add_flag("--no", global.no, "answer every yes/no question of the run with No");
  yes->excludes(no);
  no->excludes(yes);
  root.add_flag("--no-input", global.noInput,
                "never ask: every yes/no question answered No and every prompt cancelled, as with no terminal")
      ->group(kOtherOptions);
  root.add_option("--set", global.sets, "the answer to a run-time prompt")
      ->type_name("FIELD=VALUE")
      ->check([](const std::string& v) {
        return v.find('=') == std::string::npos ? std::string("needs FIELD=VALUE") : std::string();
      });
}

// Runs the command; a failure no command frame took is said here.
int Run(const CLI::App& command, const Runner& run, Context& session) {
  try {
    const int status = run(session);
    CheckStandardOutput();
    return status;
  } catch (const std::bad_alloc&) {
    // Said without asking for memory, of which there is none to be had.
    std::fflush(stdout);
    std::fputs("hifx: not enough memory to go on: the run needs more than the system gives it\n", stderr);
    return kExitNotComplete;
  } catch (const std::exception& failure) {
    std::fflush(stdout);
    const app::FailureReport report = app::ReportOf(failure);
    std::fprintf(stderr, "hifx: %s: %s\n", command.get_name().c_str(), report.words.c_str());
    return report.exitCode;
  }
}

// The exit of a run that only printed, a failure to print said as any is.
int Printed() {
  try {
    CheckStandardOutput();
    return kExitOk;
  } catch (const Failure& failure) {
    std::fprintf(stderr, "hifx: %s\n", failure.what());
    return app::ReportOf(failure).exitCode;
  }
}

}  // namespace

CLI::App& CommandTable::Add(const std::string& name, const std::string& help, Runner run) {
  CLI::App* command = root_.add_subcommand(name, help);
  commands_.emplace_back(command, std::move(run));
  return *command;
}

const std::pair<CLI::App*, Runner>* CommandTable::Given() const {
  for (const auto& command : commands_) {
    if (command.first->parsed()) return &command;
  }
  return nullptr;
}

Failure UsageError(const std::string& words) { return Failure(FailureKind::Usage, words); }

void AddJsonFlag(CLI::App& command, bool& json) { command.add_flag("--json", json, kJsonHelp)->group(kOtherOptions); }

int ExitCodeOf(const Failure& failure) { return app::ExitCodeOf(failure.Kind()); }

namespace {

// help [COMMAND]: the help of the line, or of one of its commands.
void AddHelpCommand(CommandTable& table, CLI::App& root) {
  auto topic = std::make_shared<std::vector<std::string>>();
  CLI::App& help = table.Add("help", "the help of the command line, or of COMMAND", [&root, topic](Context&) {
    const CLI::App* command = &root;
    for (const std::string& word : *topic) {
      const auto subs = command->get_subcommands([&word](const CLI::App* sub) { return sub->get_name() == word; });
      if (subs.empty()) throw UsageError("unknown command: " + word);
      command = subs.front();
    }
    const std::string text = command->get_formatter()->make_help(command, PathOf(*command), CLI::AppFormatMode::Normal);
    std::fputs(text.c_str(), stdout);
    return kExitOk;
  });
  help.add_option("command", *topic, "a command, and a command under it")->type_name("COMMAND");
}

}  // namespace

CommandLine::CommandLine()
    : root_("hifx: route files to handheld files and readings back, by the site's maps and settings", "hifx"),
      table_(root_) {
  root_.formatter(std::make_shared<UsageFormatter>());
  // A value such as /data/r.txt is a file name on every platform, never an
  // option of the Windows style; set before the commands, which inherit it.
  root_.allow_windows_style_options(false);
  root_.require_subcommand(1);
  root_.set_version_flag("--version", VersionText(), "the program's version and build, and the files it writes")
      ->group(kOtherOptions);
  AddGlobalOptions(root_, global_);
  AddHifCommands(table_);
  AddSortCommand(table_);
  AddMapCommands(table_);
  AddSiteCommands(table_);
  AddDeliveryCommands(table_);
  AddConversionCommands(table_);
  AddReportCommand(table_);
  AddCheckCommand(table_);
  AddStatsCommand(table_);
  AddPlotCommand(table_);
  AddDiffCommand(table_);
  AddHelpCommand(table_, root_);
}

int Main(int argc, const char* const* argv) {
  UseBinaryStandardStreams();
  CommandLine line;
  CLI::App& root = line.Root();
  try {
    root.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    std::fputs(root.help().c_str(), stdout);
    return Printed();
  } catch (const CLI::CallForVersion& version) {
    std::printf("%s\n", version.what());
    return Printed();
  } catch (const CLI::ParseError& error) {
    const CLI::App& command = AboutGlobalOption(root, error.what()) ? root : Deepest(root);
    return SayUsage(root, command, ProblemOf(root, command, error));
  }
  const auto* given = line.Table().Given();
  if (given == nullptr) return SayUsage(root, root, "no command");

  const GlobalOptions& global = line.Global();
  std::optional<bool> answer;
  if (global.yes || global.no) answer = global.yes;
  CliShell shell(answer, IsTerminal(0) && !global.noInput, IsTerminal(2), global.sets);
  // A script that asked for JSON reads standard output as one object.
  const CLI::Option* json = given->first->get_option_no_throw("--json");
  if (json != nullptr && json->count() > 0) shell.LogToStandardError();
  Context session(shell, global.site ? std::filesystem::path(*global.site) : app::DefaultSiteFolder());
  return Run(*given->first, given->second, session);
}

}  // namespace hifx::cli
