// The shell port: the one door from the engine to a person. Log lines,
// progress, and questions all pass through it; the command line, the desktop
// program and the tests each stand behind it in their own way.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hifx {

// A line break inside the text of a message box.
inline constexpr const char* kLineBreak = "\n";

enum class MsgButtons { OK, OKCancel, YesNo, YesNoCancel, AbortRetryIgnore };
enum class MsgIcon { None, Critical, Question, Exclamation, Information };
enum class MsgAnswer { OK, Cancel, Abort, Retry, Ignore, Yes, No };

// One field of the run-time prompt window: a map field whose value the
// operator gives each time a conversion runs.
struct PromptField {
  std::string name;
  int32_t dataType = 0;  // 0 text; 1, 2, 3 numbers
  bool required = false;
};

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

  // The run-time prompt window, captioned "Runtime Variables". On OK returns
  // true with one value for each field, in order; false is Cancel. A shell
  // with nobody to ask cancels.
  virtual bool PromptVariables(const std::vector<PromptField>& fields,
                               std::vector<std::string>& values) {
    (void)fields;
    (void)values;
    return false;
  }
  // The unit chooser, captioned "Install To Unit": the chosen unit's name, or
  // empty for Cancel.
  virtual std::string ChooseUnit(const std::vector<std::string>& units) {
    (void)units;
    return {};
  }
  // The status window of a report run: shows the text, or closes the window
  // when the text is empty. True when the person has asked to abort.
  virtual bool ReportStatus(std::string_view text) {
    (void)text;
    return false;
  }
  // A line of text from the person, or nothing for Cancel.
  virtual std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                              std::string_view defaultValue) {
    (void)prompt;
    (void)title;
    (void)defaultValue;
    return std::nullopt;
  }
};

// The answer a question gets when nobody can answer it: No for yes/no
// questions, Cancel where that is offered, Abort for Abort-Retry-Ignore.
MsgAnswer DefaultAnswer(MsgButtons buttons);

// A shell that says nothing and answers every question with its default,
// counting the message boxes it was shown.
class SilentShell final : public IShell {
 public:
  void WriteLog(std::string_view) override {}
  void SetProgressButton(int32_t, int32_t) override {}
  MsgAnswer MsgBox(std::string_view, std::string_view, MsgButtons buttons, MsgIcon) override {
    ++messages_;
    return DefaultAnswer(buttons);
  }
  int MessageCount() const { return messages_; }

 private:
  int messages_ = 0;
};

std::string_view ButtonsName(MsgButtons buttons);
std::string_view AnswerName(MsgAnswer answer);

}  // namespace hifx
