#include "tools/docs/Completion.h"

#include <set>

namespace hifx::docs {
namespace {

// The names a value is shown by in the help that stand for a file to read or write.
const std::set<std::string> kFileValues = {"F", "FILE", "OUT", "READINGS", "OLD", "NEW"};

// What a value shown as NAME names, by where it is given: a route or re-read
// map, a reading map or an orphan map by name, a map file of the site, a
// setting or a handheld unit.
ValueKind NameKind(const std::string& path, const std::string& option) {
  if (option == "--orphan-map") return "map:.hom";
  if (option == "--map") return path == "hifx reading" ? "map:.hrm" : "map:.hcm";
  if (option == "--unit") return "user";
  if (!option.empty()) return "";
  if (path.rfind("hifx map ", 0) == 0) return "mapfile";
  if (path.rfind("hifx settings ", 0) == 0) return "setting";
  return "";
}

ValueKind KindOf(const std::string& path, const CLI::Option& option) {
  const std::string type = option.get_type_name();
  if (type == "NAME") return NameKind(path, option.get_positional() ? "" : option.get_name());
  if (type == "DIR") return "dir";
  if (type == "COMMAND") return "command";
  if (kFileValues.count(type) != 0) return "file";
  // "PDB|PRC|VFS", "reading|exception|missed|orphan[,...]": the words to choose from.
  if (type.find('|') != std::string::npos) return "words:" + type.substr(0, type.find('['));
  return "";
}

void AddOption(CompletionLevel& level, const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& s : option.get_snames()) names.push_back("-" + s);
  for (const std::string& l : option.get_lnames()) names.push_back("--" + l);
  for (const std::string& name : names) {
    level.options.emplace_back(name, option.get_description());
    if (option.get_type_size_max() > 0) level.values[name] = KindOf(level.path, option);
  }
}

void AddLevels(const CLI::App& command, const std::string& path, std::vector<CompletionLevel>& levels) {
  CompletionLevel level{path, {}, {}, {}, {}};
  const auto subs = command.get_subcommands([](const CLI::App*) { return true; });
  for (const CLI::App* sub : subs) level.commands.emplace_back(sub->get_name(), sub->get_description());
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional()) {
      level.arguments.push_back(KindOf(path, *option));
    } else if (!option->get_group().empty()) {
      AddOption(level, *option);
    }
  }
  levels.push_back(std::move(level));
  for (const CLI::App* sub : subs) AddLevels(*sub, path + " " + sub->get_name(), levels);
}

