// What the login and the run-time prompt windows decide, apart from
// drawing.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Shell.h"
#include "config/clsAdvanced.h"

namespace hifx::shell {

enum class LoginResult { NameMissing, PasswordMissing, Accepted, NotSupervisor, Invalid };

// The login window's OK: only a supervisor, by a password in any case,
// enters the desktop program.
LoginResult CheckLogin(clsAdvanced& advanced, std::string_view name, std::string_view password);

// The message a refused login shows, captioned "Login" for the first two;
// empty for Accepted.
std::string_view LoginMessage(LoginResult result);

// The OK of the prompt window: the first required field left blank, the
// text fields looked at before the number fields; nothing when all is given.
// Its message is the field's name and " Required".
std::optional<std::string> MissingPrompt(const std::vector<PromptField>& fields,
                                         const std::vector<std::string>& values);

// The keys a number field takes: digits, ".", "-" and backspace.
bool IsNumberPromptKey(char key);

// A number field of the type holds at most so many characters: an integer of
// 16 or 32 bits, or a number.
int NumberPromptLength(int32_t dataType);

}  // namespace hifx::shell
