// The Gaussian and box blurs. Lines are convolved straight in the picture's rows (8-bit and 24-bit
// rows hold their pixels contiguously) and columns through two line buffers; every sum runs over
// the taps in ascending order so that the doubles round the same way on every platform.
#include "text/blur.h"

#include <cmath>
#include <cstring>

#include "shell/packed_dib.h"

int32_t MakeGaussianKernel(int32_t taps, double sigma, MovableHandle* kernel) {
  *kernel = nullptr;
  if (taps < 1) taps = 3;
  ScopedBlock block(MovableAlloc(sizeof(double) * static_cast<size_t>(taps)));
  ScopedLock lock(block.handle);
  if (!lock) return 0;
  double* table = reinterpret_cast<double*>(lock.bytes);
  // Three samples per tap, i in thirds of a pixel: 18 = 2 * 3 * 3 turns 2 sigma^2 into thirds.
  const int32_t half = taps * 3 / 2;
  int32_t c = 0;
  for (int32_t i = -half; i <= half; ++i, ++c) {
    const int32_t entry = c / 3;
    if (entry < taps) table[entry] += std::exp(-(i * i) / (sigma * 18.0 * sigma));
  }
  double sum = 0.0;
  for (int32_t k = 0; k < taps; ++k) sum += table[k];
  for (int32_t k = 0; k < taps; ++k) table[k] /= sum;
  *kernel = block.Release();
  return taps;
}

namespace {

// The convolution of one position with the taps from `first` to `last`, renormalised when it is
// an edge position; each sum runs over the taps in ascending order.
void ConvolveEdge(const double* kernel, int32_t taps, const uint8_t* source, uint8_t* target,
                  int32_t length, int32_t channels, int32_t i) {
  const int32_t half = taps / 2;
  const int32_t first = i < half ? half - i : 0;
  const int32_t last = i >= length - half ? half - i + length : taps;
  const uint8_t* s = source + static_cast<size_t>(i - half + first) * channels;
  double weights = 0.0;
  double sum[3] = {0.0, 0.0, 0.0};
  for (int32_t k = first; k < last; ++k, s += channels) {
    const double w = kernel[k];
    weights += w;
    for (int32_t ch = 0; ch < channels; ++ch) sum[ch] += w * s[ch];
  }
  uint8_t* t = target + static_cast<size_t>(i) * channels;
  // The half is added before the division at the edges.
  for (int32_t ch = 0; ch < channels; ++ch) {
    t[ch] = static_cast<uint8_t>(static_cast<int32_t>((sum[ch] + 0.5) / weights));
  }
}

// One line of `channels` interleaved channels; see ConvolveLine8. The middle run is done a block
// of outputs at a time, tap by tap across the block: every output still adds its products in tap
// order, so the bytes are those of one output at a time, and the block loop vectorises.
void ConvolveLine(const double* kernel, int32_t taps, const uint8_t* source, uint8_t* target,
                  int32_t length, int32_t channels) {
  if (taps > length) return;
  const int32_t half = taps / 2;
  for (int32_t i = 0; i < half; ++i)
    ConvolveEdge(kernel, taps, source, target, length, channels, i);
  constexpr int32_t kBlock = 240;  // a multiple of three channels
  double sums[kBlock];
  const int32_t begin = half * channels, end = (length - half) * channels;
  for (int32_t j0 = begin; j0 < end; j0 += kBlock) {
    const int32_t n = end - j0 < kBlock ? end - j0 : kBlock;
    for (int32_t t = 0; t < n; ++t) sums[t] = 0.0;
    for (int32_t k = 0; k < taps; ++k) {
      const double w = kernel[k];
      const uint8_t* s = source + (j0 - begin) + k * channels;
      for (int32_t t = 0; t < n; ++t) sums[t] += w * s[t];
    }
    for (int32_t t = 0; t < n; ++t) {
      target[j0 + t] = static_cast<uint8_t>(static_cast<int32_t>(sums[t] + 0.5));
    }
  }
  for (int32_t i = length - half; i < length; ++i) {
    ConvolveEdge(kernel, taps, source, target, length, channels, i);
  }
}

}  // namespace

void ConvolveLine8(const double* kernel, int32_t taps, const uint8_t* source, uint8_t* target,
                   int32_t length) {
  ConvolveLine(kernel, taps, source, target, length, 1);
}

void ConvolveLine24(const double* kernel, int32_t taps, const uint8_t* source, uint8_t* target,
                    int32_t length) {
  ConvolveLine(kernel, taps, source, target, length, 3);
}

