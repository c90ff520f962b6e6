#include "text/drawing_layer.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "platform/font.h"
#include "shell/packed_dib.h"
#include "tests/support/alloc_sweep.h"
#include "tests/support/drawing_session.h"
#include "tests/support/test_images.h"

namespace {

// Brackets all tests of the program with the layer's start-up and shutdown, as the plug-in's
// entry does around its dialog.
class DrawingSession : public testing::Environment {
 public:
  void SetUp() override {
    request_ = DrawRequest();
    request_.operation = kDrawStartup;
    ASSERT_EQ(DispatchDraw(&request_), 1u);
  }
  void TearDown() override {
    request_.operation = kDrawShutdown;
    DispatchDraw(&request_);
  }

 private:
  DrawRequest request_;
};

testing::Environment* const kSession = testing::AddGlobalTestEnvironment(new DrawingSession);

// Performs a drawing request and reads out (and frees) the picture it returns.
PictureValues Draw(DrawRequest* request) {
  return TakePicture(reinterpret_cast<MovableHandle>(DispatchDraw(request)));
}

DrawRequest TextRequest(const LayoutFont& font, const char* text, int32_t mode) {
  DrawRequest r = {};
  r.operation = kDrawText;
  r.textMode = mode;
  r.text = text;
  r.faceName = kTestFace;
  r.fontSize = 40;
  r.deviceContext = font.deviceContext;
  r.logFont = font.logFont;
  r.textColour = 0x00C8C8C8;
  r.level = 200;
  return r;
}

}  // namespace

// fontconfig keeps part of its parsed configuration for the life of the process; the leak checker
// of the sanitizer builds is told so here rather than by every caller.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig.so\n";
}

TEST(DispatchDraw, UnknownOperationsReturnZeroAndTouchNothing) {
  for (int32_t code : {0, 9, -1}) {
    DrawRequest r = {};
    r.operation = code;
    r.measuredWidth = 77;
    EXPECT_EQ(DispatchDraw(&r), 0u);
    EXPECT_EQ(r.measuredWidth, 77);
  }
  EXPECT_EQ(DispatchDraw(nullptr), 0u);
}

TEST(DispatchDraw, MeasuringSubtractsThePaddingFromPrintableFirstBytes) {
  LayoutFont font;
  ASSERT_EQ(CreateLayoutFont(nullptr, kTestFace, 40, 0, 0, &font), 1);
  DrawRequest space = TextRequest(font, " ", kTextMeasure);
  DrawRequest letter = TextRequest(font, "W", kTextMeasure);
  DrawRequest drawn = TextRequest(font, "W", kTextBitmap);
  DrawRequest empty = TextRequest(font, "", kTextMeasure);
  EXPECT_EQ(DispatchDraw(&space), 1u);
  EXPECT_EQ(DispatchDraw(&letter), 1u);
  EXPECT_EQ(DispatchDraw(&empty), 1u);
  const PictureValues picture = Draw(&drawn);
  EXPECT_GT(space.measuredWidth, 0);
  EXPECT_GT(letter.measuredWidth, space.measuredWidth);
  // Trailing spaces are left out of a measure: two spaces measure as one, the padding alone, and
  // a letter followed by spaces as the letter. Drawing does not subtract: its picture is the full
  // measured box, the padding included.
  DrawRequest spaces = TextRequest(font, "  ", kTextMeasure);
  DrawRequest trailing = TextRequest(font, "W  ", kTextMeasure);
  EXPECT_EQ(DispatchDraw(&spaces), 1u);
  EXPECT_EQ(DispatchDraw(&trailing), 1u);
  EXPECT_EQ(spaces.measuredWidth, space.measuredWidth);
  EXPECT_EQ(trailing.measuredWidth, letter.measuredWidth);
  EXPECT_EQ(drawn.measuredWidth, letter.measuredWidth + space.measuredWidth);
  EXPECT_EQ(picture.width, drawn.measuredWidth);
  EXPECT_EQ(picture.height, drawn.measuredHeight);
  EXPECT_EQ(picture.bits, 24);
  EXPECT_NEAR(letter.measuredHeight, 40, 2);
  EXPECT_EQ(empty.measuredWidth, 0);
  EXPECT_EQ(FontCellHeight(font.deviceContext), 40);
  DeleteLayoutFont(&font);
}

