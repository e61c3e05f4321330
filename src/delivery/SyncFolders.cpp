#include "delivery/SyncFolders.h"

#include <algorithm>
#include <random>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#endif

#include "base/AtomicFile.h"
#include "base/CaseBlind.h"
#include "base/Failure.h"
#include "base/FileNames.h"

namespace hifx {
namespace {

namespace fs = std::filesystem;

// Writes text into buffer as the desktop's libraries do: as much as fits
// before a closing zero byte.
void WriteZ(std::string& buffer, std::string_view text) {
  if (buffer.empty()) return;
  const size_t n = std::min(text.size(), buffer.size() - 1);
  std::copy_n(text.begin(), n, buffer.begin());
  buffer[n] = '\0';
}

// The entry of folder called name: the exact name first, then the first name
// in byte order that differs from it in case only.
std::optional<fs::path> FindEntry(const fs::path& folder, const std::string& name) {
  std::error_code ec;
  if (fs::exists(folder / name, ec)) return folder / name;
  std::optional<std::string> found;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string entry = it->path().filename().string();
    if (EqualsCaseBlind(entry, name) && (!found || entry < *found)) found = entry;
  }
  if (!found) return std::nullopt;
  return folder / *found;
}

}  // namespace

bool IsUserName(std::string_view name) {
  return !name.empty() && name.front() != '.' &&
         name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

SyncFolders::SyncFolders(fs::path root) : root_(std::move(root)) { ReadUsers(); }

void SyncFolders::ReadUsers() {
  users_.clear();
  std::error_code ec;
  for (fs::directory_iterator it(root_, ec), end; !ec && it != end; it.increment(ec)) {
    std::error_code typeError;
    const std::string name = it->path().filename().string();
    // Sync tools keep their own state in folders whose names begin with ".".
    if (IsUserName(name) && it->is_directory(typeError)) users_.push_back(name);
  }
  std::sort(users_.begin(), users_.end());
}

std::optional<size_t> SyncFolders::FindUser(std::string_view name) const {
  const auto exact = std::lower_bound(users_.begin(), users_.end(), name);
  if (exact != users_.end() && *exact == name) return static_cast<size_t>(exact - users_.begin());
  const auto loose = std::find_if(users_.begin(), users_.end(),
                                  [&](const std::string& user) { return EqualsCaseBlind(user, name); });
  if (loose == users_.end()) return std::nullopt;
  return static_cast<size_t>(loose - users_.begin());
}

std::optional<std::string> SyncFolders::UserOf(int32_t id) const {
  if (id < 1 || static_cast<size_t>(id) > users_.size()) return std::nullopt;
  return users_[static_cast<size_t>(id) - 1];
}

int32_t SyncFolders::UmGetUserCount() const { return static_cast<int32_t>(users_.size()); }

int SyncFolders::UmGetUserID(int32_t index, int32_t& id) const {
  if (index < 0 || static_cast<size_t>(index) >= users_.size()) return install::kNoUser;
  id = index + 1;
  return install::kDone;
}

int SyncFolders::UmGetUserName(int32_t id, std::string& buffer) const {
  const auto user = UserOf(id);
  WriteZ(buffer, user.value_or(""));
  return user ? install::kDone : install::kNoUser;
}

int SyncFolders::UmGetUserDirectory(int32_t id, std::string& buffer) const {
  const auto user = UserOf(id);
  WriteZ(buffer, user ? (root_ / *user).string() : "");
  return user ? install::kDone : install::kNoUser;
}

int32_t SyncFolders::UmGetIDFromName(std::string_view name) const {
  const auto at = FindUser(name);
  return at ? static_cast<int32_t>(*at) + 1 : 0;
}

int SyncFolders::UmAddUser(std::string_view name) {
  if (!IsUserName(name)) return install::kNoUser;
  const auto at = FindUser(name);
  const std::string folder = at ? users_[*at] : std::string(name);
  std::error_code ec;
  fs::create_directories(root_ / folder / kInstallFolder, ec);
  if (ec) return install::kFailed;
  if (!at) ReadUsers();
  return install::kDone;
}

namespace {

// The copy is made under a hidden name and renamed into place, so a sync
// never takes half a file.
bool QueueCopy(const fs::path& file, const fs::path& queue, const std::string& name, std::string& why) {
  const fs::path target = queue / name;
#ifdef _WIN32
  // Hidden in Windows' own sense as well while it is being written.
  std::random_device random;
  const std::string from = file.string();
  const std::string hidden = (queue / ("." + name + "." + std::to_string(random()) + ".tmp")).string();
  const std::string to = target.string();
  const bool done = CopyFileA(from.c_str(), hidden.c_str(), TRUE) &&
                    SetFileAttributesA(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN) &&
                    MoveFileExA(hidden.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH);
  if (done) SetFileAttributesA(to.c_str(), FILE_ATTRIBUTE_NORMAL);
  else DeleteFileA(hidden.c_str());
  if (!done) why = "the copy or its move into place was refused (Windows error " + std::to_string(GetLastError()) + ")";
  return done;
#else
  try {
    ReplaceFile(target, ReadWholeFile(file));
    return true;
  } catch (const Failure& failure) {
    why = failure.Description();
    return false;
  }
#endif
}

}  // namespace

int SyncFolders::Failed(const std::string& what, const fs::path& file, const std::string& why) {
  problem_ = "Could not " + what + " " + file.string() + ": " + why;
  return install::kFailed;
}

int SyncFolders::PltInstallFile(std::string_view user, const fs::path& file) {
  problem_.clear();
  const auto at = FindUser(user);
  if (!at) return install::kNoUser;
  std::error_code ec;
  if (!fs::is_regular_file(file, ec)) return install::kNotFound;
  const fs::path queue = root_ / users_[*at] / kInstallFolder;
  fs::create_directories(queue, ec);
  if (ec) return Failed("make the queue", queue, ec.message());
  const std::string name = file.filename().string();
  if (FindEntry(queue, name)) return install::kAlreadyQueued;

  std::string why;
  return QueueCopy(file, queue, name, why) ? install::kDone : Failed("queue", file, why);
}

int SyncFolders::PltRemoveInstallFile(std::string_view user, std::string_view fileName) {
  problem_.clear();
  const auto at = FindUser(user);
  if (!at) return install::kNoUser;
  const std::string name = FileNamePart(fileName);
  if (name.empty()) return install::kNotFound;
  const auto queued = FindEntry(root_ / users_[*at] / kInstallFolder, name);
  if (!queued) return install::kNotFound;
  std::error_code ec;
  fs::remove(*queued, ec);
  return ec ? Failed("remove the queued", *queued, ec.message()) : install::kDone;
}

}  // namespace hifx
