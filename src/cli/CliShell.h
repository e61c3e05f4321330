// The shell port for the command line: log lines to standard output, message
// boxes to standard error as "TITLE: TEXT", questions asked on the terminal
// or answered by --yes / --no, a progress bar only on a terminal.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Shell.h"

namespace hifx {

// Standard output and error carry the engine's bytes as they are: on Windows
// too a line ends in LF alone, so a script reads the same words everywhere.
void UseBinaryStandardStreams();

// Bytes onto standard output, written as a file is: a write that doesn't
// all reach it (a full disk or a closed pipe behind a redirection) raises,
// naming standard output and why.
void WriteOut(std::string_view bytes);
// Raises in the same words when anything written to standard output before
// did not reach it.
void CheckStandardOutput();

// Whether standard input (0) or standard error (2) is a terminal: on Windows a
// console, which the NUL device, a character device too, is not.
bool IsTerminal(int fd);

class CliShell final : public IShell {
 public:
  // presetAnswer: true for --yes, false for --no, nullopt to ask. sets: the
  // FIELD=VALUE answers to run-time prompts.
  CliShell(std::optional<bool> presetAnswer, bool interactive, bool progressOnTerminal,
           std::vector<std::string> sets = {});

  void WriteLog(std::string_view line) override;
  void SetProgressButton(int32_t total, int32_t position) override;
  MsgAnswer MsgBox(std::string_view text, std::string_view title, MsgButtons buttons,
                   MsgIcon icon) override;
  bool PromptVariables(const std::vector<PromptField>& fields,
                       std::vector<std::string>& values) override;
  std::string ChooseUnit(const std::vector<std::string>& units) override;
  std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                      std::string_view defaultValue) override;

  int MessageCount() const { return messages_; }
  // Whether a yes/no question of the run is answered No without asking: by
  // --no, or with no terminal to ask on and no --yes.
  bool AnswersNo() const { return presetAnswer_ ? !*presetAnswer_ : !interactive_; }
  // The log on standard error, where standard output carries a JSON summary.
  void LogToStandardError() { log_ = stderr; }

 private:
  MsgAnswer Ask(MsgButtons buttons);
  std::optional<std::string> ReadLine(const std::string& question);
  std::optional<std::string> PresetValue(const std::string& name) const;
  void ClearProgress();

  std::optional<bool> presetAnswer_;
  bool interactive_;
  bool progressOnTerminal_;
  bool progressShown_ = false;
  int messages_ = 0;
  std::vector<std::string> sets_;
  std::FILE* log_ = stdout;
};

}  // namespace hifx
