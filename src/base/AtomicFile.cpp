#include "base/AtomicFile.h"

#include <fstream>
#include <random>
#include <system_error>

#include "base/Failure.h"

namespace hifx {

void ReplaceFile(const std::filesystem::path& path, const std::string& bytes, bool ownerOnly) {
  std::random_device random;
  const std::filesystem::path temp =
      path.parent_path() / (path.filename().string() + ".tmp" + std::to_string(random()));
  {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    if (!out) throw Failure(fail::kPathAccess, "Path/File access error: " + temp.string());
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.flush();
    if (!out) {
      out.close();
      std::error_code ignored;
      std::filesystem::remove(temp, ignored);
      throw Failure(fail::kDiskFull, "Could not write " + path.string());
    }
  }
  std::error_code ec;
  if (ownerOnly) {
    std::filesystem::permissions(temp, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::replace, ec);
  }
  std::filesystem::rename(temp, path, ec);
  if (ec) {
    std::error_code ignored;
    std::filesystem::remove(temp, ignored);
    throw Failure(fail::kPathAccess, "Could not replace " + path.string() + ": " + ec.message());
  }
}

}  // namespace hifx
