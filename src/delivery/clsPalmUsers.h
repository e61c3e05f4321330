// The desktop's users: one a handheld unit, read once when the object is made.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "delivery/SyncFolders.h"

namespace hifx {

struct PalmUser {
  int32_t UserID = 0;
  std::string UserName;
  std::string UserDirectory;
};

class clsPalmUsers {
 public:
  // The buffers the names and folders are read into, closing zero included.
  static constexpr size_t kNameBuffer = 50;
  static constexpr size_t kFolderBuffer = 150;

  // Raises overflow (6) when there are more users than a count can hold.
  explicit clsPalmUsers(const SyncFolders& library);

  int16_t UserCount() const { return userCount_; }
  // The users from 1 to UserCount, in the library's order.
  const std::vector<PalmUser>& Users() const { return users_; }
  std::vector<std::string> UserNames() const;

  // A selector from 1 to UserCount gives that user's name and folder; 0 looks
  // the given name up in the library. Any other selector changes nothing.
  void GetUserData(int32_t selector, std::string& name, std::string& folder) const;

  // The text up to its first zero character.
  static std::string CleanZ(std::string_view text);

 private:
  // The user's name and folder through buffers of the sizes above.
  PalmUser ReadUser(int32_t id) const;

  const SyncFolders& library_;
  int16_t userCount_ = 0;
  std::vector<PalmUser> users_;
};

}  // namespace hifx
