// Shell completion for hifx, made from the command line's own definition:
// a bash script and a zsh function that complete its commands, options and
// values, asking hifx itself for the site's map and setting names.
#pragma once

#include <CLI/CLI.hpp>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace hifx::docs {

// What a value of the line is, as completion offers it: "file", "dir",
// "map:.hcm" (the site's maps of that kind, by name), "mapfile" (every map,
// with its extension), "setting", "user", "command", "words:A|B|C", or ""
// for a value of the user's own.
using ValueKind = std::string;

// One command of the line, by the words that reach it ("" for the line
// itself, "map show"): what may follow it.
struct CompletionLevel {
  std::string path;
  std::vector<std::pair<std::string, std::string>> commands;  // name, help
  std::vector<std::pair<std::string, std::string>> options;   // each of an option's names, help
  std::map<std::string, ValueKind> values;                    // the options that take a value
  std::vector<ValueKind> arguments;                           // the positionals, in order
};

std::vector<CompletionLevel> CompletionLevels(const CLI::App& root);

std::string BashCompletion(const CLI::App& root);
std::string ZshCompletion(const CLI::App& root);

}  // namespace hifx::docs
