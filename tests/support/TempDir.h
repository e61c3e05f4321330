// A fresh folder under the system's temporary folder, removed with its
// contents when the test ends; and small file helpers.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace hifx::test {

class TempDir {
 public:
  TempDir() {
    std::random_device rd;
    const auto base = std::filesystem::temp_directory_path();
    for (;;) {
      path_ = base / ("hifx-test-" + std::to_string(rd()));
      if (std::filesystem::create_directory(path_)) break;
    }
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

inline std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// Bytes from a text of hex pairs, blanks ignored: Hex("00 06 FF").
inline std::string Hex(const std::string& text) {
  std::string out;
  int nibbles = 0;
  int value = 0;
  for (const char c : text) {
    int v;
    if (c >= '0' && c <= '9') v = c - '0';
    else if (c >= 'a' && c <= 'f') v = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F') v = c - 'A' + 10;
    else continue;
    value = value * 16 + v;
    if (++nibbles == 2) {
      out.push_back(static_cast<char>(value));
      nibbles = 0;
      value = 0;
    }
  }
  return out;
}

// A number as `width` big-endian bytes, and the number such bytes hold.
inline std::string BigEndian(uint32_t value, int width) {
  std::string bytes;
  for (int shift = (width - 1) * 8; shift >= 0; shift -= 8) bytes.push_back(static_cast<char>((value >> shift) & 0xFF));
  return bytes;
}

inline uint32_t BigEndianAt(const std::string& bytes, size_t at, int width) {
  uint32_t value = 0;
  for (int k = 0; k < width; ++k) value = value << 8 | static_cast<uint8_t>(bytes.at(at + static_cast<size_t>(k)));
  return value;
}

// The lines of a text, each without its CR LF.
inline std::vector<std::string> CrLfLines(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t at = 0; at < text.size();) {
    const size_t end = text.find("\r\n", at);
    lines.push_back(text.substr(at, end - at));
    if (end == std::string::npos) break;
    at = end + 2;
  }
  return lines;
}

// The number of entries in a folder.
inline size_t FilesIn(const std::filesystem::path& folder) {
  return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

}  // namespace hifx::test
