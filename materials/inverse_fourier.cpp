// The two-dimensional transform runs along every row and then along every column. The column pass
// treats whole rows as its elements: the same butterflies with the same twiddle factors, applied
// to all columns at once, give each column exactly what a transform of that column alone would,
// while reading memory in order.
#include "materials/inverse_fourier.h"

#include <cmath>
#include <utility>

namespace {

constexpr double kTwoPi = 6.283185307179586;

// Runs the butterflies of a transform of length n whose element k is the `width` complex values
// at values + 2 * k * stride. Rows of one element are permuted into bit-reversed order first; the
// twiddle factor of each stage starts at 1 and advances by the recurrence w += w * (wp - 1),
// from sin(theta / 2) and sin(theta), in double precision. Products are rounded to single
// precision before they are added, as the storage is.
void Transform(float* values, int32_t n, int32_t stride, int32_t width) {
  for (int32_t i = 0, j = 0; i < n; ++i) {
    if (j > i) {
      float* a = values + 2 * static_cast<int64_t>(i) * stride;
      float* b = values + 2 * static_cast<int64_t>(j) * stride;
      for (int32_t c = 0; c < 2 * width; ++c) std::swap(a[c], b[c]);
    }
    int32_t bit = n >> 1;
    while (bit >= 1 && (j & bit)) {
      j ^= bit;
      bit >>= 1;
    }
    j |= bit;
  }
  for (int32_t half = 1; half < n; half *= 2) {
    const double theta = -kTwoPi / (2 * half);
    const double s = std::sin(0.5 * theta);
    const double wpr = -2.0 * s * s;
    const double wpi = std::sin(theta);
    double wr = 1.0, wi = 0.0;
    for (int32_t m = 0; m < half; ++m) {
      for (int32_t i = m; i < n; i += 2 * half) {
        float* a = values + 2 * static_cast<int64_t>(i) * stride;
        float* b = values + 2 * static_cast<int64_t>(i + half) * stride;
        for (int32_t c = 0; c < width; ++c) {
          const float tr = static_cast<float>(wr * b[2 * c] - wi * b[2 * c + 1]);
          const float ti = static_cast<float>(wr * b[2 * c + 1] + wi * b[2 * c]);
          b[2 * c] = a[2 * c] - tr;
          b[2 * c + 1] = a[2 * c + 1] - ti;
          a[2 * c] += tr;
          a[2 * c + 1] += ti;
        }
      }
      const double old = wr;
      wr = wr * wpr - wi * wpi + wr;
      wi = wi * wpr + old * wpi + wi;
    }
  }
}

}  // namespace

void InverseFourier2D(float* values, int32_t n) {
  for (int32_t r = 0; r < n; ++r) Transform(values + 2 * static_cast<int64_t>(r) * n, n, 1, 1);
  Transform(values, n, n, n);
}
