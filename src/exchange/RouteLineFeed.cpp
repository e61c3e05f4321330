#include "exchange/RouteLineFeed.h"

namespace hifx {

RouteLineFeed::RouteLineFeed(std::unique_ptr<LineReader> source, const clsExchMap& map, const clsPrompts& prompts)
    : source_(std::move(source)),
      parser_(map, prompts),
      lines_([this](Line& line) { return Make(line); }, Line{parser_.Line(), {}, 0}) {}

bool RouteLineFeed::Make(Line& line) {
  if (!source_->ReadLine(text_)) return false;
  parser_.Parse(text_);
  parser_.TakeLine(line.values);
  line.readType = parser_.ReadType();
  line.position = source_->Position();
  return true;
}

}  // namespace hifx
