#include "formats/RecordFile.h"

#include <filesystem>

#include "base/Failure.h"
#include "base/Numbers.h"

namespace hifx {

bool RecordLineReader::Open(const std::string& path) {
  std::error_code ec;
  if (!std::filesystem::exists(path, ec)) return false;
  file_ = std::make_unique<LineReader>(path);
  lineNo_ = 0;
  return true;
}

bool RecordLineReader::Next(std::string& line) {
  if (!file_ || !file_->ReadLine(line)) return false;
  ++lineNo_;
  return true;
}

int16_t RecordLineReader::Position255() const {
  if (!file_) return 0;
  // Counted in blocks of 128 bytes.
  const uint64_t blocks = (file_->Size() + 127) / 128;
  if (blocks < 1) return 0;
  const uint64_t at = file_->Position() / 128;
  return ToInt16(static_cast<double>(at) * 255.0 / static_cast<double>(blocks));
}

bool RecordLineWriter::Create(const std::string& path) {
  // Lines go out through a large buffer: a reading file runs to megabytes.
  file_ = std::make_unique<Output>();
  file_->stream.rdbuf()->pubsetbuf(file_->buffer.get(), Output::kBufferSize);
  file_->stream.open(path, std::ios::binary | std::ios::trunc);
  if (file_->stream) return true;
  file_.reset();
  return false;
}

void RecordLineWriter::Write(clsRecType& record, int16_t width) {
  if (!file_) throw Failure(fail::kBadFileName);
  record.SetValue("RecID", Value(record.IDText));
  const std::string line = record.Buffer(width);
  std::ofstream& out = file_->stream;
  out.write(line.data(), static_cast<std::streamsize>(line.size()));
  out.write("\r\n", 2);
  if (!out) throw Failure(fail::kDiskFull);
}

}  // namespace hifx
