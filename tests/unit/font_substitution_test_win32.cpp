// A face that is not installed: GDI substitutes one, and measuring must use that same face, so the
// advances of a missing face are those of the face GDI chose, and no letter measures nothing.
#include <windows.h>

#include <gtest/gtest.h>

#include "platform/font.h"
#include "text/text_mask.h"

TEST(FontSubstitution, AMissingFaceMeasuresAsTheFaceGdiChose) {
  const char kMissing[] = "No Such Face GM5";
  const char kText[] = "Second";
  constexpr int kCount = sizeof kText - 1;
  for (int bold : {0, 1}) {
    SCOPED_TRACE(bold);
    LayoutFont missing;
    ASSERT_TRUE(CreateLayoutFont(nullptr, kMissing, 60, bold, 0, &missing));
    char chosen[LF_FACESIZE] = "";
    GetTextFaceA(static_cast<HDC>(missing.deviceContext), sizeof chosen, chosen);
    ASSERT_STRNE(chosen, kMissing);
    LayoutFont found;
    ASSERT_TRUE(CreateLayoutFont(nullptr, chosen, 60, bold, 0, &found));
    uint32_t a[kCount] = {}, b[kCount] = {};
    TextSize sa = {}, sb = {};
    MeasureText(missing.deviceContext, nullptr, kText, &sa, bold, 0, 60, kMissing, 100,
                missing.logFont, a);
    MeasureText(found.deviceContext, nullptr, kText, &sb, bold, 0, 60, chosen, 100, found.logFont,
                b);
    for (int i = 0; i < kCount; ++i) {
      EXPECT_EQ(a[i], b[i]) << kText[i];
      EXPECT_GT(a[i], 0u) << kText[i] << " in " << chosen;
    }
    EXPECT_EQ(sa.width, sb.width);
    DeleteLayoutFont(&found);
    DeleteLayoutFont(&missing);
  }
}
