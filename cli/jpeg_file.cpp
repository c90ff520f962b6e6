// libjpeg reports errors by calling error_exit, which must not return: it jumps back to the one
// setjmp below. Nothing with a destructor is made between the setjmp and the jump, and the
// decompressor is destroyed on both paths. Warnings are dropped: gm5 prints nothing for them.
#include "cli/jpeg_file.h"

#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>

#include "cli/animation_files.h"

namespace {

struct ErrorManager {
  jpeg_error_mgr base;
  std::jmp_buf jump;
};

void ExitByJump(j_common_ptr info) {
  std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->jump, 1);
}

void NoMessage(j_common_ptr, int) {}
void NoOutput(j_common_ptr) {}

// Reads the scanlines into `rgb` (already sized); CMYK rows are converted on the way.
void ReadRows(jpeg_decompress_struct* info, int cmyk, std::vector<uint8_t>* rgb,
              std::vector<uint8_t>* row) {
  const size_t width = info->output_width;
  while (info->output_scanline < info->output_height) {
    const size_t y = info->output_scanline;
    uint8_t* target = rgb->data() + y * width * 3;
    JSAMPROW line = cmyk ? row->data() : target;
    if (jpeg_read_scanlines(info, &line, 1) != 1) ExitByJump(reinterpret_cast<j_common_ptr>(info));
    if (!cmyk) continue;
    for (size_t x = 0; x < width; ++x) {
      const uint8_t* p = row->data() + 4 * x;
      // Adobe's files store the inks inverted: 255 means no ink.
      for (int c = 0; c < 3; ++c) target[3 * x + c] = static_cast<uint8_t>(p[c] * p[3] / 255);
    }
  }
}

}  // namespace

int ReadJpegBytes(const uint8_t* bytes, size_t size, int32_t* width, int32_t* height,
                  std::vector<uint8_t>* rgb, uint64_t largestPixels) {
  if (!bytes || size < 4 || bytes[0] != 0xFF || bytes[1] != 0xD8) return 0;
  std::vector<uint8_t> row;
  jpeg_decompress_struct info;
  ErrorManager errors;
  info.err = jpeg_std_error(&errors.base);
  errors.base.error_exit = ExitByJump;
  errors.base.emit_message = NoMessage;
  errors.base.output_message = NoOutput;
  if (setjmp(errors.jump)) {
    jpeg_destroy_decompress(&info);
    rgb->clear();
    return 0;
  }
  jpeg_create_decompress(&info);
  // Large progressive files would want a backing store, which this library lacks: a limit makes
  // them fail rather than take the machine's memory.
  info.mem->max_memory_to_use = 512L * 1024 * 1024;
  jpeg_mem_src(&info, bytes, static_cast<unsigned long>(size));
  if (jpeg_read_header(&info, TRUE) != JPEG_HEADER_OK)
    ExitByJump(reinterpret_cast<j_common_ptr>(&info));
  const uint64_t pixels = uint64_t{info.image_width} * info.image_height;
  if (info.image_width > static_cast<uint32_t>(kAnimationLargestSide) ||
      info.image_height > static_cast<uint32_t>(kAnimationLargestSide) || pixels == 0 ||
      pixels > largestPixels)
    ExitByJump(reinterpret_cast<j_common_ptr>(&info));
  const int cmyk = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
  info.out_color_space = cmyk ? JCS_CMYK : JCS_RGB;
  jpeg_start_decompress(&info);
  rgb->assign(static_cast<size_t>(info.output_width) * info.output_height * 3, 0);
  if (cmyk) row.assign(static_cast<size_t>(info.output_width) * 4, 0);
  ReadRows(&info, cmyk, rgb, &row);
  jpeg_finish_decompress(&info);
  *width = static_cast<int32_t>(info.output_width);
  *height = static_cast<int32_t>(info.output_height);
  jpeg_destroy_decompress(&info);
  return 1;
}
