// Words put into the manual pages print as themselves: nothing in them is
// taken for a roff escape or request.
#include <gtest/gtest.h>

#include "tools/docs/Roff.h"

namespace hifx::docs {
namespace {

TEST(Roff, EscapesWhatRoffWouldReadAsItsOwn) {
  EXPECT_EQ(RoffText("--map NAME"), "\\-\\-map NAME");
  EXPECT_EQ(RoffText("C:\\Qt\\bin"), "C:\\eQt\\ebin");
  // A line starting with a dot or a quote would be a request.
  EXPECT_EQ(RoffText(".hcm files\n'quoted'"), "\\&.hcm files\n\\&'quoted'");
  EXPECT_EQ(RoffText("a.hcm, 'b'"), "a.hcm, 'b'");
  EXPECT_EQ(RoffBold("-h"), "\\fB\\-h\\fR");
}

}  // namespace
}  // namespace hifx::docs
