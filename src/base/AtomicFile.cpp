#include "base/AtomicFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <random>
#include <system_error>

#include "base/Failure.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace hifx {
namespace {

namespace fs = std::filesystem;

fs::path TemporaryBeside(const fs::path& path) {
  std::random_device random;
  return path.parent_path() / ("." + path.filename().string() + "." + std::to_string(random()) + ".tmp");
}

Failure WriteFailure(const fs::path& path, const std::string& what, int err) {
  return Failure(err == ENOSPC ? fail::kDiskFull : fail::kPathAccess,
                 "Could not " + what + " " + path.string() + ": " + std::strerror(err));
}

#ifndef _WIN32
// The new file made complete and durable under its temporary name.
void WriteDurably(const fs::path& temp, const fs::path& path, const std::string& bytes, bool ownerOnly) {
  const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownerOnly ? 0600 : 0666);
  if (fd < 0) throw WriteFailure(path, "create a new", errno);
  const char* p = bytes.data();
  size_t left = bytes.size();
  int err = 0;
  while (left > 0 && err == 0) {
    const ssize_t n = ::write(fd, p, left);
    if (n < 0 && errno != EINTR) err = errno;
    if (n > 0) {
      p += n;
      left -= static_cast<size_t>(n);
    }
  }
  if (err == 0 && ::fsync(fd) != 0) err = errno;
  if (::close(fd) != 0 && err == 0) err = errno;
  if (err != 0) {
    ::unlink(temp.c_str());
    throw WriteFailure(path, "write", err);
  }
}

void SyncFolder(const fs::path& folder) {
  const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;  // the rename stands; only its durability is the system's
  ::fsync(fd);
  ::close(fd);
}
#else
void WriteDurably(const fs::path& temp, const fs::path& path, const std::string& bytes, bool ownerOnly) {
  (void)ownerOnly;  // the folder's own rights hold on Windows
  {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    if (!out) throw WriteFailure(path, "create a new", errno);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
      std::error_code ignored;
      fs::remove(temp, ignored);
      throw WriteFailure(path, "write", errno != 0 ? errno : EIO);
    }
  }
}

void SyncFolder(const fs::path&) {}
#endif

bool Replace(const fs::path& path, const std::string& bytes, bool ownerOnly,
             const std::function<bool(const fs::path& written)>& acceptable) {
  const fs::path temp = TemporaryBeside(path);
  WriteDurably(temp, path, bytes, ownerOnly);
  std::error_code ec;
  if (acceptable && !acceptable(temp)) {
    fs::remove(temp, ec);
    return false;
  }
  fs::rename(temp, path, ec);
  if (ec) {
    std::error_code ignored;
    fs::remove(temp, ignored);
    throw Failure(fail::kPathAccess, "Could not replace " + path.string() + ": " + ec.message());
  }
  SyncFolder(path.parent_path());
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

}  // namespace hifx