// Counts of a glyph picture's pixels at the full grey of 200 and between it and black, checking
// that every pixel is grey and none brighter than the pen.
void CountGlyphPixels(int32_t antialias, int* full, int* partial) {
  LayoutFont font;
  ASSERT_EQ(CreateLayoutFont(nullptr, kTestFace, 40, 1, 0, &font), 1);
  DrawRequest r = TextRequest(font, "O", kTextBitmap);
  r.antialias = antialias;
  const PictureValues picture = Draw(&r);
  DeleteLayoutFont(&font);
  ASSERT_FALSE(picture.values.empty());
  *full = *partial = 0;
  for (uint32_t v : picture.values) {
    ASSERT_EQ(v, (v & 0xFF) * 0x010101u);
    ASSERT_LE(v & 0xFF, 200u);
    *full += (v & 0xFF) == 200;
    *partial += (v & 0xFF) != 200 && (v & 0xFF) != 0;
  }
}

TEST(DispatchDraw, GlyphsAreGreyOnBlack) {
  int full = 0, partial = 0;
  CountGlyphPixels(1, &full, &partial);
  EXPECT_GT(full, 50);
  EXPECT_GT(partial, 20);
}

TEST(DispatchDraw, ShapesKeepTheirGeometry) {
  // A polygon with neither outline nor fill is a black picture, not a failure.
  const int32_t triangle[6] = {4, 4, 30, 4, 4, 20};
  DrawRequest polygon = {};
  polygon.operation = kDrawPolygon;
  polygon.bounds = {0, 0, 32, 24};
  polygon.vertices = triangle;
  polygon.vertexCount = 3;
  polygon.polygonFill = polygon.polygonOutline = -1;
  const PictureValues black = Draw(&polygon);
  polygon.polygonFill = 0x0000FF;
  const PictureValues red = Draw(&polygon);

  // The rounded rectangle stands c = p / 2 + 4 = 5 pixels short on the right and lower sides. At
  // 100% the arcs take the reduced box's full shorter side, d = min(58 - 5, 38 - 5) = 33: the
  // corners are round through and the middle stays filled.
  DrawRequest rect = {};
  rect.operation = kDrawRectangle;
  rect.bounds = {0, 0, 60, 40};
  rect.shapePenWidth = 2;
  rect.shapeFill = 0xFFFFFF;
  rect.shapeOutline = -1;
  const PictureValues square = Draw(&rect);
  rect.cornerPercent = 20;
  const PictureValues rounded = Draw(&rect);
  rect.cornerPercent = 100;
  const PictureValues round = Draw(&rect);
  rect.operation = kDrawEllipse;
  const PictureValues oval = Draw(&rect);

  DrawRequest line = {};
  line.operation = kDrawLine;
  line.bounds = {0, 0, 20, 0};
  line.lineX1 = 10, line.lineY1 = 5, line.lineX2 = 30, line.lineY2 = 5;
  line.lineWidth = 3;
  line.lineColour = 0x00FF00;
  // (3 / 2 + 3) * 2 + 8 = 16 of margin; the line runs at y = 3 + 4 + 1 = 8.
  const PictureValues stroke = Draw(&line);
  EXPECT_EQ(stroke.height, 16);

  const struct {
    const PictureValues& picture;
    int32_t width, x, y;
    uint32_t expected;
  } checks[] = {{black, 40, 10, 8, 0},        {red, 40, 8, 8, 0xFF},
                {red, 40, 28, 18, 0},         {round, 68, 7, 7, 0},
                {round, 68, 7, 21, 0xFFFFFF}, {round, 68, 30, 6, 0xFFFFFF},
                {oval, 68, 34, 24, 0xFFFFFF}, {oval, 68, 6, 6, 0},
                {stroke, 36, 15, 8, 0xFF00},  {stroke, 36, 15, 2, 0}};
  for (const auto& c : checks) {
    ASSERT_EQ(c.picture.width, c.width) << c.x << "," << c.y;
    EXPECT_EQ(c.picture.At(c.x, c.y), c.expected) << c.x << "," << c.y;
  }
  ASSERT_EQ(square.width + rounded.width, 2 * 68);
  auto lastLit = [](const PictureValues& p, int32_t y) {
    int32_t last = -1;
    for (int32_t x = 0; x < p.width; ++x)
      if (p.At(x, y)) last = x;
    return last;
  };
  EXPECT_NEAR(lastLit(square, 30) - lastLit(rounded, 30), 5, 1);
}

