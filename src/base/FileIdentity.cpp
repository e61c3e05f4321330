#include "base/FileIdentity.h"

#include <system_error>

namespace hifx {

namespace fs = std::filesystem;

namespace {

// The name with every symbolic link resolved, its own last one included even
// when it points at nothing yet, made absolute.
fs::path ResolvedName(const fs::path& path) {
  std::error_code ec;
  fs::path name = fs::absolute(path, ec);
  if (ec) name = path;
  // A link that points at nothing yet is followed by hand: writing to it makes
  // its target. Forty is the kernel's own limit of links in a chain.
  for (int hops = 0; hops < 40 && fs::is_symlink(fs::symlink_status(name, ec)); ++hops) {
    const fs::path target = fs::read_symlink(name, ec);
    if (ec) break;
    name = target.is_absolute() ? target : name.parent_path() / target;
  }
  fs::path resolved = fs::weakly_canonical(name, ec);
  return ec ? name.lexically_normal() : resolved;
}

}  // namespace

bool SameFile(const fs::path& a, const fs::path& b) {
  std::error_code ec;
  const bool aExists = fs::exists(a, ec);
  const bool bExists = fs::exists(b, ec);
  if (aExists && bExists) return fs::equivalent(a, b, ec) && !ec;
  if (aExists != bExists) return false;
  return ResolvedName(a) == ResolvedName(b);
}

bool IsReplaceable(const fs::path& path) {
  std::error_code ec;
  const fs::file_status status = fs::status(path, ec);
  return !fs::exists(status) || fs::is_regular_file(status);
}

}  // namespace hifx
