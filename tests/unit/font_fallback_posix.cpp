// A face that is not installed ("Impact" on Linux) gives DejaVu Sans, the face Wine substitutes.
#include <gtest/gtest.h>

#include "platform/font.h"
#include "tests/support/drawing_session.h"
#include "tests/support/test_images.h"
#include "text/text_mask.h"

TEST(LayoutFont, MissingFaceFallsBackToDejaVuSans) {
  MovableHandle masks[2];
  const char* faces[2] = {"Impact", kTestFace};
  for (int i = 0; i < 2; ++i) {
    LayoutFont font;
    ASSERT_EQ(CreateLayoutFont(nullptr, faces[i], 50, 1, 0, &font), 1) << faces[i];
    EXPECT_EQ(FontCellHeight(font.deviceContext), 50);
    EXPECT_STREQ(static_cast<const FontDescription*>(font.logFont)->faceName, faces[i]);
    const uint32_t advances[3] = {30, 30, 30};
    masks[i] = RenderTextMask(nullptr, font.deviceContext, 2, 0, "Qg&", 100, 50, 255, 1, 50, 1, 0,
                              faces[i], advances, font.logFont);
    DeleteLayoutFont(&font);
  }
  EXPECT_TRUE(SameBlocks(masks[0], masks[1]));
  MovableFree(masks[0]);
  MovableFree(masks[1]);
}
