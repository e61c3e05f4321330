// A shell for tests: records every log line, progress call and message box,
// and answers questions from a script (the default answer when it runs out).
#pragma once

#include <algorithm>
#include <deque>
#include <string>
#include <vector>

#include "base/Shell.h"
#include "base/Value.h"
#include <ostream>

namespace hifx {

// Values in test failures, readable.
inline void PrintTo(const Value& value, std::ostream* os) {
  if (value.IsEmpty()) {
    *os << "<empty>";
  } else if (value.IsNull()) {
    *os << "<null>";
  } else if (value.IsText()) {
    *os << '"' << value.Text() << '"';
  } else {
    *os << value.ToText() << " (kind " << static_cast<int>(value.Kind()) << ")";
  }
}

}  // namespace hifx

namespace hifx::test {

struct Question {
  std::string text;
  std::string title;
  MsgButtons buttons;
  bool operator==(const Question&) const = default;
};
inline void PrintTo(const Question& q, std::ostream* os) {
  *os << '{' << q.title << ": " << q.text << " [" << static_cast<int>(q.buttons) << "]}";
}

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
  // Records the units offered and answers from units (Cancel when it runs out).
  std::string ChooseUnit(const std::vector<std::string>& offered) override {
    unitLists.push_back(offered);
    if (units.empty()) return {};
    std::string unit = units.front();
    units.pop_front();
    return unit;
  }

  // Records the prompt fields asked for; answers with promptValues, or
  // cancels when promptCancel is set.
  bool PromptVariables(const std::vector<PromptField>& fields, std::vector<std::string>& values) override {
    promptFields.push_back(fields);
    if (promptCancel) return false;
    values = promptValues;
    values.resize(fields.size());
    return true;
  }

  // The texts of the message boxes shown, in order.
  std::vector<std::string> Asked() const {
    std::vector<std::string> texts;
    for (const Question& q : questions) texts.push_back(q.text);
    return texts;
  }
  // How often the line was logged; the last n lines logged.
  size_t Logged(const std::string& line) const { return static_cast<size_t>(std::count(log.begin(), log.end(), line)); }
  std::vector<std::string> Tail(size_t n) const {
    return {log.end() - static_cast<std::ptrdiff_t>(std::min(n, log.size())), log.end()};
  }
  // The report status window: every text shown; abortReports answers each
  // with an abort.
  bool ReportStatus(std::string_view text) override {
    statuses.emplace_back(text);
    return abortReports;
  }

  std::vector<std::string> log;
  std::vector<std::string> statuses;
  bool abortReports = false;
  std::vector<std::pair<int32_t, int32_t>> progress;
  std::vector<Question> questions;
  std::deque<MsgAnswer> answers;
  std::vector<std::vector<std::string>> unitLists;
  std::deque<std::string> units;
  std::vector<std::vector<PromptField>> promptFields;
  std::vector<std::string> promptValues;
  bool promptCancel = false;
};

}  // namespace hifx::test
