#include "base/FileDevice.h"

#include <cerrno>
#include <system_error>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace hifx {
namespace {

FileDevice& SystemDevice() {
  static FileDevice device;
  return device;
}

FileDevice* current = nullptr;

}  // namespace

int FileDevice::Open(const std::filesystem::path& path, bool createNew, bool ownerOnly) {
#ifdef _WIN32
  (void)ownerOnly;  // the folder's own rights hold on Windows
  const int flags = _O_RDWR | _O_CREAT | _O_BINARY | (createNew ? _O_EXCL : 0);
  return _wopen(path.c_str(), flags, _S_IREAD | _S_IWRITE);
#else
  const int flags = O_RDWR | O_CREAT | O_CLOEXEC | (createNew ? O_EXCL : 0);
  return ::open(path.c_str(), flags, ownerOnly ? 0600 : 0666);
#endif
}

int64_t FileDevice::WriteAt(int handle, const char* bytes, size_t size, uint64_t offset) {
#ifdef _WIN32
  if (_lseeki64(handle, static_cast<__int64>(offset), SEEK_SET) < 0) return -1;
  return _write(handle, bytes, static_cast<unsigned>(size > 0x40000000 ? 0x40000000 : size));
#else
  return ::pwrite(handle, bytes, size, static_cast<off_t>(offset));
#endif
}

int FileDevice::Sync(int handle) {
#ifdef _WIN32
  return _commit(handle);
#else
  return ::fsync(handle);
#endif
}

int FileDevice::Close(int handle) {
#ifdef _WIN32
  return _close(handle);
#else
  return ::close(handle);
#endif
}

int FileDevice::Rename(const std::filesystem::path& from, const std::filesystem::path& to) {
#ifdef _WIN32
  if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) return 0;
  errno = GetLastError() == ERROR_ACCESS_DENIED ? EACCES : EIO;
  return -1;
#else
  return ::rename(from.c_str(), to.c_str());
#endif
}

int FileDevice::Remove(const std::filesystem::path& path) {
  std::error_code ec;
  if (std::filesystem::remove(path, ec) || !ec) return 0;
  errno = ec.value();
  return -1;
}

FileDevice& Device() { return current != nullptr ? *current : SystemDevice(); }

ScopedFileDevice::ScopedFileDevice(FileDevice& device) : previous_(current) { current = &device; }
ScopedFileDevice::~ScopedFileDevice() { current = previous_; }

}  // namespace hifx
