#include "cli/picture_files.h"

#include <cstdio>  // before jpeglib.h, which uses FILE
#include <cstdlib>

#include <gif_lib.h>
#include <jpeglib.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/inprocess_host.h"
#include "host/bmp_file.h"
#include "host/png_file.h"
#include "shell/packed_dib.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_images.h"

namespace {

constexpr int32_t kWidth = 6, kHeight = 4;

// Flat quarters of four colours that every format holds exactly, JPEG nearly.
std::vector<uint8_t> Quarters() {
  static const uint8_t colours[4][3] = {
      {200, 30, 30}, {30, 200, 30}, {30, 30, 200}, {220, 220, 40}};
  std::vector<uint8_t> rgb;
  for (int32_t y = 0; y < kHeight; ++y)
    for (int32_t x = 0; x < kWidth; ++x) {
      const uint8_t* c = colours[(y >= kHeight / 2) * 2 + (x >= kWidth / 2)];
      rgb.insert(rgb.end(), c, c + 3);
    }
  return rgb;
}

std::vector<uint8_t> EncodeJpeg(const std::vector<uint8_t>& rgb) {
  jpeg_compress_struct info;
  jpeg_error_mgr errors;
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* out = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &out, &size);
  info.image_width = kWidth;
  info.image_height = kHeight;
  info.input_components = 3;
  info.in_color_space = JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, 100, TRUE);
  for (int c = 0; c < 3; ++c) info.comp_info[c].h_samp_factor = info.comp_info[c].v_samp_factor = 1;
  jpeg_start_compress(&info, TRUE);
  while (info.next_scanline < info.image_height) {
    JSAMPROW row = const_cast<uint8_t*>(rgb.data()) + info.next_scanline * kWidth * 3;
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  std::vector<uint8_t> bytes(out, out + size);
  jpeg_destroy_compress(&info);
  std::free(out);
  return bytes;
}

// A GIF of two frames: the picture, then a black one that must not be what is read.
void WriteGif(const std::string& path, const std::vector<uint8_t>& rgb) {
  int error = 0;
  GifFileType* gif = EGifOpenFileName(path.c_str(), false, &error);
  ASSERT_NE(gif, nullptr);
  GifColorType colours[8] = {};
  std::vector<GifPixelType> indices;
  int used = 0;
  for (size_t i = 0; i < rgb.size(); i += 3) {
    int found = 0;
    while (found < used && !(colours[found].Red == rgb[i] && colours[found].Green == rgb[i + 1] &&
                             colours[found].Blue == rgb[i + 2]))
      ++found;
    if (found == used) colours[used++] = {rgb[i], rgb[i + 1], rgb[i + 2]};
    indices.push_back(static_cast<GifPixelType>(found));
  }
  ColorMapObject* map = GifMakeMapObject(8, colours);
  EGifSetGifVersion(gif, true);
  ASSERT_EQ(EGifPutScreenDesc(gif, kWidth, kHeight, 8, 0, map), GIF_OK);
  for (int frame = 0; frame < 2; ++frame) {
    if (frame) indices.assign(indices.size(), 7);
    ASSERT_EQ(EGifPutImageDesc(gif, 0, 0, kWidth, kHeight, false, nullptr), GIF_OK);
    for (int32_t y = 0; y < kHeight; ++y)
      ASSERT_EQ(EGifPutLine(gif, indices.data() + y * kWidth, kWidth), GIF_OK);
  }
  GifFreeMapObject(map);
  EGifCloseFile(gif, &error);
}

// The picture's pixels as red, green, blue triples, top row first.
std::vector<uint8_t> Triples(MovableHandle picture) {
  const PictureValues values = TakePicture(picture);
  std::vector<uint8_t> rgb;
  for (uint32_t v : values.values)
    rgb.insert(rgb.end(), {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16)});
  if (values.bits != 24 || values.width != kWidth || values.height != kHeight) rgb.clear();
  return rgb;
}

