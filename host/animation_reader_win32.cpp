// Picture files read through GDI+ for the reference host: the file's frames along its time
// dimension (an animated GIF's, composed by GDI+ as a viewer shows them), each read as 32-bit ARGB
// and laid over white, with the delays of the GIF's frame-delay property.
#include "host/animation_reader.h"

#include <windows.h>
#include <objidl.h>  // PROPID and IStream, left out by WIN32_LEAN_AND_MEAN
#include <gdiplus.h>

#include <vector>

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

namespace {

// Frees the image on every path.
struct LoadedImage {
  GpImage* image = nullptr;
  ~LoadedImage() {
    if (image) GdipDisposeImage(image);
  }
};

// The delays of the frames in hundredths of a second, when the file has them.
std::vector<int32_t> FrameDelays(GpImage* image) {
  UINT size = 0;
  if (GdipGetPropertyItemSize(image, PropertyTagFrameDelay, &size) != Ok ||
      size < sizeof(PropertyItem))
    return {};
  std::vector<uint8_t> bytes(size);
  PropertyItem* item = reinterpret_cast<PropertyItem*>(bytes.data());
  if (GdipGetPropertyItem(image, PropertyTagFrameDelay, size, item) != Ok || !item->value) return {};
  const size_t count = item->length / 4;
  if (reinterpret_cast<uint8_t*>(item->value) + count * 4 > bytes.data() + size) return {};
  const int32_t* values = static_cast<const int32_t*>(item->value);
  return std::vector<int32_t>(values, values + count);
}

// The active frame as RGB triples over white, truncating as the built-in clip blends.
int ReadActiveFrame(GpImage* image, UINT width, UINT height, std::vector<uint8_t>* rgb) {
  const GpRect all(0, 0, static_cast<INT>(width), static_cast<INT>(height));
  BitmapData data{};
  GpBitmap* bitmap = static_cast<GpBitmap*>(image);
  if (GdipBitmapLockBits(bitmap, &all, ImageLockModeRead, PixelFormat32bppARGB, &data) != Ok)
    return 0;
  rgb->resize(static_cast<size_t>(width) * height * 3);
  uint8_t* out = rgb->data();
  for (UINT y = 0; y < height; ++y) {
    const uint8_t* row = static_cast<const uint8_t*>(data.Scan0) + static_cast<ptrdiff_t>(y) * data.Stride;
    for (UINT x = 0; x < width; ++x, out += 3) {
      const uint8_t* p = row + 4 * x;  // blue, green, red, alpha
      const uint32_t a = p[3];
      for (int c = 0; c < 3; ++c)
        out[c] = static_cast<uint8_t>(p[2 - c] * a / 255 + 255 * (255 - a) / 255);
    }
  }
  GdipBitmapUnlockBits(bitmap, &data);
  return 1;
}

int ReadWithGdiplus(const char* path, ComposedAnimation* out) {
  WCHAR wide[MAX_PATH + 1];
  if (!MultiByteToWideChar(CP_ACP, 0, path, -1, wide, MAX_PATH + 1)) return 0;
  LoadedImage loaded;
  if (GdipLoadImageFromFile(wide, &loaded.image) != Ok || !loaded.image) return 0;
  ImageType type = ImageTypeUnknown;
  if (GdipGetImageType(loaded.image, &type) != Ok || type != ImageTypeBitmap) return 0;
  UINT width = 0, height = 0;
  GdipGetImageWidth(loaded.image, &width);
  GdipGetImageHeight(loaded.image, &height);
  if (width == 0 || height == 0 || width > static_cast<UINT>(kAnimationLargestSide) ||
      height > static_cast<UINT>(kAnimationLargestSide))
    return 0;
  UINT dimensions = 0, count = 1;
  GUID dimension = {};
  GdipImageGetFrameDimensionsCount(loaded.image, &dimensions);
  if (dimensions > 0 && GdipImageGetFrameDimensionsList(loaded.image, &dimension, 1) == Ok)
    GdipImageGetFrameCount(loaded.image, &dimension, &count);
  else
    dimensions = 0;
  if (count == 0 ||
      static_cast<uint64_t>(width) * height * 3 * count > kAnimationLargestBytes)
    return 0;
  const std::vector<int32_t> delays = FrameDelays(loaded.image);
  out->width = static_cast<int32_t>(width);
  out->height = static_cast<int32_t>(height);
  out->frames.resize(count);
  out->delays.resize(count);
  for (UINT f = 0; f < count; ++f) {
    if (dimensions > 0 && GdipImageSelectActiveFrame(loaded.image, &dimension, f) != Ok) return 0;
    if (!ReadActiveFrame(loaded.image, width, height, &out->frames[f])) return 0;
    out->delays[f] = f < delays.size() ? delays[f] : kStillPictureDelay;
  }
  return 1;
}

}  // namespace

int ReadHostAnimationFile(const char* path, ComposedAnimation* out) {
  *out = ComposedAnimation();
  if (!path || !path[0]) return 0;
  // GDI+ counts its users: this session is the reader's own, whoever else has one open.
  GdiplusStartupInput input;
  ULONG_PTR token = 0;
  if (GdiplusStartup(&token, &input, nullptr) != Ok) return 0;
  const int ok = ReadWithGdiplus(path, out);
  GdiplusShutdown(token);
  if (!ok) *out = ComposedAnimation();
  return ok;
}
