// The shell port: the one door from the engine to a person. Log lines,
// progress, and questions all pass through it; the command line, the desktop
// program and the tests each stand behind it in their own way.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hifx {

enum class MsgButtons { OK, OKCancel, YesNo, YesNoCancel, AbortRetryIgnore };
enum class MsgIcon { None, Critical, Question, Exclamation, Information };
enum class MsgAnswer { OK, Cancel, Abort, Retry, Ignore, Yes, No };

class IShell {
 public:
  virtual ~IShell() = default;

  // One line of the run log.
  virtual void WriteLog(std::string_view line) = 0;
  // Progress of the running conversion: position out of total.
  virtual void SetProgressButton(int32_t total, int32_t position) = 0;
  // A message box; returns the button the person chose.
  virtual MsgAnswer MsgBox(std::string_view text, std::string_view title = {},
                           MsgButtons buttons = MsgButtons::OK,
                           MsgIcon icon = MsgIcon::None) = 0;
};

std::string_view ButtonsName(MsgButtons buttons);
std::string_view AnswerName(MsgAnswer answer);

}  // namespace hifx
