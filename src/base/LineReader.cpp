#include "base/LineReader.h"

#include <cstring>

#include "base/BinaryFile.h"
#include "base/Failure.h"

namespace hifx {

LineReader::LineReader(const std::filesystem::path& path) {
  CheckReadableFile(path);
  std::error_code ec;
  size_ = std::filesystem::file_size(path, ec);
  in_.open(path, std::ios::binary);
  if (!in_) throw Failure(FailureKind::MissingInput, fail::kPermissionDenied, "Permission denied:", path);
}

bool LineReader::Fill() {
  constexpr size_t kRead = 65536;
  if (next_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + next_, end_ - next_);
    end_ -= next_;
    next_ = 0;
  }
  if (buffer_.size() < end_ + kRead) buffer_.resize(end_ + kRead);
  in_.read(buffer_.data() + end_, kRead);
  const auto got = static_cast<size_t>(in_.gcount());
  end_ += got;
  return got > 0;
}

bool LineReader::ReadLine(std::string& line) {
  size_t scanned = 0;  // bytes of the line looked at so far, from next_
  for (;;) {
    size_t end = next_ + scanned;
    {
      // The first CR or LF from end on, found with two fast searches.
      const char* from = buffer_.data() + end;
      const size_t left = end_ - end;
      const void* lf = std::memchr(from, '\n', left);
      const size_t lfAt = lf == nullptr ? left : static_cast<size_t>(static_cast<const char*>(lf) - from);
      const void* cr = std::memchr(from, '\r', lfAt);
      end += cr == nullptr ? lfAt : static_cast<size_t>(static_cast<const char*>(cr) - from);
    }
    scanned = end - next_;
    if (end < end_) {
      // A CR that ends the buffer may be the first half of a CR LF: read on
      // before deciding. Fill moves the unread bytes to the front.
      if (buffer_[end] == '\r' && end + 1 == end_ && Fill()) continue;
      end = next_ + scanned;
      line.assign(buffer_.data() + next_, scanned);
      size_t after = end + 1;
      if (buffer_[end] == '\r' && after < end_ && buffer_[after] == '\n') ++after;
      position_ += after - next_;
      next_ = after;
      return true;
    }
    if (scanned > kMaxLine) {
      throw Failure(fail::kOutOfMemory, "A line of the file is longer than 16 MB");
    }
    if (!Fill()) {
      if (scanned == 0) return false;
      line.assign(buffer_.data() + next_, scanned);
      position_ += scanned;
      next_ = end_;
      return true;
    }
  }
}

}  // namespace hifx
