// Where a window sits between runs: saved in the per-user settings under the
// window's name when it closes, and read back when it opens. A saved place
// that can't be right (a sliver of a window, an edge off the screen) is not
// used.
#pragma once

#include <optional>
#include <string_view>

#include "base/UserSettings.h"

namespace hifx::shell {

enum class WindowState { Normal = 0, Minimized = 1, Maximized = 2 };

struct WindowGeometry {
  int top = 0;
  int left = 0;
  int height = 0;
  int width = 0;
};

// What a window takes from its saved placement. A value left empty keeps the
// window's designed one.
struct PlacementPlan {
  std::optional<WindowState> state;
  std::optional<int> top, left, height, width;
  std::optional<int> splitter;  // the splitter's left or top edge
};

// The settings application every window of the desktop program saves under.
inline constexpr std::string_view kPlacementApp = "hifExchange";

// The least width and height a saved size needs to be used.
inline constexpr int kLeastSavedSize = 200;

PlacementPlan LoadPlacement(IUserSettings& settings, std::string_view window, bool withSplitter);

// Nothing is written for a minimized window: the place it had before stays.
void SavePlacement(IUserSettings& settings, std::string_view window, WindowState state,
                   const WindowGeometry& geometry, std::optional<int> splitter = std::nullopt);

}  // namespace hifx::shell