TEST(PictureFiles, EveryFormatReadsTheSamePictureThroughTheHost) {
  ScratchFolder scratch;
  const std::vector<uint8_t> rgb = Quarters();
  ScopedBlock dib(RgbToPackedDib(rgb.data(), kWidth, kHeight));
  std::vector<uint8_t> dibBytes;
  {
    ScopedLock lock(dib.handle);
    dibBytes.assign(lock.bytes, lock.bytes + MovableSize(dib.handle));
  }
  ASSERT_EQ(Triples(CopyMovableBlock(dib.handle)), rgb);
  ASSERT_TRUE(WriteWholeFile(scratch.Path("p.bmp").c_str(),
                             PackedDibToBmp(dibBytes.data(), dibBytes.size())));
  ASSERT_TRUE(WriteWholeFile(scratch.Path("p.png").c_str(),
                             EncodeRgbPng(rgb.data(), rgb.size(), kWidth, kHeight)));
  ASSERT_TRUE(WriteWholeFile(scratch.Path("p.jpg").c_str(), EncodeJpeg(rgb)));
  WriteGif(scratch.Path("p.gif"), rgb);
  ASSERT_TRUE(WriteWholeFile(scratch.Path("p.txt").c_str(), {'B', 'M', 'x', 'y'}));

  InProcessHost host;
  BeginInProcessHost(&host, 0, nullptr);
  auto load = [&](const char* name) {
    const std::string path = scratch.Path(name);
    return reinterpret_cast<MovableHandle>(host.record.service(
        nullptr, HostOpLoadImageFile, 0, reinterpret_cast<uint64_t>(path.c_str())));
  };
  for (const char* name : {"p.bmp", "p.png", "p.gif"}) EXPECT_EQ(Triples(load(name)), rgb) << name;
  const std::vector<uint8_t> jpeg = Triples(load("p.jpg"));
  ASSERT_EQ(jpeg.size(), rgb.size());
  for (size_t i = 0; i < rgb.size(); ++i) EXPECT_NEAR(jpeg[i], rgb[i], 4) << i;
  // Neither a damaged file nor a missing one gives a picture.
  EXPECT_EQ(load("p.txt"), nullptr);
  EXPECT_EQ(load("none.png"), nullptr);
  std::vector<uint8_t> cut = EncodeJpeg(rgb);
  // A GIF of 57 bytes that claims a canvas of 11024 by 15112: refused before it is decoded.
  const uint8_t huge[] = {0x47, 0x49, 0x46, 0x38, 0x39, 0x26, 0x10, 0x2B, 0x08, 0x3B, 0xF0, 0x00,
                          0x00, 0x1E, 0x1E, 0xC8, 0x00, 0x00, 0x00, 0x21, 0xF9, 0x04, 0x7B, 0x0A,
                          0x00, 0x00, 0x00, 0x2C, 0x10, 0x00, 0x00, 0x00, 0x01, 0x00, 0x08, 0x00,
                          0x80, 0xDC, 0xDC, 0x28, 0x00, 0x00, 0x00, 0x02, 0x0A, 0x82, 0x8F, 0xA9,
                          0xCB, 0xED, 0x0F, 0x9E, 0x5E, 0x9C, 0x01, 0x00, 0x3B};
  EXPECT_EQ(ReadPictureBytes(huge, sizeof huge), nullptr);
  cut.resize(20);  // inside the header
  EXPECT_EQ(ReadPictureBytes(cut.data(), cut.size()), nullptr);
  EndInProcessHost(&host);
}

// The sample files that the reference host's test reads through GDI+ read the same here.
TEST(PictureFiles, SampleFilesGiveTheirColours) {
  const std::string folder = std::string(GM5_SOURCE_ROOT) + "tests/fuzz/corpus/picture_files/";
  const std::pair<const char*, uint32_t> samples[] = {
      {"flat-green.png", 0x3CC81E}, {"two-frames.gif", 0xC81E1E}, {"flat-red.jpg", 0x1E1EC8}};
  for (const auto& [name, colour] : samples) {
    const PictureValues picture = TakePicture(ReadPictureFile((folder + name).c_str()));
    ASSERT_EQ(picture.width, 16) << name;
    for (uint32_t value : picture.values)
      for (int shift = 0; shift < 24; shift += 8)
        ASSERT_NEAR(int(value >> shift & 0xFF), int(colour >> shift & 0xFF), 3) << name;
  }
  // A CMYK JPEG comes out in colour too.
  const PictureValues cmyk = TakePicture(ReadPictureFile((folder + "seed-cmyk.jpg").c_str()));
  ASSERT_EQ(cmyk.bits, 24);
  EXPECT_GT(cmyk.At(0, 0) & 0xFF, 0xB0u) << "the top-left red stays red";
  EXPECT_LT(cmyk.At(0, 0) >> 8 & 0xFF, 0x60u);
}

}  // namespace
