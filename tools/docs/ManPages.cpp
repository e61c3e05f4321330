#include "tools/docs/ManPages.h"

#include <cctype>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "app/Exit.h"
#include "cli/CommandLine.h"
#include "tools/docs/Roff.h"

namespace hifx::docs {
namespace {

// The words about the whole line that no definition of an option holds.
constexpr const char* kDescription[] = {
    "Every line of the run log goes to standard output, one line each, as the engine logs it. "
    "Message boxes go to standard error as TITLE: TEXT; a progress bar goes to standard error "
    "only when it is a terminal.",
    "A run never hangs a script: with no terminal and no answer given, a yes/no question is "
    "answered No and a prompt counts as cancelled, and the log says what happened.",
    "The options of the whole line come before the command. Each command has a page of its own, "
    "hifx-COMMAND(1), and prints its usage and options with --help."};

struct Entry {
  const char* name;
  const char* words;
};

constexpr Entry kEnvironment[] = {
    {"HIFX_SITE", "the site folder when --site is not given."},
    {"XDG_DATA_HOME", "without --site and HIFX_SITE, the site folder is $XDG_DATA_HOME/hifexchange, "
                      "else ~/.local/share/hifexchange."},
    {"HIFX_SYNC_ROOT", "the desktop sync root through which files reach the handheld units; "
                       "without it, the sync folder of the site folder."},
    {"SOURCE_DATE_EPOCH", "when set, \"now\" (the dates and times written into HIF headers and log "
                          "lines) is that many seconds after 1970-01-01 00:00 UTC."},
    {"TZ", "the time zone in which dates and times are shown and written."},
};

constexpr Entry kFiles[] = {
    {"~/.local/share/hifexchange/", "the site folder by default: its map files, its settings and its sync "
                                    "folder; made, readable by its owner only, on first use."},
    {"SITE/registry.db", "the site's settings and site lists, which stand for the machine registry; "
                         "readable by its owner only, since it holds the site's login passwords."},
    {"SITE/*.hcm, SITE/*.hrm, SITE/*.hom", "the route and re-read maps, the reading maps and the orphan "
                                           "maps, named by their file names."},
    {"SITE/sync/UNIT/Install/", "the queue of handheld unit UNIT for its next sync, when HIFX_SYNC_ROOT "
                                "is not set."},
};

class Page {
 public:
  Page(const std::string& name, const std::string& version) {
    text_ = ".TH " + RoffText(Upper(name)) + " 1 \"\" \"hifx " + version + "\" \"User Commands\"\n";
    // Options and file names are neither hyphenated nor stretched.
    text_ += ".nh\n.ad l\n";
  }
  void Section(const std::string& title) { text_ += ".SH " + title + "\n"; }
  void Subsection(const std::string& title) { text_ += ".SS " + RoffText(title) + "\n"; }
  void Paragraph(const std::string& words) { text_ += ".PP\n" + RoffText(words) + "\n"; }
  // A tagged paragraph: the tag on its own line (roff already), the words under it.
  void Item(const std::string& tag, const std::string& words) {
    text_ += ".TP\n" + tag + "\n" + RoffText(words) + "\n";
  }
  void Raw(const std::string& roff) { text_ += roff + "\n"; }
  const std::string& Text() const { return text_; }

