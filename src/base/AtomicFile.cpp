#include "base/AtomicFile.h"

#include <cerrno>
#include <cstring>
#include <random>
#include <system_error>
#include <utility>

#include "base/Failure.h"
#include "base/FileDevice.h"

#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

namespace hifx {
namespace {

namespace fs = std::filesystem;

fs::path HiddenBeside(const fs::path& path) {
  std::random_device random;
  return path.parent_path() / ("." + path.filename().string() + "." + std::to_string(random()) + ".tmp");
}

void SyncFolder(const fs::path& folder) {
#ifndef _WIN32
  const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;  // the rename stands; only its durability is the system's
  ::fsync(fd);
  ::close(fd);
#else
  (void)folder;  // the rename was asked to write through
#endif
}

}  // namespace

FileReplacement::FileReplacement(fs::path target) : target_(std::move(target)), written_(HiddenBeside(target_)) {}

FileReplacement::FileReplacement(FileReplacement&& other) noexcept
    : target_(std::move(other.target_)), written_(std::exchange(other.written_, {})) {}

FileReplacement& FileReplacement::operator=(FileReplacement&& other) noexcept {
  if (this != &other) {
    Abandon();
    target_ = std::move(other.target_);
    written_ = std::exchange(other.written_, {});
  }
  return *this;
}

FileReplacement::~FileReplacement() { Abandon(); }

void FileReplacement::Commit() {
  if (!Active()) return;
  if (Device().Rename(written_, target_) != 0) {
    const int err = errno;
    Abandon();
    throw WriteFailure(fail::kPathAccess, "Could not replace", target_, std::strerror(err));
  }
  written_.clear();
  SyncFolder(target_.parent_path());
}

void FileReplacement::Abandon() {
  if (!Active()) return;
  Device().Remove(written_);
  written_.clear();
}

namespace {

bool Replace(const fs::path& path, const std::string& bytes, bool ownerOnly,
             const std::function<bool(const fs::path& written)>& acceptable) {
  FileReplacement replacement(path);
  BinaryFile file = BinaryFile::CreateNew(replacement.Written(), ownerOnly);
  file.Append(bytes);
  file.Finish();
  if (acceptable && !acceptable(replacement.Written())) return false;
  replacement.Commit();
  return true;
}

}  // namespace

void ReplaceFile(const fs::path& path, const std::string& bytes, bool ownerOnly) {
  Replace(path, bytes, ownerOnly, {});
}

bool ReplaceFileIf(const fs::path& path, const std::string& bytes,
                   const std::function<bool(const fs::path& written)>& acceptable) {
  return Replace(path, bytes, false, acceptable);
}

OutputFile::OutputFile(const fs::path& path, bool keepOld)
    : replacement_(path), file_(BinaryFile::CreateNew(replacement_.Written())) {
  std::error_code ec;
  if (keepOld && fs::is_regular_file(path, ec)) file_.Append(ReadWholeFile(path));
  buffer_.reserve(kBufferSize);
}

void OutputFile::Write(std::string_view bytes) {
  if (buffer_.size() + bytes.size() > kBufferSize) Flush();
  if (bytes.size() >= kBufferSize) {
    file_.Append(bytes);
  } else {
    buffer_.append(bytes);
  }
}

void OutputFile::Flush() {
  file_.Append(buffer_);
  buffer_.clear();
}

void OutputFile::Commit() {
  try {
    Flush();
    file_.Finish();
    replacement_.Commit();
  } catch (...) {
    failed_ = true;
    throw;
  }
}

}  // namespace hifx
