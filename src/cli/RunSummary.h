// What a command that writes files says when it ends: each file it wrote
// with its count of records, lines or pages, and how long the run took. One
// line on standard error for people; with --json, one JSON object on
// standard output for scripts.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace hifx::cli {

// How much a written file holds, counted by what it is: a handheld file's
// records, a PDF's pages, a folder's pictures, a text file's lines.
struct FileCount {
  int64_t count = 0;
  std::string unit;  // "records", "pages", "pictures", "lines"
};
FileCount CountOf(const std::filesystem::path& file);

class RunSummary {
 public:
  RunSummary(std::string command, bool json);

  // A file, or a folder of pictures, that the run may write: looked at now
  // and again at the end, to see whether the run wrote it.
  void Watch(const std::filesystem::path& file);
  void WatchFolder(const std::filesystem::path& folder);
  // Says what was written and passes the exit code on.
  int Finish(int exitCode) const;

 private:
  struct Stamp {
    std::uintmax_t size = 0;
    std::filesystem::file_time_type written;
    bool operator==(const Stamp&) const = default;
  };
  struct Watched {
    std::filesystem::path file;
    std::optional<Stamp> before;
    bool folder = false;
  };
  static std::optional<Stamp> StampOf(const std::filesystem::path& file);
  int64_t PicturesMadeIn(const std::filesystem::path& folder) const;
  std::vector<std::pair<std::filesystem::path, FileCount>> Written() const;

  std::string command_;
  bool json_;
  std::chrono::steady_clock::time_point start_;
  std::filesystem::file_time_type startOnDisk_;
  std::vector<Watched> watched_;
};

}  // namespace hifx::cli