// Words in single quotes, as bash and zsh both read them.
std::string Quoted(const std::string& words) {
  std::string quoted = "'";
  for (const char c : words) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

using Table = std::map<std::string, std::string>;

// The names alone, or "name:help" as zsh describes them, one a line.
std::string Names(const std::vector<std::pair<std::string, std::string>>& named, bool described) {
  std::string words;
  for (const auto& [name, help] : named) {
    if (!words.empty()) words += described ? "\n" : " ";
    words += name;
    if (!described) continue;
    words += ":";
    for (const char c : help) words += c == ':' ? std::string("\\:") : std::string(1, c);
  }
  return words;
}

std::string Arguments(const std::vector<ValueKind>& kinds) {
  std::string words;
  for (const ValueKind& kind : kinds) words += (words.empty() ? "" : " ") + (kind.empty() ? "-" : kind);
  return words;
}

struct Tables {
  Table commands, options, values, arguments;
};

Tables TablesOf(const CLI::App& root, bool described) {
  Tables tables;
  for (const CompletionLevel& level : CompletionLevels(root)) {
    if (!level.commands.empty()) tables.commands[level.path] = Names(level.commands, described);
    if (!level.options.empty()) tables.options[level.path] = Names(level.options, described);
    for (const auto& [option, kind] : level.values) tables.values[level.path + " " + option] = kind.empty() ? "-" : kind;
    if (!level.arguments.empty()) tables.arguments[level.path] = Arguments(level.arguments);
  }
  return tables;
}

std::string BashTable(const std::string& name, const Table& table) {
  std::string text = "declare -gA " + name + "=(\n";
  for (const auto& [key, value] : table) text += "  [" + Quoted(key) + "]=" + Quoted(value) + "\n";
  return text + ")\n";
}

std::string ZshTable(const std::string& name, const Table& table) {
  std::string text = "typeset -gA " + name + "\n" + name + "=(\n";
  for (const auto& [key, value] : table) text += "  " + Quoted(key) + " " + Quoted(value) + "\n";
  return text + ")\n";
}

constexpr const char* kTablesNote =
    "# Made by hifx-docs from the command line's own definition: edit the\n"
    "# definition, not this file. Each table is keyed by the words that reach a\n"
    "# command (\"hifx map show\"); values: the commands under it, its options,\n"
    "# the kind of each option's value and of each positional (\"-\": free).\n";

std::string BashTables(const Tables& t) {
  return kTablesNote + BashTable("_hifx_commands", t.commands) + BashTable("_hifx_options", t.options) +
         BashTable("_hifx_values", t.values) + BashTable("_hifx_arguments", t.arguments);
}

std::string ZshTables(const Tables& t) {
  return kTablesNote + ZshTable("_hifx_commands", t.commands) + ZshTable("_hifx_options", t.options) +
         ZshTable("_hifx_values", t.values) + ZshTable("_hifx_arguments", t.arguments);
}


// The completing functions, over the tables written before them.
constexpr const char* kBashFunctions = R"sh(
# hifx's own answer for the site the line names: hifx [--site DIR] ARGS...
_hifx_ask() {
  local site_option=()
  [[ -n $site ]] && site_option=(--site "${site/#\~/$HOME}")
  "${COMP_WORDS[0]/#\~/$HOME}" "${site_option[@]}" --no-input "$@" 2>/dev/null </dev/null
}

# The site's maps that end in extension $1, by name without it.
_hifx_maps() {
  local name
  while IFS= read -r name; do
    [[ ${name,,} == *"$1" ]] && printf '%s\n' "${name:0:${#name}-${#1}}"
  done < <(_hifx_ask map list)
}

# COMPREPLY: the words of $1, one a line, that begin with the current word.
_hifx_words() {
  local IFS=$'\n'
  COMPREPLY=($(compgen -W "$1" -- "$cur"))
}

# The current word completed as a value of kind $1.
_hifx_value() {
  local IFS=$'\n' choices
  case $1 in
    file) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- "$cur")) ;;
    dir) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -d -- "$cur")) ;;
    map:*) _hifx_words "$(_hifx_maps "${1#map:}")" ;;
    mapfile) _hifx_words "$(_hifx_ask map list)" ;;
    setting) _hifx_words "$(_hifx_ask settings show | cut -d= -f1)" ;;
    user) _hifx_words "$(_hifx_ask users)" ;;
    command) _hifx_words "${_hifx_commands[hifx]// /$'\n'}" ;;
    words:*) choices=${1#words:}; _hifx_words "${choices//|/$'\n'}" ;;
    *) COMPREPLY=() ;;
  esac
}

_hifx() {
  local cur=${COMP_WORDS[COMP_CWORD]} at=hifx site="" args=0 word i
  # The command reached, the site named and the positionals given so far.
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ -n ${_hifx_values["$at $word"]+set} ]]; then
      i=$((i + 1))
      [[ ${COMP_WORDS[i]} == = ]] && i=$((i + 1))
      [[ $at == hifx && $word == --site ]] && site=${COMP_WORDS[i]}
    elif [[ $word != -* && $args -eq 0 && " ${_hifx_commands[$at]} " == *" $word "* ]]; then
      at="$at $word"
    elif [[ $word != -* ]]; then
      args=$((args + 1))
    fi
  done
  local option=${COMP_WORDS[COMP_CWORD - 1]}
  [[ $option == = ]] && option=${COMP_WORDS[COMP_CWORD - 2]}
  if [[ -n ${_hifx_values["$at $option"]+set} ]]; then
    _hifx_value "${_hifx_values["$at $option"]}"
  elif [[ $cur == -* ]]; then
    _hifx_words "${_hifx_options[$at]// /$'\n'}"
  elif [[ -n ${_hifx_commands[$at]} && $args -eq 0 ]]; then
    _hifx_words "${_hifx_commands[$at]// /$'\n'}"
  else
    local kinds=(${_hifx_arguments[$at]})
    _hifx_value "${kinds[args]}"
  fi
}

