#include "base/BinaryFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>
#include <utility>

#include "base/Failure.h"
#include "base/FileDevice.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#else
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace hifx {
namespace {

// A file that can't be opened for writing, by its name and the system's
// reason, under the number the system has always given that reason.
CreateFailure OpenFailure(int err, const std::filesystem::path& path) {
  int number = fail::kPathAccess;
  switch (err) {
    case ENOENT: number = fail::kFileNotFound; break;
    case ENOSPC:
    case EFBIG: number = fail::kDiskFull; break;
    case EACCES:
    case EPERM: number = fail::kPermissionDenied; break;
    default: break;
  }
  return CreateFailure(number, "Could not open {} for writing", path, std::strerror(err));
}

}  // namespace

BinaryFile::BinaryFile(BinaryFile&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)),
      failed_(other.failed_),
      path_(std::move(other.path_)),
      size_(other.size_),
      mapped_(std::exchange(other.mapped_, nullptr)),
      mappedSize_(std::exchange(other.mappedSize_, 0)) {}

BinaryFile& BinaryFile::operator=(BinaryFile&& other) noexcept {
  if (this != &other) {
    Close();
    fd_ = std::exchange(other.fd_, -1);
    failed_ = other.failed_;
    path_ = std::move(other.path_);
    size_ = other.size_;
    mapped_ = std::exchange(other.mapped_, nullptr);
    mappedSize_ = std::exchange(other.mappedSize_, 0);
  }
  return *this;
}

uint8_t* BinaryFile::MapHead(uint64_t size) {
  Unmap();
#ifdef _WIN32
  (void)size;
  return nullptr;
#else
  if (fd_ < 0 || size == 0 || size > size_ || !Device().MapsFiles()) return nullptr;
  // The file was opened write-only; a shared mapping needs it readable too.
  void* p = ::mmap(nullptr, size, PROT_WRITE, MAP_SHARED, fd_, 0);
  if (p == MAP_FAILED) return nullptr;
  mapped_ = static_cast<uint8_t*>(p);
  mappedSize_ = size;
  return mapped_;
#endif
}

void BinaryFile::Unmap() {
#ifndef _WIN32
  if (mapped_ != nullptr) ::munmap(mapped_, mappedSize_);
#endif
  mapped_ = nullptr;
  mappedSize_ = 0;
}

BinaryFile::~BinaryFile() { Close(); }

BinaryFile BinaryFile::OpenForWrite(const std::filesystem::path& path) { return Open(path, false, false); }

BinaryFile BinaryFile::CreateNew(const std::filesystem::path& path, bool ownerOnly) {
  return Open(path, true, ownerOnly);
}

BinaryFile BinaryFile::Open(const std::filesystem::path& path, bool createNew, bool ownerOnly) {
  BinaryFile file;
  file.path_ = path;
  file.fd_ = Device().Open(path, createNew, ownerOnly);
  if (file.fd_ < 0) throw OpenFailure(errno, path);
#ifdef _WIN32
  struct _stat64 st {};
  const bool regular = _fstat64(file.fd_, &st) == 0 && (st.st_mode & _S_IFREG) != 0;
#else
  struct stat st {};
  const bool regular = ::fstat(file.fd_, &st) == 0 && S_ISREG(st.st_mode);
#endif
  if (!regular) throw Failure(fail::kPathAccess, "Path/File access error: " + path.string());
  file.size_ = static_cast<uint64_t>(st.st_size);
  return file;
}

void BinaryFile::Fail(const char* what, int err) {
  failed_ = true;
  throw WriteFailure(err == ENOSPC || err == EFBIG ? fail::kDiskFull : fail::kPathAccess, std::string("Could not ") + what,
                     path_, std::strerror(err));
}

void BinaryFile::WriteAt(uint64_t offset, std::string_view bytes) {
  if (fd_ < 0) throw Failure(fail::kBadFileName);
  const char* p = bytes.data();
  size_t left = bytes.size();
  uint64_t at = offset;
  while (left > 0) {
    const int64_t n = Device().WriteAt(fd_, p, left, at);
    if (n < 0 && errno == EINTR) continue;
    // A write that takes nothing is a full disk as much as one that fails.
    if (n <= 0) Fail("write", n == 0 ? ENOSPC : errno);
    p += n;
    left -= static_cast<size_t>(n);
    at += static_cast<uint64_t>(n);
  }
  if (at > size_) size_ = at;
}

void BinaryFile::Finish() {
  if (fd_ < 0) return;
  if (failed_) {
    Close();
    throw WriteFailure(fail::kPathAccess, "Could not write", path_, "an earlier write failed");
  }
  Unmap();
  const int handle = std::exchange(fd_, -1);
  int err = 0;
  if (Device().Sync(handle) != 0) err = errno;
  if (Device().Close(handle) != 0 && err == 0) err = errno;
  if (err != 0) Fail("finish", err);
}

void BinaryFile::Close() {
  Unmap();
  if (fd_ >= 0) {
    Device().Close(fd_);
    fd_ = -1;
  }
}

void CheckReadableFile(const std::filesystem::path& path) {
  std::error_code ec;
  const auto status = std::filesystem::status(path, ec);
  if (ec || !std::filesystem::exists(status)) {
    throw Failure(FailureKind::MissingInput, fail::kFileNotFound, "File not found:", path);
  }
  if (!std::filesystem::is_regular_file(status)) {
    throw Failure(FailureKind::BadInput, fail::kPathAccess, "Path/File access error:", path);
  }
}

std::string ReadFileHead(const std::filesystem::path& path, size_t count) {
  CheckReadableFile(path);
  std::ifstream in(path, std::ios::binary);
  if (!in) throw Failure(FailureKind::MissingInput, fail::kPermissionDenied, "Permission denied:", path);
  std::string head(count, '\0');
  in.read(head.data(), static_cast<std::streamsize>(count));
  head.resize(static_cast<size_t>(in.gcount()));
  return head;
}

std::string ReadWholeFile(const std::filesystem::path& path, uint64_t maxSize) {
  CheckReadableFile(path);
  std::error_code ec;
  std::ifstream in(path, std::ios::binary);
  if (!in) throw Failure(FailureKind::MissingInput, fail::kPermissionDenied, "Permission denied:", path);
  std::string data;
  const auto expected = std::filesystem::file_size(path, ec);
  if (!ec && expected <= maxSize) {
    // The size the file has now is read straight into place; what it may
    // have grown since comes in chunks.
    data.resize(static_cast<size_t>(expected));
    in.read(data.data(), static_cast<std::streamsize>(expected));
    data.resize(static_cast<size_t>(in.gcount()));
  }
  char chunk[65536];
  while (in) {
    in.read(chunk, sizeof chunk);
    const auto got = static_cast<size_t>(in.gcount());
    if (data.size() + got > maxSize) {
      throw Failure(FailureKind::BadInput, fail::kOutOfMemory, "File too large to read:", path);
    }
    data.append(chunk, got);
  }
  if (in.bad()) throw Failure(FailureKind::BadInput, fail::kPathAccess, "Path/File access error:", path);
  return data;
}

}  // namespace hifx
