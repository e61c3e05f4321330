#include "cli/RunSummary.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>

#include "cli/HifFile.h"
#include "handheld/clsPalmFileVFS.h"

namespace hifx::cli {
namespace {

namespace fs = std::filesystem;

uint32_t BigEndian(const unsigned char* bytes, size_t width) {
  uint32_t value = 0;
  for (size_t i = 0; i < width; ++i) value = (value << 8) | bytes[i];
  return value;
}

// A record database's count from its header, when the header holds one that
// fits the file.
std::optional<int64_t> DatabaseRecords(std::ifstream& in, std::uintmax_t size) {
  std::array<unsigned char, 78> header{};
  in.seekg(0);
  if (!in.read(reinterpret_cast<char*>(header.data()), header.size())) return std::nullopt;
  const uint32_t records = BigEndian(&header[76], 2);
  if (records == 0 || size < header.size() + 8u * records) return std::nullopt;
  return records;
}

// A card-file stream's records: each behind its length in four big-endian
// bytes, ending exactly at the end of the file.
std::optional<int64_t> StreamRecords(std::ifstream& in, std::uintmax_t size) {
  in.clear();
  in.seekg(0);
  std::uintmax_t at = 0;
  int64_t records = 0;
  std::array<unsigned char, 4> length{};
  while (at < size) {
    if (!in.read(reinterpret_cast<char*>(length.data()), length.size())) return std::nullopt;
    at += length.size() + BigEndian(length.data(), length.size());
    if (at > size) return std::nullopt;
    in.seekg(static_cast<std::streamoff>(at));
    ++records;
  }
  return records;
}

// Counts the occurrences of a word that are not followed by one of the
// letters in notBefore, reading in blocks.
int64_t CountWord(std::ifstream& in, const std::string& word, char notBefore) {
  in.clear();
  in.seekg(0);
  std::string carry;
  std::array<char, 65536> block{};
  int64_t count = 0;
  while (in.read(block.data(), block.size()) || in.gcount() > 0) {
    std::string text = carry + std::string(block.data(), static_cast<size_t>(in.gcount()));
    size_t from = 0;
    // A match at the very end waits for the next block to be judged.
    for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, from)) {
      if (at + word.size() >= text.size()) break;
      if (text[at + word.size()] != notBefore) ++count;
      from = at + word.size();
    }
    const size_t keep = std::min(text.size() - from, word.size());
    carry = text.substr(text.size() - keep);
  }
  return count;
}

int64_t CountLines(std::ifstream& in) {
  in.clear();
  in.seekg(0);
  std::array<char, 65536> block{};
  int64_t lines = 0;
  char last = '\n';
  while (in.read(block.data(), block.size()) || in.gcount() > 0) {
    const auto n = static_cast<size_t>(in.gcount());
    lines += std::count(block.data(), block.data() + n, '\n');
    last = block[n - 1];
  }
  return lines + (last == '\n' ? 0 : 1);
}

std::string JsonOf(const fs::path& file, const FileCount& count) {
  std::string out = "{";
  AppendField(out, "file", JsonText(file.string()));
  AppendField(out, count.unit.c_str(), std::to_string(count.count));
  return out + "}";
}

std::string SecondsText(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", seconds);
  return text;
}

}  // namespace

FileCount CountOf(const fs::path& file) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  std::ifstream in(file, std::ios::binary);
  if (error || !in) return {0, "bytes"};
  std::array<char, 5> start{};
  in.read(start.data(), start.size());
  if (std::string(start.data(), static_cast<size_t>(in.gcount())) == "%PDF-") {
    return {CountWord(in, "/Type /Page", 's'), "pages"};
  }
  if (const auto records = DatabaseRecords(in, size)) return {*records, "records"};
  if (clsPalmFileVFS().TestFileType(file)) {
    if (const auto records = StreamRecords(in, size)) return {*records, "records"};
  }
  return {CountLines(in), "lines"};
}

RunSummary::RunSummary(std::string command, bool json)
    : command_(std::move(command)),
      json_(json),
      start_(std::chrono::steady_clock::now()),
      startOnDisk_(fs::file_time_type::clock::now()) {}

std::optional<RunSummary::Stamp> RunSummary::StampOf(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (error || !fs::exists(status)) return std::nullopt;
  Stamp stamp;
  stamp.written = fs::last_write_time(file, error);
  if (fs::is_regular_file(status)) stamp.size = fs::file_size(file, error);
  return stamp;
}

void RunSummary::Watch(const fs::path& file) {
  if (file.empty()) return;
  watched_.push_back({file, StampOf(file)});
}

void RunSummary::WatchFolder(const fs::path& folder) { watched_.push_back({folder, std::nullopt, true}); }

// The pictures in the folder written since the run began; a file system
// that keeps coarse times may count one written just before.
int64_t RunSummary::PicturesMadeIn(const fs::path& folder) const {
  std::error_code error;
  int64_t pictures = 0;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    std::error_code timeError;
    const auto written = entry.last_write_time(timeError);
    if (entry.path().extension() == ".png" && !timeError && written >= startOnDisk_ - std::chrono::seconds(2)) {
      ++pictures;
    }
  }
  return pictures;
}

std::vector<std::pair<fs::path, FileCount>> RunSummary::Written() const {
  std::vector<std::pair<fs::path, FileCount>> written;
  for (const Watched& w : watched_) {
    if (w.folder) {
      if (const int64_t pictures = PicturesMadeIn(w.file); pictures > 0) {
        written.emplace_back(w.file, FileCount{pictures, "pictures"});
      }
      continue;
    }
    const auto after = StampOf(w.file);
    if (after && after != w.before) written.emplace_back(w.file, CountOf(w.file));
  }
  return written;
}

int RunSummary::Finish(int exitCode) const {
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  const auto written = Written();
  if (json_) {
    std::string files = "[";
    for (const auto& [file, count] : written) files += (files.size() > 1 ? "," : "") + JsonOf(file, count);
    std::string out = "{";
    AppendField(out, "command", JsonText(command_));
    AppendField(out, "exit", std::to_string(exitCode));
    AppendField(out, "written", files + "]");
    AppendField(out, "seconds", SecondsText(seconds));
    std::printf("%s}\n", out.c_str());
    std::fflush(stdout);
    return exitCode;
  }
  std::string line = "hifx: " + command_ + ": wrote ";
  if (written.empty()) line += "nothing";
  for (size_t i = 0; i < written.size(); ++i) {
    if (i > 0) line += ", ";
    AppendShown(line, written[i].first.string());
    const FileCount& count = written[i].second;
    // "1 record", "2 records".
    const std::string unit = count.count == 1 ? count.unit.substr(0, count.unit.size() - 1) : count.unit;
    line += " (" + std::to_string(count.count) + " " + unit + ")";
  }
  line += " in " + SecondsText(seconds) + " s\n";
  std::fflush(stdout);
  std::fputs(line.c_str(), stderr);
  return exitCode;
}

}  // namespace hifx::cli
