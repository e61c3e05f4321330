// The person's shell without the conversion's log: its questions and
// prompts still reach the person, its lines and its progress don't. A check
// of a route file runs through it, so that neither the terminal's output nor
// the main window's log box gets the conversion's lines.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Shell.h"

namespace hifx::app {

class UnloggedShell final : public IShell {
 public:
  explicit UnloggedShell(IShell& person) : person_(person) {}
  void WriteLog(std::string_view) override {}
  void SetProgressButton(int32_t, int32_t) override {}
  MsgAnswer MsgBox(std::string_view text, std::string_view title, MsgButtons buttons, MsgIcon icon) override {
    return person_.MsgBox(text, title, buttons, icon);
  }
  bool PromptVariables(const std::vector<PromptField>& fields, std::vector<std::string>& values) override {
    return person_.PromptVariables(fields, values);
  }
  std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                      std::string_view defaultValue) override {
    return person_.InputBox(prompt, title, defaultValue);
  }

 private:
  IShell& person_;
};

}  // namespace hifx::app
