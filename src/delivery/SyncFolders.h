// The desktop sync folders, seen through the calls the delivery code has
// always made of the desktop's user and install libraries. The sync root
// holds one folder a handheld user, named as the user; each user's "Install"
// folder is the queue of files for the unit's next sync.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hifx {

// Result codes of the install calls.
namespace install {
inline constexpr int kDone = 0;
inline constexpr int kAlreadyQueued = -512;  // a file of that name is queued already
inline constexpr int kNotFound = -513;       // no such file to queue, or none queued to remove
inline constexpr int kNoUser = -523;         // no such user, or a name that can't be one
inline constexpr int kFailed = -1;           // the file system refused the copy or the removal
}  // namespace install

// The folder of a user that holds the queue.
inline constexpr std::string_view kInstallFolder = "Install";

// True for a name that can be a user's folder: not empty, not starting with
// ".", and holding no "/", "\" or zero byte.
bool IsUserName(std::string_view name);

class SyncFolders {
 public:
  // Reads the users of the sync root; a missing root has none.
  explicit SyncFolders(std::filesystem::path root);

  const std::filesystem::path& Root() const { return root_; }

  // The users are numbered from 1 in the byte order of their names.
  int32_t UmGetUserCount() const;
  // The ID of the user at index (from 0); kNoUser past the last.
  int UmGetUserID(int32_t index, int32_t& id) const;
  // Write the user's name, or its folder, into buffer as far as it fits, ended
  // by a zero byte; the rest of buffer is left as it was. An ID that is no
  // user writes an empty text and gives kNoUser.
  int UmGetUserName(int32_t id, std::string& buffer) const;
  int UmGetUserDirectory(int32_t id, std::string& buffer) const;
  // The ID of the named user, 0 for none.
  int32_t UmGetIDFromName(std::string_view name) const;
  // Makes sure the user's folder and its Install folder exist.
  int UmAddUser(std::string_view name);

  // Queues a copy of file in the user's Install folder under the file's own
  // name.
  int PltInstallFile(std::string_view user, const std::filesystem::path& file);
  // Deletes the queued copy of the file name's last part.
  int PltRemoveInstallFile(std::string_view user, std::string_view fileName);
  // What the file system said when the last call gave kFailed, with the
  // file's name; empty when it gave something else.
  const std::string& LastProblem() const { return problem_; }

 private:
  void ReadUsers();
  // Position in users_ of a name: the exact name first, then the first name
  // that differs from it in case only.
  std::optional<size_t> FindUser(std::string_view name) const;
  std::optional<std::string> UserOf(int32_t id) const;

  int Failed(const std::string& what, const std::filesystem::path& file, const std::string& why);

  std::filesystem::path root_;
  std::vector<std::string> users_;
  std::string problem_;
};

}  // namespace hifx
