// The lines of a flat route file, read and parsed on a second thread a few
// batches ahead of the conversion that validates and writes them. The
// conversion sees the lines in order as one parser would give them, and a
// failure to read or parse a line where that line would be: the lines
// before it first.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/LineReader.h"
#include "base/Prefetch.h"
#include "exchange/RouteLine.h"
#include "exchange/RouteLineParser.h"

namespace hifx {

class RouteLineFeed {
 public:
  struct Line {
    RouteLine values;
    std::string readType;   // as RouteLineParser::ReadType
    uint64_t position = 0;  // the bytes of the file read up to the line's end
  };

  // Starts reading the lines of source from where it stands, parsed with
  // the map's fields and the prompted values, which must outlive the feed;
  // autonumbers start from 1.
  RouteLineFeed(std::unique_ptr<LineReader> source, const clsExchMap& map, const clsPrompts& prompts);

  // The next line, valid until the next call; nullptr at the end of the
  // file. Raises the failure that stopped the reading once the lines before
  // it are taken.
  const Line* Next() { return lines_.Next(); }

 private:
  bool Make(Line& line);

  // The second thread's alone.
  std::unique_ptr<LineReader> source_;
  RouteLineParser parser_;
  std::string text_;
  Prefetch<Line> lines_;  // last: its thread starts once the rest is ready
};

}  // namespace hifx
