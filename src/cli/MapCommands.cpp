// map list, map show NAME, map check NAME: the map files of the site folder.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/CaseBlind.h"
#include "base/Failure.h"
#include "base/Value.h"
#include "cli/CliShell.h"
#include "cli/Commands.h"
#include "cli/MapNames.h"
#include "maps/MapCatalogues.h"
#include "maps/clsExchMap.h"

namespace hifx::cli {
namespace {

void Print(const std::string& line) {
  WriteOut(line);
  std::fputc('\n', stdout);
}

std::string Row(const std::vector<std::string>& cells) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line.push_back('\t');
    line += cells[i];
  }
  return line;
}

int List(const Context& context) {
  std::vector<std::string> names;
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(context.SiteFolder(), ec)) {
    const std::string name = entry.path().filename().string();
    std::error_code typeError;
    if (UseOfName(name) != 0 && entry.is_regular_file(typeError)) names.push_back(name);
  }
  if (ec) throw Failure(FailureKind::BadSite, fail::kPathAccess, "cannot read the site folder", context.SiteFolderName());
  std::sort(names.begin(), names.end());
  for (const auto& name : names) Print(name);
  return kExitOk;
}

void Show(const clsExchMap& map) {
  auto coded = [](std::string_view key, int32_t code, std::string_view words) {
    Print(Row({std::string(key), std::to_string(code), std::string(words)}));
  };
  Print(Row({"MapName", map.MapName()}));
  Print(Row({"MapUse", std::to_string(map.MapUse())}));
  coded("MapType", map.MapType(), MapTypeText(map.MapType()));
  coded("MapFilter", map.MapFilter(), MapFilterText(map.MapFilter()));
  Print(Row({"MapDelimiter", map.MapDelimiter()}));
  Print(Row({"MapQuote", map.MapQuote()}));
  Print(Row({"MapOptions", map.MapOptions(0)}));
  coded("MapTerminator", map.MapTerminator(), MapTerminatorText(map.MapTerminator()));
  Print(Row({"MapLength", std::to_string(map.MapLength())}));
  Print(Row({"Order", "FieldName", "DataType", "Required", "MapOption", "Mapping", "DataPosition",
             "DataWidth", "MapAlign", "MapPad", "MapFormat", "MaxValue", "Prompt", "MapConstant"}));
  for (int32_t i = 1; i <= map.FieldCount(); ++i) {
    Print(Row({std::to_string(i), map.FieldName(i), std::to_string(map.DataType(i)),
               map.Required(i) ? "Y" : "N", std::to_string(map.MapOption(i)),
               std::string(MapOptionText(map.MapOption(i))), std::to_string(map.DataPosition(i)),
               std::to_string(map.DataWidth(i)), std::to_string(map.MapAlign(i)),
               std::to_string(map.MapPad(i)), std::to_string(map.MapFormat(i)),
               Value::Double(map.MaxValue(i)).ToText(), map.Prompt(i), map.MapConstant(i)}));
  }
}

// The validation's messages, one line each.
void PrintMessages(std::string_view messages) {
  while (!messages.empty()) {
    const size_t end = messages.find("\r\n");
    Print(std::string(messages.substr(0, end)));
    messages = end == std::string_view::npos ? std::string_view() : messages.substr(end + 2);
  }
}

// The map NAME of a show or check, loaded from the site folder.
clsExchMap LoadNamedMap(Context& context, const std::string& given) {
  const std::string name = MapFileNamed(context.SiteFolder(), given);
  const int32_t use = UseOfName(name);
  clsExchMap map(context.SiteFolder());
  if (!map.LoadMap(name, use)) throw Failure(FailureKind::MissingInput, fail::kFileNotFound, "could not load", name);
  return map;
}

int Check(Context& context, const std::string& name) {
  std::string messages;
  const bool valid = LoadNamedMap(context, name).ValidateMap(messages);
  PrintMessages(messages);
  return valid ? kExitOk : kExitNotComplete;
}

}  // namespace

void AddMapCommands(CommandTable& table) {
  struct Given {
    CLI::App* list = nullptr;
    CLI::App* show = nullptr;
    std::string name;
  };
  auto given = std::make_shared<Given>();
  CLI::App& map = table.Add("map", "the site folder's map files; show or validate map NAME", [given](Context& context) {
    if (given->list->parsed()) return List(context);
    if (!given->show->parsed()) return Check(context, given->name);
    Show(LoadNamedMap(context, given->name));
    return kExitOk;
  });
  map.require_subcommand(1);
  given->list = map.add_subcommand("list", "the map files of the site folder");
  given->show = map.add_subcommand("show", "map NAME: its settings and fields");
  CLI::App* check = map.add_subcommand("check", "map NAME validated, its messages one a line");
  for (CLI::App* named : {given->show, check}) {
    named->add_option("name", given->name, "the map's name, with or without its extension")->type_name("NAME")->required();
  }
}

}  // namespace hifx::cli
