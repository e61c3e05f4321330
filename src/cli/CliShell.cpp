#include "cli/CliShell.h"

#include <iostream>
#include <string>

namespace hifx {

MsgAnswer DefaultAnswer(MsgButtons buttons) {
  switch (buttons) {
    case MsgButtons::OK: return MsgAnswer::OK;
    case MsgButtons::OKCancel: return MsgAnswer::Cancel;
    case MsgButtons::YesNo:
    case MsgButtons::YesNoCancel: return MsgAnswer::No;
    case MsgButtons::AbortRetryIgnore: return MsgAnswer::Abort;
  }
  return MsgAnswer::OK;
}

MsgAnswer SilentShell::MsgBox(std::string_view, std::string_view, MsgButtons buttons, MsgIcon) {
  ++messages_;
  return DefaultAnswer(buttons);
}

CliShell::CliShell(std::optional<bool> presetAnswer, bool interactive, bool progressOnTerminal)
    : presetAnswer_(presetAnswer), interactive_(interactive), progressOnTerminal_(progressOnTerminal) {}

void CliShell::ClearProgress() {
  if (progressShown_) {
    std::fputs("\r\033[K", stderr);
    progressShown_ = false;
  }
}

void CliShell::WriteLog(std::string_view line) {
  ClearProgress();
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
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
