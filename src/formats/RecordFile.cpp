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

RecordLineWriter& RecordLineWriter::operator=(RecordLineWriter&& other) noexcept {
  if (this != &other) {
    Release();
    file_ = std::move(other.file_);
  }
  return *this;
}

RecordLineWriter::~RecordLineWriter() { Release(); }

void RecordLineWriter::Release() noexcept {
  if (!file_) return;
  const std::unique_ptr<OutputFile> file = std::move(file_);
  if (file->Failed()) return;
  try {
    file->Commit();
  } catch (const std::exception&) {
    // the old file stays as it was
  }
}

void RecordLineWriter::Create(const std::string& path) {
  Release();
  file_ = std::make_unique<OutputFile>(path);
}

void RecordLineWriter::Finish() {
  if (!file_) throw Failure(fail::kBadFileName);
  const std::unique_ptr<OutputFile> file = std::move(file_);
  file->Commit();
}

void RecordLineWriter::Write(clsRecType& record, int16_t width) {
  if (!file_) throw Failure(fail::kBadFileName);
  record.SetValue("RecID", Value(record.IDText));
  record.Buffer(width, line_);
  line_ += "\r\n";
  file_->Write(line_);
}

}  // namespace hifx
