#include "base/Shell.h"

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

std::string_view ButtonsName(MsgButtons buttons) {
  switch (buttons) {
    case MsgButtons::OK: return "OK";
    case MsgButtons::OKCancel: return "OK-Cancel";
    case MsgButtons::YesNo: return "Yes-No";
    case MsgButtons::YesNoCancel: return "Yes-No-Cancel";
    case MsgButtons::AbortRetryIgnore: return "Abort-Retry-Ignore";
  }
  return "OK";
}

std::string_view AnswerName(MsgAnswer answer) {
  switch (answer) {
    case MsgAnswer::OK: return "OK";
    case MsgAnswer::Cancel: return "Cancel";
    case MsgAnswer::Abort: return "Abort";
    case MsgAnswer::Retry: return "Retry";
    case MsgAnswer::Ignore: return "Ignore";
    case MsgAnswer::Yes: return "Yes";
    case MsgAnswer::No: return "No";
  }
  return "OK";
}

}  // namespace hifx
