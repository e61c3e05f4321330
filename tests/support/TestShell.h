// A shell for tests: records every log line, progress call and message box,
// and answers questions from a script (the default answer when it runs out).
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "base/Shell.h"

namespace hifx::test {

struct Question {
  std::string text;
  std::string title;
  MsgButtons buttons;
};

class TestShell final : public IShell {
 public:
  void WriteLog(std::string_view line) override { log.emplace_back(line); }
  void SetProgressButton(int32_t total, int32_t position) override {
    progress.emplace_back(total, position);
  }
  MsgAnswer MsgBox(std::string_view text, std::string_view title, MsgButtons buttons,
                   MsgIcon) override {
    questions.push_back({std::string(text), std::string(title), buttons});
    if (answers.empty()) return buttons == MsgButtons::OK ? MsgAnswer::OK : MsgAnswer::No;
    const MsgAnswer answer = answers.front();
    answers.pop_front();
    return answer;
  }

  std::vector<std::string> log;
  std::vector<std::pair<int32_t, int32_t>> progress;
  std::vector<Question> questions;
  std::deque<MsgAnswer> answers;
};

}  // namespace hifx::test