complete -F _hifx hifx
)sh";

constexpr const char* kZshFunctions = R"sh(
# hifx's own answer for the site the line names: hifx [--site DIR] ARGS...
_hifx_ask() {
  local -a site_option
  [[ -n $site ]] && site_option=(--site "${site/#\~/$HOME}")
  "${words[1]/#\~/$HOME}" $site_option --no-input "$@" 2>/dev/null </dev/null
}

# The site's maps that end in extension $1, by name without it.
_hifx_maps() {
  local name
  for name in ${(f)"$(_hifx_ask map list)"}; do
    [[ ${(L)name} == *$1 ]] && print -r -- ${name[1,-$(( ${#1} + 1 ))]}
  done
}

# The current word completed as a value of kind $1.
_hifx_value() {
  local -a names
  case $1 in
    file) _files; return ;;
    dir) _files -/; return ;;
    map:*) names=(${(f)"$(_hifx_maps ${1#map:})"}) ;;
    mapfile) names=(${(f)"$(_hifx_ask map list)"}) ;;
    setting) names=(${${(f)"$(_hifx_ask settings show)"}%%=*}) ;;
    user) names=(${(f)"$(_hifx_ask users)"}) ;;
    command) names=(${${(f)_hifx_commands[hifx]}%%:*}) ;;
    words:*) names=(${(s:|:)${1#words:}}) ;;
  esac
  (( $#names )) && compadd -a names
}

_hifx() {
  local at=hifx site= word key cur=${words[CURRENT]}
  local -i i args=0
  local -a list
  # The command reached, the site named and the positionals given so far.
  for ((i = 2; i < CURRENT; i++)); do
    word=${words[i]}
    key="$at $word"
    if (( ${+_hifx_values[$key]} )); then
      (( i++ ))
      [[ $at == hifx && $word == --site ]] && site=${words[i]}
    elif [[ $word != -* && $args -eq 0 && -n ${(M)${${(f)_hifx_commands[$at]}%%:*}:#$word} ]]; then
      at="$at $word"
    elif [[ $word != -* ]]; then
      (( ++args ))
    fi
  done
  key="$at ${words[CURRENT-1]}"
  if (( ${+_hifx_values[$key]} )); then
    _hifx_value ${_hifx_values[$key]}
  elif [[ $cur == -* ]]; then
    list=(${(f)_hifx_options[$at]})
    _describe 'option' list
  elif [[ -n ${_hifx_commands[$at]} && $args -eq 0 ]]; then
    list=(${(f)_hifx_commands[$at]})
    _describe 'command' list
  else
    list=(${=_hifx_arguments[$at]})
    _hifx_value ${list[args+1]}
  fi
}

if [[ ${zsh_eval_context[-1]} == loadautofunc ]]; then
  _hifx "$@"
elif (( ${+functions[compdef]} )); then
  compdef _hifx hifx
fi
)sh";

}  // namespace

std::vector<CompletionLevel> CompletionLevels(const CLI::App& root) {
  std::vector<CompletionLevel> levels;
  AddLevels(root, root.get_name(), levels);
  return levels;
}

}  // namespace hifx::docs

namespace hifx::docs {

std::string BashCompletion(const CLI::App& root) {
  return "# bash completion for hifx                                -*- shell-script -*-\n" +
         BashTables(TablesOf(root, false)) + kBashFunctions;
}

std::string ZshCompletion(const CLI::App& root) {
  return "#compdef hifx\n# zsh completion for hifx\n" + ZshTables(TablesOf(root, true)) + kZshFunctions;
}

}  // namespace hifx::docs