TEST(DispatchDraw, PathGradientsCentreOnTheirPercentages) {
  DrawRequest r = {};
  r.operation = kDrawGradient;
  r.gradientWidth = 40;
  r.gradientHeight = 20;
  r.gradientKind = 2;
  r.gradientFrom = 0xFFFFFF;
  r.gradientCentreX = 100;
  const PictureValues right = Draw(&r);
  r.gradientCentreX = -100;
  const PictureValues left = Draw(&r);
  ASSERT_EQ(right.width, 40);
  auto red = [](const PictureValues& p, int32_t x) { return p.At(x, 10) & 0xFF; };
  EXPECT_GT(red(right, 38), red(right, 20));
  EXPECT_GT(red(right, 20), red(right, 2));
  EXPECT_GT(red(left, 1), red(left, 20));
  EXPECT_GT(red(left, 20), red(left, 38));
  r.gradientKind = 1;
  r.gradientCentreX = 0;
  r.gradientTo = 0x0000FF;
  const PictureValues oval = Draw(&r);
  EXPECT_EQ(oval.At(0, 0), 0x000000FFu);  // corners outside the ellipse take the surround
  EXPECT_GT((oval.At(20, 10) >> 8) & 0xFF, 200u);
  r.gradientKind = 0;
  const PictureValues linear = Draw(&r);
  EXPECT_GT((linear.At(2, 10) >> 8) & 0xFF, (linear.At(37, 10) >> 8) & 0xFF);
}

TEST(DispatchDraw, PicturesLeakNothingWhenAllocationFails) {
  LayoutFont font;
  ASSERT_EQ(CreateLayoutFont(nullptr, kTestFace, 30, 0, 0, &font), 1);
  DrawRequest text = TextRequest(font, "g", kTextBitmap);
  DrawRequest ellipse = {};
  ellipse.operation = kDrawEllipse;
  ellipse.bounds = {0, 0, 20, 10};
  ellipse.shapeFill = 0x00FF00;
  ellipse.shapeOutline = -1;
  for (DrawRequest* r : {&text, &ellipse}) {
    EXPECT_TRUE(SweepAllocationFailures([&] {
      MovableHandle picture = reinterpret_cast<MovableHandle>(DispatchDraw(r));
      MovableFree(picture);
      return picture != nullptr;
    })) << r->operation;
  }
  DeleteLayoutFont(&font);
}

TEST(DispatchDraw, TextPathsFillAndOutlineInTheirOwnColours) {
  LayoutFont font;
  ASSERT_EQ(CreateLayoutFont(nullptr, kTestFace, 40, 1, 0, &font), 1);
  // The outline pen takes red 0xFF, green from the colour's red and blue from its green.
  const struct {
    int32_t mode;
    uint32_t colour, expected;
  } cases[] = {{kTextPathOutline, 0x00003080, 0x003080FF},
               {kTextPathFilled, 0x00123456, 0x00123456}};
  for (const auto& c : cases) {
    DrawRequest r = TextRequest(font, "Hg", c.mode);
    r.textColour = c.colour;
    r.textPenWidth = 3;
    const PictureValues picture = Draw(&r);
    ASSERT_FALSE(picture.values.empty()) << c.mode;
    EXPECT_EQ(picture.width, r.measuredWidth);
    const auto inked = std::count(picture.values.begin(), picture.values.end(), c.expected);
    EXPECT_GT(inked, 100) << c.mode;
    EXPECT_EQ(inked + std::count(picture.values.begin(), picture.values.end(), 0u),
              static_cast<long>(picture.values.size()))
        << "every pixel is black or the pen's colour, mode " << c.mode;
  }
  DeleteLayoutFont(&font);
}
