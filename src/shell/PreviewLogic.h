// The page preview's rules that need no toolkit: its toolbar, the action a
// closed window gives, the keys and drags that move the page, and the
// page's size on screen.
#pragma once

#include <array>
#include <string>

#include "shell/MainWindowLogic.h"

namespace hifx::shell {

// A toolbar button: its key (the action word the window returns), caption
// and tip.
struct PreviewButton {
  const char* key;
  const char* caption;
  const char* tip;
};
inline constexpr std::array<PreviewButton, 6> kPreviewButtons = {{
    {"FIRST", "First", "First Page"},
    {"PREV", "Previous", "Previous Page"},
    {"NEXT", "Next", "Next Page"},
    {"LAST", "Last", "Last Page"},
    {"PRINT", "Print", "Print to Printer"},
    {"CLOSE", "Close", "Close the Preview"},
}};

// The window's answer when it has closed: the button chosen, or "CLOSE"
// when none was, as when its frame's close box closed it.
std::string PreviewAction(const std::string& chosen);

// A scroll bar as the keys and the mouse move it.
struct ScrollBar {
  int value = 0;
  int maximum = 0;
  int smallChange = 1;
  int largeChange = 1;
};

// The keys of the preview by their key codes.
enum PreviewKey : int {
  kKeyPageUp = 33,
  kKeyPageDown = 34,
  kKeyEnd = 35,
  kKeyHome = 36,
  kKeyLeft = 37,
  kKeyUp = 38,
  kKeyRight = 39,
  kKeyDown = 40,
};

// Moves the bars as the key says: up and down, left and right by the small
// change, page up and down by the large one, home and end to the top and
// the bottom; never beyond the bars' limits. False for any other key.
bool MoveByKey(int keyCode, ScrollBar& horizontal, ScrollBar& vertical);

// A drag of the page by dx, dy pixels: the page follows the mouse, so the
// bars move the other way.
void MoveByDrag(int dx, int dy, ScrollBar& horizontal, ScrollBar& vertical);

enum class PreviewZoom { FitWidth, WholePage, ActualSize };

// The page's size on screen, in pixels: a page of width by length inches in
// a frame of that size, at the screen's pixels an inch.
Size PageOnScreen(PreviewZoom zoom, double widthInches, double lengthInches, Size frame, double dotsPerInch);

}  // namespace hifx::shell
