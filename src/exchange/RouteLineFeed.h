// The lines of a flat route file, read and parsed on a second thread a few
// batches ahead of the conversion that validates and writes them. The
// conversion sees the lines in order as one parser would give them, and a
// failure to read or parse a line where that line would be: the lines
// before it first.
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "base/LineReader.h"
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
  // Stops the reading thread, wherever it is.
  ~RouteLineFeed();
  RouteLineFeed(const RouteLineFeed&) = delete;
  RouteLineFeed& operator=(const RouteLineFeed&) = delete;

  // The next line, valid until the next call; nullptr at the end of the
  // file. Raises the failure that stopped the reading once the lines before
  // it are taken.
  const Line* Next();

 private:
  static constexpr size_t kBatchLines = 256;
  struct Batch {
    std::vector<Line> lines;
    size_t count = 0;            // lines filled
    bool last = false;           // the reading ends after this batch
    std::exception_ptr failure;  // why it ended early, raised after the lines
  };
  void Read();
  void Fill(Batch& batch, std::string& text);

  std::unique_ptr<LineReader> source_;
  RouteLineParser parser_;
  const RouteLine planned_;  // a line with no values, the room of a new one
  std::array<Batch, 4> batches_;
  std::mutex mutex_;
  std::condition_variable changed_;
  uint64_t filled_ = 0;  // batches the reader has handed over
  uint64_t taken_ = 0;   // batches the conversion is done with
  bool stopping_ = false;
  // The conversion's place: the batch it reads and the line in it.
  Batch* current_ = nullptr;
  size_t next_ = 0;
  std::thread reader_;
};

}  // namespace hifx
