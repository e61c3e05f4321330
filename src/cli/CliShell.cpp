#include "cli/CliShell.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include "base/CaseBlind.h"
#include "base/Failure.h"
#include "base/Text.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace hifx {

void UseBinaryStandardStreams() {
#ifdef _WIN32
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
#endif
}

namespace {

[[noreturn]] void StandardOutputFailed(int error) {
  throw WriteFailure(error == ENOSPC || error == EFBIG ? fail::kDiskFull : fail::kPathAccess, "Could not write",
                     "standard output", error != 0 ? std::strerror(error) : "an earlier write failed");
}

}  // namespace

void WriteOut(std::string_view bytes) {
  errno = 0;
  if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) StandardOutputFailed(errno);
}

void CheckStandardOutput() {
  errno = 0;
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) StandardOutputFailed(errno);
}

bool IsTerminal(int fd) {
#ifdef _WIN32
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(fd == 0 ? STD_INPUT_HANDLE : STD_ERROR_HANDLE), &mode) != 0;
#else
  return isatty(fd) != 0;
#endif
}

CliShell::CliShell(std::optional<bool> presetAnswer, bool interactive, bool progressOnTerminal,
                   std::vector<std::string> sets)
    : presetAnswer_(presetAnswer),
      interactive_(interactive),
      progressOnTerminal_(progressOnTerminal),
      sets_(std::move(sets)) {}

std::optional<std::string> CliShell::ReadLine(const std::string& question) {
  if (!interactive_) return std::nullopt;
  ClearProgress();
  std::fputs(question.c_str(), stderr);
  std::fflush(stderr);
  std::string reply;
  if (!std::getline(std::cin, reply)) return std::nullopt;
  if (!reply.empty() && reply.back() == '\r') reply.pop_back();
  return reply;
}

std::optional<std::string> CliShell::PresetValue(const std::string& name) const {
  // The last --set of a name wins; names are matched exactly first, then
  // with no regard to case.
  std::optional<std::string> loose;
  std::optional<std::string> exact;
  for (const std::string& set : sets_) {
    const size_t equals = set.find('=');
    const std::string field = set.substr(0, equals);
    if (field == name) exact = set.substr(equals + 1);
    if (EqualsCaseBlind(field, name)) loose = set.substr(equals + 1);
  }
  return exact ? exact : loose;
}

bool CliShell::PromptVariables(const std::vector<PromptField>& fields,
                               std::vector<std::string>& values) {
  values.clear();
  for (const PromptField& field : fields) {
    std::optional<std::string> value = PresetValue(field.name);
    for (;;) {
      if (!value) value = ReadLine("Runtime Variables: " + field.name + (field.required ? " (Required)" : "") + ": ");
      if (!value) {
        if (!field.required) {
          value = std::string();
          break;
        }
        return false;  // nobody to answer a required prompt: Cancel
      }
      const std::string given = *value;
      if (!field.required || !Trim(given).empty()) break;
      MsgBox(field.name + " Required", {}, MsgButtons::OK, MsgIcon::Exclamation);
      value.reset();
      if (!interactive_) return false;
    }
    values.push_back(*value);
  }
  return true;
}

std::string CliShell::ChooseUnit(const std::vector<std::string>& units) {
  if (!interactive_ || units.empty()) return {};
  ClearProgress();
  std::fputs("Install To Unit:\n", stderr);
  for (size_t i = 0; i < units.size(); ++i) {
    std::fprintf(stderr, "  %zu. %s\n", i + 1, units[i].c_str());
  }
  for (;;) {
    const auto reply = ReadLine("unit number or name (empty to cancel): ");
    if (!reply || reply->empty()) return {};
    for (size_t i = 0; i < units.size(); ++i) {
      if (*reply == units[i] || *reply == std::to_string(i + 1)) return units[i];
    }
  }
}

