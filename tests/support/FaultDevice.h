// A file device that fails the way a full disk or a pulled card fails: after
// a number of bytes, or at the sync, the close or the rename. Only files
// whose name holds `only` are failed, so the other files of a run go on.
#pragma once

#include <algorithm>
#include <cerrno>
#include <string>

#include "base/FileDevice.h"

namespace hifx::test {

enum class FaultAt { Bytes, Sync, Close, Rename };

class FaultDevice final : public FileDevice {
 public:
  FaultDevice(FaultAt at, std::string only, uint64_t bytes = 0) : at_(at), only_(std::move(only)), left_(bytes) {}

  int Open(const std::filesystem::path& path, bool createNew, bool ownerOnly) override {
    const int handle = FileDevice::Open(path, createNew, ownerOnly);
    if (handle >= 0 && Matches(path)) failing_ = handle;
    return handle;
  }
  int64_t WriteAt(int handle, const char* bytes, size_t size, uint64_t offset) override {
    if (at_ == FaultAt::Bytes && handle == failing_) {
      if (left_ == 0) return Fail(ENOSPC);
      size = static_cast<size_t>(std::min<uint64_t>(size, left_));  // what fits goes, as on a full disk
      left_ -= size;
    }
    return FileDevice::WriteAt(handle, bytes, size, offset);
  }
  int Sync(int handle) override { return at_ == FaultAt::Sync && handle == failing_ ? Fail(EIO) : FileDevice::Sync(handle); }
  int Close(int handle) override {
    const int result = FileDevice::Close(handle);
    if (at_ == FaultAt::Close && handle == failing_) {
      failing_ = -1;
      return Fail(EIO);  // closed, and the last of the data lost on the way
    }
    return result;
  }
  int Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
    return at_ == FaultAt::Rename && Matches(to) ? Fail(EIO) : FileDevice::Rename(from, to);
  }
  bool MapsFiles() const override { return false; }

 private:
  bool Matches(const std::filesystem::path& path) const {
    return path.filename().string().find(only_) != std::string::npos;
  }
  static int Fail(int err) {
    errno = err;
    return -1;
  }

  FaultAt at_;
  std::string only_;
  uint64_t left_;
  int failing_ = -1;
};

}  // namespace hifx::test
