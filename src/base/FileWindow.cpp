#include "base/FileWindow.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/BinaryFile.h"
#include "base/Failure.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace hifx {
namespace {

// A read handle that lets others rename, replace or remove the file while it
// is open, as they may on every other system.
int OpenShared(const std::filesystem::path& path) {
#ifdef _WIN32
  HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return -1;
  const int handle = _open_osfhandle(reinterpret_cast<intptr_t>(file), _O_RDONLY | _O_BINARY);
  if (handle < 0) CloseHandle(file);
  return handle;
#else
  return ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
#endif
}

}  // namespace

void FileWindow::Open(const std::filesystem::path& path, uint64_t maxSize) {
  Close();
  CheckReadableFile(path);
  const int handle = OpenShared(path);
  if (handle < 0) throw Failure(FailureKind::MissingInput, fail::kPermissionDenied, "Permission denied:", path);
  handle_ = handle;
  path_ = path;
#ifdef _WIN32
  const int64_t length = _lseeki64(handle, 0, SEEK_END);
#else
  struct stat st {};
  const int64_t length = ::fstat(handle, &st) == 0 ? static_cast<int64_t>(st.st_size) : -1;
#endif
  if (length < 0) {
    Close();
    throw Failure(FailureKind::BadInput, fail::kPathAccess, "Path/File access error:", path);
  }
  if (static_cast<uint64_t>(length) > maxSize) {
    Close();
    throw Failure(FailureKind::BadInput, fail::kOutOfMemory, "File too large to read:", path);
  }
  size_ = static_cast<uint64_t>(length);
}

void FileWindow::Close() {
  if (handle_ >= 0) {
#ifdef _WIN32
    _close(handle_);
#else
    ::close(handle_);
#endif
    handle_ = -1;
  }
  size_ = 0;
  window_.reset();
  windowSize_ = 0;
  windowAt_ = 0;
}

size_t FileWindow::ReadAt(uint64_t offset, char* bytes, size_t size) {
  size_t done = 0;
  while (done < size) {
#ifdef _WIN32
    if (_lseeki64(handle_, static_cast<__int64>(offset + done), SEEK_SET) < 0) break;
    const int n = _read(handle_, bytes + done, static_cast<unsigned>(std::min<size_t>(size - done, 0x40000000)));
#else
    const ssize_t n = ::pread(handle_, bytes + done, size - done, static_cast<off_t>(offset + done));
    if (n < 0 && errno == EINTR) continue;
#endif
    if (n < 0) throw Failure(FailureKind::BadInput, fail::kPathAccess, "Path/File access error:", path_);
    if (n == 0) break;
    done += static_cast<size_t>(n);
  }
  return done;
}

void FileWindow::Fill(uint64_t offset) {
  if (!window_) window_ = std::make_unique_for_overwrite<char[]>(kWindowBytes);
  const uint64_t left = offset < size_ ? size_ - offset : 0;
  windowSize_ = ReadAt(offset, window_.get(), static_cast<size_t>(std::min<uint64_t>(kWindowBytes, left)));
  windowAt_ = offset;
}

size_t FileWindow::Read(uint64_t offset, char* out, size_t size) {
  if (handle_ < 0 || offset >= size_) return 0;
  size = static_cast<size_t>(std::min<uint64_t>(size, size_ - offset));
  if (size == 0) return 0;  // nothing to copy, from a window perhaps not yet made
  // A stretch larger than the window is read straight into place.
  if (size > kWindowBytes) return ReadAt(offset, out, size);
  if (offset < windowAt_ || offset + size > windowAt_ + windowSize_) Fill(offset);
  const size_t from = static_cast<size_t>(offset - windowAt_);
  const size_t count = from < windowSize_ ? std::min(size, windowSize_ - from) : 0;
  std::memcpy(out, window_.get() + from, count);
  return count;
}

void FileWindow::Read(uint64_t offset, size_t size, std::string& out) {
  out.resize(offset < size_ ? static_cast<size_t>(std::min<uint64_t>(size, size_ - offset)) : 0);
  out.resize(Read(offset, out.data(), out.size()));
}

}  // namespace hifx