std::optional<std::string> CliShell::InputBox(std::string_view prompt, std::string_view title,
                                              std::string_view defaultValue) {
  std::string question;
  if (!title.empty()) question += std::string(title) + ": ";
  question += std::string(prompt);
  if (!defaultValue.empty()) question += " [" + std::string(defaultValue) + "]";
  question += " ";
  auto reply = ReadLine(question);
  if (reply && reply->empty()) reply = std::string(defaultValue);
  return reply;
}

void CliShell::ClearProgress() {
  if (progressShown_) {
    std::fputs("\r\033[K", stderr);
    progressShown_ = false;
  }
}

void CliShell::WriteLog(std::string_view line) {
  ClearProgress();
  std::fwrite(line.data(), 1, line.size(), log_);
  std::fputc('\n', log_);
  std::fflush(log_);
}

void CliShell::SetProgressButton(int32_t total, int32_t position) {
  if (!progressOnTerminal_ || total <= 0) return;
  const int width = 40;
  int filled = static_cast<int>(static_cast<int64_t>(position) * width / total);
  if (filled < 0) filled = 0;
  if (filled > width) filled = width;
  std::fprintf(stderr, "\r[%s%s] %3d%%", std::string(static_cast<size_t>(filled), '#').c_str(),
               std::string(static_cast<size_t>(width - filled), ' ').c_str(),
               filled * 100 / width);
  std::fflush(stderr);
  progressShown_ = true;
}

MsgAnswer CliShell::MsgBox(std::string_view text, std::string_view title, MsgButtons buttons,
                           MsgIcon) {
  ClearProgress();
  ++messages_;
  std::string line;
  if (!title.empty()) {
    line.append(title);
    line.append(": ");
  }
  line.append(text);
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fputc('\n', stderr);
  std::fflush(stderr);
  return Ask(buttons);
}

MsgAnswer CliShell::Ask(MsgButtons buttons) {
  const bool yesNo = buttons == MsgButtons::YesNo || buttons == MsgButtons::YesNoCancel;
  if (yesNo && presetAnswer_.has_value()) return *presetAnswer_ ? MsgAnswer::Yes : MsgAnswer::No;
  if (buttons == MsgButtons::OK || !interactive_) return DefaultAnswer(buttons);
  for (;;) {
    switch (buttons) {
      case MsgButtons::YesNo: std::fputs("[y]es / [n]o? ", stderr); break;
      case MsgButtons::YesNoCancel: std::fputs("[y]es / [n]o / [c]ancel? ", stderr); break;
      case MsgButtons::OKCancel: std::fputs("[o]k / [c]ancel? ", stderr); break;
      case MsgButtons::AbortRetryIgnore: std::fputs("[a]bort / [r]etry / [i]gnore? ", stderr); break;
      case MsgButtons::OK: break;
    }
    std::fflush(stderr);
    std::string reply;
    if (!std::getline(std::cin, reply)) return DefaultAnswer(buttons);
    const char c = reply.empty() ? '\0' : static_cast<char>(reply[0] | 0x20);
    switch (buttons) {
      case MsgButtons::YesNo:
        if (c == 'y') return MsgAnswer::Yes;
        if (c == 'n') return MsgAnswer::No;
        break;
      case MsgButtons::YesNoCancel:
        if (c == 'y') return MsgAnswer::Yes;
        if (c == 'n') return MsgAnswer::No;
        if (c == 'c') return MsgAnswer::Cancel;
        break;
      case MsgButtons::OKCancel:
        if (c == 'o') return MsgAnswer::OK;
        if (c == 'c') return MsgAnswer::Cancel;
        break;
      case MsgButtons::AbortRetryIgnore:
        if (c == 'a') return MsgAnswer::Abort;
        if (c == 'r') return MsgAnswer::Retry;
        if (c == 'i') return MsgAnswer::Ignore;
        break;
      case MsgButtons::OK: return MsgAnswer::OK;
    }
  }
}

}  // namespace hifx
