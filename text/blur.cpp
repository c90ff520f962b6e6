// The Gaussian and box blurs. Rows are convolved straight in the picture (8-bit and 24-bit rows
// hold their pixels contiguously), columns a row of outputs at a time; every sum runs over the taps
// in ascending order so that the doubles round the same way on every platform.
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

// Outputs `from` to `to` of one line of `channels` interleaved channels; see ConvolveLine8. The
// middle run is done a block of outputs at a time, tap by tap across the block: every output still
// adds its products in tap order, so the bytes are those of one output at a time, and the block
// loop vectorises.
void ConvolveRange(const double* kernel, int32_t taps, const uint8_t* source, uint8_t* target,
                   int32_t length, int32_t channels, int32_t from, int32_t to) {
  const int32_t half = taps / 2;
  const int32_t middleFrom = from > half ? from : half;
  const int32_t middleTo = to < length - half ? to : length - half;
  for (int32_t i = from; i < to && i < half; ++i)
    ConvolveEdge(kernel, taps, source, target, length, channels, i);
  constexpr int32_t kBlock = 240;  // a multiple of three channels
  double sums[kBlock];
  const int32_t begin = middleFrom * channels, end = middleTo * channels;
  for (int32_t j0 = begin; j0 < end; j0 += kBlock) {
    const int32_t n = end - j0 < kBlock ? end - j0 : kBlock;
    for (int32_t t = 0; t < n; ++t) sums[t] = 0.0;
    for (int32_t k = 0; k < taps; ++k) {
      const double w = kernel[k];
      const uint8_t* s = source + (j0 - half * channels) + k * channels;
      for (int32_t t = 0; t < n; ++t) sums[t] += w * s[t];
    }
    for (int32_t t = 0; t < n; ++t) {
      target[j0 + t] = static_cast<uint8_t>(static_cast<int32_t>(sums[t] + 0.5));
    }
  }
  for (int32_t i = length - half > from ? length - half : from; i < to; ++i) {
    ConvolveEdge(kernel, taps, source, target, length, channels, i);
  }
}

void ConvolveLine(const double* kernel, int32_t taps, const uint8_t* source, uint8_t* target,
                  int32_t length, int32_t channels) {
  if (taps > length) return;
  ConvolveRange(kernel, taps, source, target, length, channels, 0, length);
}

// The bytes [first, last) of a run that are not 0, as last <= first when none is.
void NonZeroSpan(const uint8_t* bytes, int32_t count, int32_t* first, int32_t* last) {
  int32_t a = 0, b = count;
  while (a < count && !bytes[a]) ++a;
  while (b > a && !bytes[b - 1]) --b;
  *first = a;
  *last = b;
}

// The row pass of the blur on one row, `from` into `to` (which holds a copy of `from`). An output
// whose taps all fall on zero bytes is 0 in the middle and at the edges alike (the half over a
// weight above a half truncates to 0), so only the outputs within reach of a nonzero byte are
// computed; the others already hold the 0 of their own source byte.
void BlurRow(const double* kernel, int32_t taps, const uint8_t* from, uint8_t* to, int32_t width,
             int32_t channels) {
  int32_t first, last;
  NonZeroSpan(from, width * channels, &first, &last);
  if (last <= first) return;
  const int32_t half = taps / 2;
  const int32_t lo = first / channels - half, hi = (last - 1) / channels + half + 1;
  ConvolveRange(kernel, taps, from, to, width, channels, lo > 0 ? lo : 0, hi < width ? hi : width);
}

// The column pass, done a whole row of outputs at a time: output row i (counted from the top) adds
// the taps' source rows in tap order for each byte, which is each column's own convolution, with
// the same edge renormalisation. Bytes beyond reach of any nonzero byte stay as `to` holds them:
// the row pass, 0 there as well. `spans` holds each source row's nonzero bytes (2 per row), and
// `sums` one double per byte of a row.
void BlurColumns(const double* kernel, int32_t taps, const uint8_t* from, uint8_t* to,
                 int32_t height, size_t stride, int32_t rowBytes, int32_t* spans, double* sums) {
  const int32_t half = taps / 2;
  auto row = [&](const uint8_t* base, int32_t topDown) {
    return base + static_cast<size_t>(height - 1 - topDown) * stride;
  };
  for (int32_t y = 0; y < height; ++y)
    NonZeroSpan(row(from, y), rowBytes, &spans[2 * y], &spans[2 * y + 1]);
  for (int32_t i = 0; i < height; ++i) {
    const int32_t firstTap = i < half ? half - i : 0;
    const int32_t lastTap = i >= height - half ? half - i + height : taps;
    int32_t lo = rowBytes, hi = 0;
    for (int32_t k = firstTap; k < lastTap; ++k) {
      const int32_t* span = &spans[2 * (i - half + k)];
      if (span[1] <= span[0]) continue;
      if (span[0] < lo) lo = span[0];
      if (span[1] > hi) hi = span[1];
    }
    if (hi <= lo) continue;
    for (int32_t b = lo; b < hi; ++b) sums[b] = 0.0;
    double weights = 0.0;
    for (int32_t k = firstTap; k < lastTap; ++k) {
      const double w = kernel[k];
      weights += w;
      const uint8_t* s = row(from, i - half + k);
      for (int32_t b = lo; b < hi; ++b) sums[b] += w * s[b];
    }
    uint8_t* t = to + static_cast<size_t>(height - 1 - i) * stride;
    if (firstTap == 0 && lastTap == taps) {
      for (int32_t b = lo; b < hi; ++b)
        t[b] = static_cast<uint8_t>(static_cast<int32_t>(sums[b] + 0.5));
    } else {
      for (int32_t b = lo; b < hi; ++b)
        t[b] = static_cast<uint8_t>(static_cast<int32_t>((sums[b] + 0.5) / weights));
    }
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

  const int32_t rowBytes = width * channels;
  ScopedBlock result(CopyMovableBlock(image));
  ScopedBlock work(MovableAlloc(static_cast<size_t>(height) * 2 * sizeof(int32_t) +
                                static_cast<size_t>(rowBytes) * sizeof(double) + 1));
  if (!result.handle || !work.handle) return nullptr;
  MovableHandle kernelHandle = nullptr;
  const int32_t taps = MakeGaussianKernel(2 * static_cast<int32_t>(std::ceil(20.0)) + 1,
                                          sigmaTenths / 10.0, &kernelHandle);
  ScopedBlock kernelBlock(kernelHandle);
  ScopedLock kernelLock(kernelHandle);
  ScopedLock target(result.handle);
  ScopedLock buffers(work.handle);
  if (!taps || !kernelLock || !target || !buffers) return nullptr;
  const double* kernel = reinterpret_cast<const double*>(kernelLock.bytes);
  uint8_t* from = source.bytes + bitsOffset;
  uint8_t* to = target.bytes + bitsOffset;

  // A line shorter than the kernel is left as it was: rows keep their pixels.
  if (taps <= width) {
    for (int32_t row = 0; row < height; ++row) {
      BlurRow(kernel, taps, from + row * stride, to + row * stride, width, channels);
    }
  }
  std::memcpy(from, to, stride * height);

  // A column too short to convolve comes out all 0.
  if (taps > height) {
    for (int32_t row = 0; row < height; ++row) std::memset(to + row * stride, 0, rowBytes);
    return result.Release();
  }
  double* sums = reinterpret_cast<double*>(buffers.bytes);
  int32_t* spans = reinterpret_cast<int32_t*>(buffers.bytes + rowBytes * sizeof(double));
  BlurColumns(kernel, taps, from, to, height, stride, rowBytes, spans, sums);
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
