// GDI+ decodes the formats other than BMP; a GIF bitmap shows its first frame until another is
// selected. GDI+ is started and stopped around each picture, since the host may read one before
// or after the plug-in's own session.
#include "host/picture_file_win32.h"

#include <windows.h>
#include <objidl.h>  // IStream, left out by WIN32_LEAN_AND_MEAN
#include <gdiplus.h>

#include <cstring>
#include <string>
#include <vector>

#include "host/bmp_file.h"
#include "shell/packed_dib.h"

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

namespace {

// The picture's pixels, read as 24-bit rows, as a new bottom-up Packed DIB; null on failure.
MovableHandle DecodeWithGdiplus(const char* path) {
  const int length = MultiByteToWideChar(CP_ACP, 0, path, -1, nullptr, 0);
  if (length <= 0) return nullptr;
  std::wstring wide(static_cast<size_t>(length), L'\0');
  MultiByteToWideChar(CP_ACP, 0, path, -1, wide.data(), length);
  GpBitmap* bitmap = nullptr;
  if (GdipCreateBitmapFromFile(wide.c_str(), &bitmap) != Ok || !bitmap) return nullptr;
  UINT width = 0, height = 0;
  GdipGetImageWidth(bitmap, &width);
  GdipGetImageHeight(bitmap, &height);
  MovableHandle result = nullptr;
  if (width > 0 && height > 0 && width <= 65535 && height <= 65535) {
    const Rect area(0, 0, static_cast<INT>(width), static_cast<INT>(height));
    BitmapData data = {};
    if (GdipBitmapLockBits(bitmap, &area, ImageLockModeRead, PixelFormat24bppRGB, &data) == Ok) {
      ScopedBlock image(
          CreatePackedDib(static_cast<int32_t>(width), static_cast<int32_t>(height), nullptr, 24));
      ScopedLock pixels(image.handle);
      if (pixels) {
        const size_t stride = DibStride(static_cast<int32_t>(width), 24);
        // GDI+ rows run top first and hold blue, green, red, as the DIB's bottom-up rows do.
        for (UINT y = 0; y < height; ++y)
          std::memcpy(
              DibBits(pixels.bytes) + (height - 1 - y) * stride,
              static_cast<const uint8_t*>(data.Scan0) + static_cast<ptrdiff_t>(y) * data.Stride,
              static_cast<size_t>(width) * 3);
        result = image.Release();
      }
      GdipBitmapUnlockBits(bitmap, &data);
    }
  }
  GdipDisposeImage(bitmap);
  return result;
}

}  // namespace

MovableHandle ReadHostPictureFile(const char* path) {
  if (!path || !path[0]) return nullptr;
  const std::vector<uint8_t> bytes = ReadWholeFile(path);
  if (bytes.size() >= 2 && bytes[0] == 'B' && bytes[1] == 'M')
    return BmpToPackedDib(bytes.data(), bytes.size());
  if (bytes.empty()) return nullptr;
  GdiplusStartupInput input;
  ULONG_PTR token = 0;
  if (GdiplusStartup(&token, &input, nullptr) != Ok) return nullptr;
  MovableHandle picture = DecodeWithGdiplus(path);
  GdiplusShutdown(token);
  return picture;
}
