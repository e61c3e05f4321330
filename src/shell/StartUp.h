// How the desktop program starts, apart from drawing: the order of the
// splash, the login and the main window, the main window's title, and the
// question a site that was never set up is asked.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/Shell.h"
#include "exchange/clsExchange.h"

namespace hifx::shell {

// What the program shows while it starts.
class IStartUpViews {
 public:
  virtual ~IStartUpViews() = default;
  virtual void ShowSplash() = 0;
  // The login window; true when a supervisor logged in.
  virtual bool RunLogin() = 0;
  virtual void ShowMain() = 0;
  virtual void HideSplash() = 0;
};

// The word on the command line that passes the login over, in any case.
inline constexpr std::string_view kSkipLoginWord = "SKIPIT";

bool SkipsLogin(std::string_view commandLine);

// Splash, then the login when the site asks for one, then the main window.
// False when the login was not passed and the program ends.
bool StartUp(std::string_view commandLine, bool useLoginSecurity, IStartUpViews& views);

// The program's title, and the words the main window's title is made of.
inline constexpr std::string_view kProductDescription = "Handheld Interchange File Exchange";
inline constexpr int kVersionRevision = 0;

// The description and " vMAJOR.MINOR.REVISION"; a program titled
// "TallyDesk" shows the description alone.
std::string MainWindowTitle(std::string_view programTitle, std::string_view description, int major, int minor,
                            int revision);

// On every start of a site with no route map: asks whether to load a setup
// distribution and runs loadDistribution on Yes. The settings are read again
// either way.
void OfferSetup(clsExchange& exchange, IShell& shell, const std::function<void()>& loadDistribution);

}  // namespace hifx::shell
