// Hard edges without antialiasing. Wine's GDI+ draws strings antialiased whatever the rendering
// hint, so this holds for the POSIX engine and is not run under Wine.
#include <gtest/gtest.h>

#include "tests/support/drawing_session.h"

TEST(DispatchDraw, GlyphsAreHardEdgedWithoutAntialiasing) {
  int full = 0, partial = 0;
  CountGlyphPixels(0, &full, &partial);
  EXPECT_GT(full, 50);
  EXPECT_EQ(partial, 0);
}
