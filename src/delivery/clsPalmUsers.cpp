#include "delivery/clsPalmUsers.h"

#include "base/Numbers.h"

namespace hifx {

clsPalmUsers::clsPalmUsers(const SyncFolders& library)
    : library_(library), userCount_(ToInt16(library.UmGetUserCount())) {
  users_.resize(static_cast<size_t>(userCount_));
  for (int32_t index = 0; index < userCount_; ++index) {
    int32_t id = 0;
    library_.UmGetUserID(index, id);
    users_[static_cast<size_t>(index)] = ReadUser(id);
  }
}

PalmUser clsPalmUsers::ReadUser(int32_t id) const {
  std::string name(kNameBuffer, ' ');
  std::string folder(kFolderBuffer, ' ');
  library_.UmGetUserName(id, name);
  library_.UmGetUserDirectory(id, folder);
  return {id, CleanZ(name), CleanZ(folder)};
}

std::vector<std::string> clsPalmUsers::UserNames() const {
  std::vector<std::string> names;
  names.reserve(users_.size());
  for (const PalmUser& user : users_) names.push_back(user.UserName);
  return names;
}

void clsPalmUsers::GetUserData(int32_t selector, std::string& name, std::string& folder) const {
  if (selector > 0 && selector <= userCount_) {
    const PalmUser& user = users_[static_cast<size_t>(selector) - 1];
    name = user.UserName;
    folder = user.UserDirectory;
  } else if (selector == 0) {
    PalmUser user = ReadUser(library_.UmGetIDFromName(name));
    name = std::move(user.UserName);
    folder = std::move(user.UserDirectory);
  }
}

std::string clsPalmUsers::CleanZ(std::string_view text) {
  return std::string(text.substr(0, text.find('\0')));
}

}  // namespace hifx
