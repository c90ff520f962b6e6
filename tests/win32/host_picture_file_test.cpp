// The reference host's pictures for HostOpLoadImageFile: BMP by its own reader, PNG, JPEG and the
// first frame of a GIF through GDI+, each a 24-bit picture of the file's colours.
#include <windows.h>

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "host/picture_file_win32.h"
#include "tests/support/test_images.h"

namespace {

std::string Sample(const char* name) {
  return std::string(GM5_SOURCE_ROOT) + "tests/fuzz/corpus/picture_files/" + name;
}

}  // namespace

TEST(HostPictureFile, ReadsEachFormatAsTheFileShowsIt) {
  const long live = MovableLiveCount();
  struct Case {
    const char* name;
    uint32_t colour;  // 0x00BBGGRR of every pixel
    int tolerance;
  } cases[] = {{"flat-green.png", 0x3CC81E, 0},
               {"two-frames.gif", 0xC81E1E, 0},  // the first frame, blue; the second is yellow
               {"flat-red.jpg", 0x1E1EC8, 3}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const PictureValues picture = TakePicture(ReadHostPictureFile(Sample(c.name).c_str()));
    ASSERT_EQ(picture.bits, 24);
    ASSERT_EQ(picture.width, 16);
    ASSERT_EQ(picture.height, 8);
    for (uint32_t value : picture.values)
      for (int shift = 0; shift < 24; shift += 8)
        ASSERT_NEAR(static_cast<int>(value >> shift & 0xFF),
                    static_cast<int>(c.colour >> shift & 0xFF), c.tolerance);
  }
  const PictureValues bmp = TakePicture(ReadHostPictureFile(Sample("seed.bmp").c_str()));
  EXPECT_EQ(bmp.width, 3);
  EXPECT_EQ(bmp.At(0, 0), 0x0000FFu) << "top-left red";
  EXPECT_EQ(ReadHostPictureFile(Sample("missing.png").c_str()), nullptr);
  EXPECT_EQ(ReadHostPictureFile((std::string(GM5_SOURCE_ROOT) + "README.md").c_str()), nullptr);
  EXPECT_EQ(MovableLiveCount(), live);
}
