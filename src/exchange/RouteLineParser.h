// Parses the lines of a flat route file, fixed-column or delimited, by the
// fields of its map. A parser keeps the state that runs from line to line:
// the autonumber and the text a field may repeat. It reads the map and the
// prompted values and changes neither, so a parser of its own may run on
// another thread beside the conversion.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/RouteLine.h"
#include "maps/clsExchMap.h"
#include "maps/clsPrompts.h"

namespace hifx {

class RouteLineParser {
 public:
  // Plans the line for the map's fields; both must outlive the parser.
  RouteLineParser(const clsExchMap& map, const clsPrompts& prompts);

  // One line, a value for each of the map's fields. With onlyRoute, only
  // RouteNbr is kept, and of the others only those that may fail or count
  // are converted: what a first pass needs. The values stay until the next
  // line is parsed.
  const RouteLine& Parse(const std::string& line, bool onlyRoute = false);
  // The read type of the line parsed last, upper-cased; empty when the line
  // has none from its source.
  const std::string& ReadType() const { return readType_; }
  // The last autonumber given; the next line's is one more.
  int16_t AutoNumber() const { return autoNumber_; }
  // Autonumbers start again from 1.
  void RestartNumbers() { autoNumber_ = 0; }
  // Hands the values of the line parsed last to `into` and takes its old
  // ones as the room for the next line. `into` must be planned for the same
  // map, a copy of the one a parser made.
  void TakeLine(RouteLine& into) { std::swap(into, line_); }
  const RouteLine& Line() const { return line_; }

 private:
  const RouteLine& ParseFixed(const std::string& line, bool onlyRoute);
  const RouteLine& ParseDelimited(const std::string& line, bool onlyRoute);
  // One field of a fixed-column line; `raw` is the text of the field
  // before, which a field may repeat.
  void TakeFixedField(size_t position, const std::string& line, std::string_view& raw, bool onlyRoute);
  void AddValue(size_t position, const MapField& field, std::string_view raw, bool trimBothEnds, bool keep);

  const clsExchMap& map_;
  const clsPrompts& prompts_;
  RouteLine line_;
  std::string readType_;
  int16_t autoNumber_ = 0;
  // The fields a first pass walks, by position: those that are kept, that
  // can fail or that count. Empty when a field repeats the one before, as
  // then the first pass walks them all.
  std::vector<size_t> firstPassFields_;
  bool firstPassPlanned_ = true;
  std::string promptedText_;  // the room of a prompted field's text
  std::string numberText_;    // and of an autonumber's
};

}  // namespace hifx