 private:
  static std::string Upper(std::string words) {
    for (char& c : words) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return words;
  }
  std::string text_;
};

bool Listed(const CLI::Option& option) { return option.get_group() != "" && !option.get_positional(); }

// "-h, --help" or "--map NAME", as an option's tag.
std::string OptionTag(const CLI::Option& option) {
  std::string tag;
  for (const std::string& s : option.get_snames()) tag += (tag.empty() ? "" : ", ") + RoffBold("-" + s);
  for (const std::string& l : option.get_lnames()) tag += (tag.empty() ? "" : ", ") + RoffBold("--" + l);
  if (option.get_type_size_max() > 0 && !option.get_type_name().empty()) tag += " " + RoffItalic(option.get_type_name());
  if (option.get_expected_max() > 1) tag += " ...";
  return tag;
}

std::string OptionWords(const CLI::Option& option) {
  std::string words = option.get_description();
  for (const CLI::Option* other : option.get_excludes()) words += "; not with " + other->get_name();
  if (option.get_expected_max() > 1) words += "; may be given more than once";
  return words;
}

// The options of a command, its --help among them unless a page has said it once.
void AddOptions(Page& page, const CLI::App& command, const std::string& title, bool withHelp = true) {
  const CLI::Option* help = withHelp ? nullptr : command.get_help_ptr();
  const auto options = command.get_options([help](const CLI::Option* o) { return Listed(*o) && o != help; });
  if (options.empty()) return;
  page.Raw(title);
  for (const CLI::Option* option : options) page.Item(OptionTag(*option), OptionWords(*option));
}

void AddArguments(Page& page, const CLI::App& command, const std::string& title) {
  const auto positionals = command.get_options([](const CLI::Option* o) { return o->get_positional(); });
  if (positionals.empty()) return;
  page.Raw(title);
  for (const CLI::Option* p : positionals) page.Item(RoffItalic(p->get_type_name()), p->get_description());
}

std::vector<const CLI::App*> Commands(const CLI::App& command) {
  return command.get_subcommands([](const CLI::App*) { return true; });
}

// The usage line, the words that name the command in bold.
std::string Usage(const CLI::App& command, const std::string& path) {
  return RoffBold(path) + RoffText(cli::UsageLine(command, path).substr(path.size()));
}

std::string Synopsis(const CLI::App& command) { return Usage(command, cli::PathOf(command)); }

// A command under a command, with its usage, help, options and arguments.
void AddSubcommand(Page& page, const CLI::App& command) {
  page.Subsection(cli::UsageLine(command, cli::PathOf(command)));
  page.Raw(RoffText(command.get_description()));
  AddOptions(page, command, ".PP\nOptions:", false);
  AddArguments(page, command, ".PP\nArguments:");
}

std::string CommandPage(const CLI::App& command, const std::string& version) {
  const std::string name = "hifx-" + command.get_name();
  Page page(name, version);
  page.Section("NAME");
  page.Raw(RoffText(name + " - " + command.get_description()));
  page.Section("SYNOPSIS");
  page.Raw(Synopsis(command));
  page.Section("DESCRIPTION");
  page.Paragraph(command.get_description() + ".");
  page.Paragraph("The options of the whole line, given before the command, are those of hifx(1).");
  AddOptions(page, command, ".SH OPTIONS");
  AddArguments(page, command, ".SH ARGUMENTS");
  if (!Commands(command).empty()) page.Section("COMMANDS");
  for (const CLI::App* sub : Commands(command)) AddSubcommand(page, *sub);
  page.Section("SEE ALSO");
  page.Raw(RoffBold("hifx") + "(1)");
  return page.Text();
}

void AddEntries(Page& page, const std::string& title, const Entry* begin, const Entry* end) {
  page.Section(title);
  for (const Entry* e = begin; e != end; ++e) page.Item(RoffBold(e->name), e->words);
}

void AddCommandList(Page& page, const CLI::App& root) {
  page.Section("COMMANDS");
  for (const CLI::App* command : Commands(root)) {
    const std::string path = cli::PathOf(*command);
    page.Item(Usage(*command, path.substr(path.find(' ') + 1)),
              command->get_description() + ". See hifx-" + command->get_name() + "(1).");
  }
}

void AddExitStatus(Page& page) {
  page.Section("EXIT STATUS");
  for (const app::ExitCode& exit : app::kExitCodes) page.Item(RoffBold(std::to_string(exit.code)), exit.meaning);
}

void AddSeeAlso(Page& page, const CLI::App& root) {
  page.Section("SEE ALSO");
  std::string pages;
  for (const CLI::App* command : Commands(root)) {
    pages += (pages.empty() ? "" : ",\n") + RoffBold("hifx-" + command->get_name()) + "(1)";
  }
  page.Raw(pages);
}

// The name's line: the root's description says "hifx: WHAT IT DOES".
std::string WhatItDoes(const CLI::App& root) {
  const std::string words = root.get_description();
  const std::string prefix = root.get_name() + ": ";
  return words.rfind(prefix, 0) == 0 ? words.substr(prefix.size()) : words;
}

std::string MainPage(const CLI::App& root, const std::string& version) {
  Page page("hifx", version);
  page.Section("NAME");
  page.Raw(RoffText("hifx - " + WhatItDoes(root)));
  page.Section("SYNOPSIS");
  page.Raw(Synopsis(root));
  page.Section("DESCRIPTION");
  for (const char* words : kDescription) page.Paragraph(words);
  AddOptions(page, root, ".SH OPTIONS");
  AddCommandList(page, root);
  AddExitStatus(page);
  AddEntries(page, "ENVIRONMENT", std::begin(kEnvironment), std::end(kEnvironment));
  AddEntries(page, "FILES", std::begin(kFiles), std::end(kFiles));
  AddSeeAlso(page, root);
  return page.Text();
}

}  // namespace

std::map<std::string, std::string> ManPages(const CLI::App& root, const std::string& version) {
  std::map<std::string, std::string> pages{{"hifx.1", MainPage(root, version)}};
  for (const CLI::App* command : Commands(root)) {
    pages["hifx-" + command->get_name() + ".1"] = CommandPage(*command, version);
  }
  return pages;
}

void WriteManPages(const CLI::App& root, const std::string& version, const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".1") std::filesystem::remove(entry.path());
  }
  for (const auto& [name, text] : ManPages(root, version)) {
    std::ofstream out(folder / name, std::ios::binary);
    out << text;
    if (!out.flush()) throw std::runtime_error("could not write " + (folder / name).string());
  }
}

}  // namespace hifx::docs