MovableHandle GaussianBlur(MovableHandle image, int32_t reach, int32_t sigmaTenths) {
  (void)reach;  // the kernel length is fixed whatever the callers ask
  ScopedLock source(image);
  if (!source || MovableSize(image) < kDibHeaderBytes) return nullptr;
  const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(source.bytes);
  const int32_t bits = header->biBitCount;
  if (bits != 8 && bits != 24) return nullptr;
  const int32_t channels = bits / 8;
  const int32_t width = header->biWidth;
  const int32_t height = header->biHeight;
  const size_t stride = DibStride(width, bits);
  const size_t bitsOffset = DibBits(source.bytes) - source.bytes;
  if (width < 0 || height < 0 || bitsOffset + stride * height > MovableSize(image)) return nullptr;

  ScopedBlock result(CopyMovableBlock(image));
  ScopedBlock lines(MovableAlloc(static_cast<size_t>(height) * 3 * 2 + 1));
  if (!result.handle || !lines.handle) return nullptr;
  MovableHandle kernelHandle = nullptr;
  const int32_t taps = MakeGaussianKernel(2 * static_cast<int32_t>(std::ceil(20.0)) + 1,
                                          sigmaTenths / 10.0, &kernelHandle);
  ScopedBlock kernelBlock(kernelHandle);
  ScopedLock kernelLock(kernelHandle);
  ScopedLock target(result.handle);
  ScopedLock buffers(lines.handle);
  if (!taps || !kernelLock || !target || !buffers) return nullptr;
  const double* kernel = reinterpret_cast<const double*>(kernelLock.bytes);
  uint8_t* from = source.bytes + bitsOffset;
  uint8_t* to = target.bytes + bitsOffset;

  for (int32_t row = 0; row < height; ++row) {
    ConvolveLine(kernel, taps, from + row * stride, to + row * stride, width, channels);
  }
  std::memcpy(from, to, stride * height);

  // Columns run from the top row down; the second buffer is never cleared between columns, so a
  // column too short to convolve writes out the zeroes it started with.
  uint8_t* column = buffers.bytes;
  uint8_t* blurred = buffers.bytes + static_cast<size_t>(height) * 3;
  for (int32_t x = 0; x < width; ++x) {
    for (int32_t y = 0; y < height; ++y) {
      std::memcpy(column + y * channels, from + (height - 1 - y) * stride + x * channels, channels);
    }
    ConvolveLine(kernel, taps, column, blurred, height, channels);
    for (int32_t y = 0; y < height; ++y) {
      std::memcpy(to + (height - 1 - y) * stride + x * channels, blurred + y * channels, channels);
    }
  }
  return result.Release();
}

MovableHandle FastBoxBlur(MovableHandle image, int32_t strength) {
  const int32_t r = strength / 6;
  if (r < 1) return nullptr;
  ScopedLock source(image);
  if (!source || MovableSize(image) < kDibHeaderBytes) return nullptr;
  const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(source.bytes);
  if (header->biBitCount < 24) return nullptr;
  const int32_t width = header->biWidth;
  const int32_t height = header->biHeight;
  const size_t bitsOffset = DibBits(source.bytes) - source.bytes;
  const size_t count = static_cast<size_t>(width) * height;
  if (width < 1 || height < 1 || bitsOffset + count * 3 > MovableSize(image)) return nullptr;

  const int32_t window = 2 * r + 1;
  ScopedBlock result(CopyMovableBlock(image));
  ScopedBlock table(MovableAlloc(sizeof(int32_t) * static_cast<size_t>(window) * 256));
  ScopedBlock planes(MovableAlloc(count * 3));
  ScopedLock target(result.handle);
  ScopedLock tableLock(table.handle);
  ScopedLock planeLock(planes.handle);
  if (!target || !tableLock || !planeLock) return nullptr;
  int32_t* dv = reinterpret_cast<int32_t*>(tableLock.bytes);
  for (int32_t i = 0; i < window * 256; ++i) dv[i] = i / window;
  uint8_t* pixels = target.bytes + bitsOffset;  // count three-byte pixels, no row padding
  uint8_t* plane[3] = {planeLock.bytes, planeLock.bytes + count, planeLock.bytes + 2 * count};

  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* row = pixels + static_cast<size_t>(y) * width * 3;
    const size_t base = static_cast<size_t>(y) * width;
    int32_t sum[3] = {0, 0, 0};
    for (int32_t i = -r; i <= r; ++i) {
      const int32_t at = i < 0 ? 0 : (i > width - 1 ? width - 1 : i);
      for (int32_t ch = 0; ch < 3; ++ch) sum[ch] += row[at * 3 + ch];
    }
    for (int32_t x = 0; x < width; ++x) {
      for (int32_t ch = 0; ch < 3; ++ch) plane[ch][base + x] = static_cast<uint8_t>(dv[sum[ch]]);
      const int32_t add = x + r + 1 < width - 1 ? x + r + 1 : width - 1;
      const int32_t drop = x - r > 0 ? x - r : 0;
      for (int32_t ch = 0; ch < 3; ++ch) sum[ch] += row[add * 3 + ch] - row[drop * 3 + ch];
    }
  }
  for (int32_t x = 0; x < width; ++x) {
    int32_t sum[3] = {0, 0, 0};
    // Rows past the last are held to it: the same rows the window would reach on a taller picture
    // are clamped the same way when the sliding window moves down.
    for (int32_t i = -r; i <= r; ++i) {
      const int32_t at = i < 0 ? 0 : (i > height - 1 ? height - 1 : i);
      for (int32_t ch = 0; ch < 3; ++ch) sum[ch] += plane[ch][static_cast<size_t>(at) * width + x];
    }
    for (int32_t y = 0; y < height; ++y) {
      uint8_t* p = pixels + (static_cast<size_t>(y) * width + x) * 3;
      for (int32_t ch = 0; ch < 3; ++ch) p[ch] = static_cast<uint8_t>(dv[sum[ch]]);
      const size_t add =
          static_cast<size_t>(y + r + 1 < height - 1 ? y + r + 1 : height - 1) * width;
      const size_t drop = static_cast<size_t>(y - r > 0 ? y - r : 0) * width;
      for (int32_t ch = 0; ch < 3; ++ch) sum[ch] += plane[ch][add + x] - plane[ch][drop + x];
    }
  }
  return result.Release();
}
