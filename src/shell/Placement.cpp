#include "shell/Placement.h"

#include <string>

#include "base/Numbers.h"

namespace hifx::shell {
namespace {

// A saved number, or nothing when none was saved or it isn't a number.
std::optional<int> SavedNumber(IUserSettings& settings, std::string_view window, std::string_view key) {
  const std::string text = settings.GetSetting(kPlacementApp, window, key, "");
  if (text.empty()) return std::nullopt;
  const double value = NumericPrefix(text);
  if (value < -1e9 || value > 1e9) return std::nullopt;
  return static_cast<int>(value);
}

std::optional<int> AtLeast(std::optional<int> value, int least) {
  if (value && *value >= least) return value;
  return std::nullopt;
}

void Save(IUserSettings& settings, std::string_view window, std::string_view key, int value) {
  settings.SaveSetting(kPlacementApp, window, key, std::to_string(value));
}

}  // namespace

PlacementPlan LoadPlacement(IUserSettings& settings, std::string_view window, bool withSplitter) {
  PlacementPlan plan;
  const std::optional<int> state = SavedNumber(settings, window, "WindowState");
  if (state == static_cast<int>(WindowState::Normal)) {
    plan.state = WindowState::Normal;
    // An edge left of or above the screen comes from a screen no longer there.
    plan.top = AtLeast(SavedNumber(settings, window, "Top"), 0);
    plan.left = AtLeast(SavedNumber(settings, window, "Left"), 0);
    plan.width = AtLeast(SavedNumber(settings, window, "Width"), kLeastSavedSize);
    plan.height = AtLeast(SavedNumber(settings, window, "Height"), kLeastSavedSize);
  } else if (state == static_cast<int>(WindowState::Maximized)) {
    plan.state = WindowState::Maximized;
  } else {
    return plan;
  }
  if (withSplitter) {
    const char* key = *plan.state == WindowState::Normal ? "SplitterNormal" : "SplitterMaximized";
    plan.splitter = AtLeast(SavedNumber(settings, window, key), 1);
  }
  return plan;
}

void SavePlacement(IUserSettings& settings, std::string_view window, WindowState state,
                   const WindowGeometry& geometry, std::optional<int> splitter) {
  if (state == WindowState::Normal) {
    Save(settings, window, "Top", geometry.top);
    Save(settings, window, "Left", geometry.left);
    Save(settings, window, "Height", geometry.height);
    Save(settings, window, "Width", geometry.width);
    Save(settings, window, "WindowState", static_cast<int>(WindowState::Normal));
    if (splitter) Save(settings, window, "SplitterNormal", *splitter);
  } else if (state == WindowState::Maximized) {
    Save(settings, window, "WindowState", static_cast<int>(WindowState::Maximized));
    if (splitter) Save(settings, window, "SplitterMaximized", *splitter);
  }
}

}  // namespace hifx::shell
