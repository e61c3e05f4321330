#include "shell/StartUp.h"

#include "base/CaseBlind.h"

namespace hifx::shell {

bool SkipsLogin(std::string_view commandLine) {
  return UpperCase(commandLine).find(kSkipLoginWord) != std::string::npos;
}

bool StartUp(std::string_view commandLine, bool useLoginSecurity, IStartUpViews& views) {
  views.ShowSplash();
  if (!SkipsLogin(commandLine) && useLoginSecurity && !views.RunLogin()) {
    views.HideSplash();
    return false;
  }
  views.ShowMain();
  views.HideSplash();
  return true;
}

std::string MainWindowTitle(std::string_view programTitle, std::string_view description, int major, int minor,
                            int revision) {
  std::string title(description);
  if (programTitle == "TallyDesk") return title;
  return title + " v" + std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(revision);
}

void OfferSetup(clsExchange& exchange, IShell& shell, const std::function<void()>& loadDistribution) {
  exchange.LoadSettings();
  if (!exchange.RouteMap.empty()) return;
  const std::string question =
      std::string("Setup information has not yet been entered.") + kLineBreak + "Would you like to load a setup distribution?";
  if (shell.MsgBox(question, {}, MsgButtons::YesNo, MsgIcon::Question) == MsgAnswer::Yes) {
    loadDistribution();
    exchange.LoadSettings();
  }
  exchange.LoadSettings();
}

}  // namespace hifx::shell
