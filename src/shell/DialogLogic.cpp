#include "shell/DialogLogic.h"

#include "base/CaseBlind.h"
#include "base/Text.h"

namespace hifx::shell {

LoginResult CheckLogin(clsAdvanced& advanced, std::string_view name, std::string_view password) {
  const std::string id(Trim(name));
  if (id.empty()) return LoginResult::NameMissing;
  const std::string given(Trim(password));
  if (given.empty()) return LoginResult::PasswordMissing;
  std::string loginID, stored, rights;
  if (advanced.GetLogin(Value(id), loginID, stored, rights) < 0 || loginID.empty() ||
      UpperCase(given) != UpperCase(stored)) {
    return LoginResult::Invalid;
  }
  return rights.find('S') != std::string::npos ? LoginResult::Accepted : LoginResult::NotSupervisor;
}

std::string_view LoginMessage(LoginResult result) {
  switch (result) {
    case LoginResult::NameMissing:
      return "Login Required!";
    case LoginResult::PasswordMissing:
      return "Password Required!";
    case LoginResult::NotSupervisor:
      return "Not a supervisor!";
    case LoginResult::Invalid:
      return "Invalid User ID or Password, try again!";
    case LoginResult::Accepted:
      break;
  }
  return {};
}

std::optional<std::string> MissingPrompt(const std::vector<PromptField>& fields,
                                         const std::vector<std::string>& values) {
  for (const bool text : {true, false}) {
    for (size_t i = 0; i < fields.size(); ++i) {
      if ((fields[i].dataType == 0) != text || !fields[i].required) continue;
      if (i >= values.size() || Trim(values[i]).empty()) return fields[i].name;
    }
  }
  return std::nullopt;
}

bool IsNumberPromptKey(char key) {
  return (key >= '0' && key <= '9') || key == '.' || key == '-' || key == '\b';
}

int NumberPromptLength(int32_t dataType) {
  switch (dataType) {
    case 1:
      return 6;  // -32768
    case 2:
      return 11;  // -2147483648
    default:
      return 24;
  }
}

}  // namespace hifx::shell
