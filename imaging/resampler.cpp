// Kernels as a table of functions and supports; passes over direct rows. Each channel byte of a
// pixel is filtered on its own: the sums run over contributions in ascending source order and are
// rounded half up after clamping, which the callers' pictures depend on to the bit.
#include "imaging/resampler.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "imaging/dib_view.h"
#include "imaging/palette.h"
#include "shell/packed_dib.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

double Blackman(double x) {
  return 0.42 + 0.5 * std::cos(kPi * x) + 0.08 * std::cos(2.0 * kPi * x);
}

double Sinc(double x) {
  if (x == 0.0) return 1.0;
  return std::sin(kPi * x) / (kPi * x);
}

// 1 for -0.5 <= x < 0.5.
double BoxKernel(double x, double) {
  return x >= -0.5 && x < 0.5 ? 1.0 : 0.0;
}
// 1 - |x| inside the support.
double TriangleKernel(double x, double) {
  x = std::fabs(x);
  return x < 1.0 ? 1.0 - x : 0.0;
}
// (2|x| - 3)x^2 + 1 inside the support.
double HermiteKernel(double x, double) {
  x = std::fabs(x);
  return x < 1.0 ? (2.0 * x - 3.0) * x * x + 1.0 : 0.0;
}
double HanningKernel(double x, double) {
  return 0.5 + 0.5 * std::cos(kPi * x);
}
double HammingKernel(double x, double) {
  return 0.54 + 0.46 * std::cos(kPi * x);
}
double BlackmanKernel(double x, double) {
  return Blackman(x);
}
// sqrt(2/pi) exp(-2x^2).
double GaussianKernel(double x, double) {
  return std::sqrt(2.0 / kPi) * std::exp(-2.0 * x * x);
}
double QuadraticKernel(double x, double) {
  x = std::fabs(x);
  if (x < 0.5) return 0.75 - x * x;
  if (x < 1.5) return 0.5 * (x - 1.5) * (x - 1.5);
  return 0.0;
}
// The uniform cubic B-spline.
double CubicKernel(double x, double) {
  x = std::fabs(x);
  if (x < 1.0) return (4.0 - 6.0 * x * x + 3.0 * x * x * x) / 6.0;
  if (x < 2.0) return (2.0 - x) * (2.0 - x) * (2.0 - x) / 6.0;
  return 0.0;
}
double CatmullRomKernel(double x, double) {
  x = std::fabs(x);
  if (x < 1.0) return (2.0 - 5.0 * x * x + 3.0 * x * x * x) / 2.0;
  if (x < 2.0) return (4.0 - 8.0 * x + 5.0 * x * x - x * x * x) / 2.0;
  return 0.0;
}
// Mitchell-Netravali with B = C = 1/3, as polynomials in x on each side of 0.
double MitchellKernel(double x, double) {
  const double b = 1.0 / 3.0, c = 1.0 / 3.0;
  const double p0 = (6.0 - 2.0 * b) / 6.0;
  const double p2 = (-18.0 + 12.0 * b + 6.0 * c) / 6.0;
  const double p3 = (12.0 - 9.0 * b - 6.0 * c) / 6.0;
  const double q0 = (8.0 * b + 24.0 * c) / 6.0;
  const double q1 = (-12.0 * b - 48.0 * c) / 6.0;
  const double q2 = (6.0 * b + 30.0 * c) / 6.0;
  const double q3 = (-1.0 * b - 6.0 * c) / 6.0;
  if (x < -2.0) return 0.0;
  if (x < -1.0) return q0 - x * (q1 - x * (q2 - x * q3));
  if (x < 0.0) return p0 + x * x * (p2 - x * p3);
  if (x < 1.0) return p0 + x * x * (p2 + x * p3);
  if (x < 2.0) return q0 + x * (q1 + x * (q2 + x * q3));
  return 0.0;
}
// sinc(x) sinc(x / 3) inside the support.
double LanczosKernel(double x, double) {
  if (x < -3.0 || x > 3.0) return 0.0;
  return Sinc(x) * Sinc(x / 3.0);
}
double BlackmanBesselKernel(double x, double support) {
  if (x == 0.0) return kPi / 4.0 * Blackman(0.0);
  return Blackman(x / support) * std::cyl_bessel_j(1.0, std::fabs(kPi * x)) / (2.0 * std::fabs(x));
}
double BlackmanSincKernel(double x, double support) {
  return Blackman(x / support) * Sinc(x);
}

// A picture's rows with the byte width of one pixel.
struct Plane {
  DibView view;
  int32_t bytesPerPixel;
};

int OpenPlane(void* header, size_t size, Plane* plane) {
  if (!OpenDibView(header, size, &plane->view)) return 0;
  plane->bytesPerPixel = plane->view.bitCount / 8;
  return plane->view.bitCount >= 8;
}

// Row `y` counted from the top of the picture.
inline uint8_t* TopRow(const DibView& v, int32_t y) {
  return DibRow(v, v.height - 1 - y);
}

inline uint8_t RoundChannel(double sum) {
  if (sum < 0.0) return 0;
  if (sum > 255.0) return 255;
  return static_cast<uint8_t>(static_cast<int32_t>(sum + 0.5));
}

// The contributions of target line `t`; returns their number, or -1 when they do not fit.
int32_t Contributions(int32_t t, double factor, double scale, double support, int32_t sourceSize,
                      const FilterEntry& filter, Contribution* list, int32_t capacity) {
  const double centre = (t + 0.5) / factor;
  const int32_t start = static_cast<int32_t>(std::max(centre - support + 0.5, 0.0));
  const int32_t stop =
      static_cast<int32_t>(std::min(centre + support + 0.5, static_cast<double>(sourceSize)));
  const int32_t n = stop - start;
  if (n > capacity) return -1;
  const double inverse = 1.0 / scale;
  double density = 0.0;
  for (int32_t i = 0; i < n; ++i) {
    list[i].pixel = start + i;
    list[i].weight = filter.kernel((start + i - centre + 0.5) * inverse, filter.support);
    density += list[i].weight;
  }
  if (density != 0.0 && density != 1.0) {
    density = 1.0 / density;
    for (int32_t i = 0; i < n; ++i) list[i].weight *= density;
  }
  return n < 0 ? 0 : n;
}

// The scale and support of a pass of `factor`; 0 when they are not finite numbers.
int PassSupport(double factor, const FilterEntry& filter, double blur, double* scale,
                double* support) {
  *scale = blur * std::max(1.0 / factor, 1.0);
  *support = *scale * filter.support;
  if (*support <= 0.5) {
    *support = 0.500001;
    *scale = 1.0;
  }
  return std::isfinite(*scale) && std::isfinite(*support);
}

int OpenPair(void* source, void* target, Plane* s, Plane* t) {
  // The blocks were sized by their makers; their headers are checked against their own rows.
  const BitmapInfoHeader* hs = static_cast<const BitmapInfoHeader*>(source);
  const BitmapInfoHeader* ht = static_cast<const BitmapInfoHeader*>(target);
  const size_t sizeS = kDibHeaderBytes + DibTableBytes(hs->biBitCount) + size_t{hs->biSizeImage};
  const size_t sizeT = kDibHeaderBytes + DibTableBytes(ht->biBitCount) + size_t{ht->biSizeImage};
  return OpenPlane(source, sizeS, s) && OpenPlane(target, sizeT, t) &&
         s->bytesPerPixel == t->bytesPerPixel;
}

}  // namespace

const FilterEntry kFilters[kFilterRows] = {
    {BoxKernel, 0.0},         {BoxKernel, 0.0},      {BoxKernel, 0.5},
    {TriangleKernel, 1.0},    {HermiteKernel, 1.0},  {HanningKernel, 1.0},
    {HammingKernel, 1.0},     {BlackmanKernel, 1.0}, {GaussianKernel, 1.25},
    {QuadraticKernel, 1.5},   {CubicKernel, 2.0},    {CatmullRomKernel, 2.0},
    {MitchellKernel, 2.0},    {LanczosKernel, 3.0},  {BlackmanBesselKernel, 3.2383000850677490},
    {BlackmanSincKernel, 4.0}};

namespace {

// Same-valued pixels ahead: run[x] is the first column at or after x whose pixel differs from
// pixel x (or the width). A contribution window lying inside one run gives that pixel back: the
// weights sum to 1 within a few units in the last place, far inside the rounding margin.
void MarkRuns(const uint8_t* in, int32_t width, int32_t bpp, int32_t* run) {
  if (width <= 0) return;
  run[width - 1] = width;
  for (int32_t x = width - 2; x >= 0; --x) {
    const uint8_t* a = in + static_cast<size_t>(x) * bpp;
    run[x] = std::memcmp(a, a + bpp, bpp) == 0 ? run[x + 1] : x + 1;
  }
}

// One target pixel of a row: each channel summed over the window in ascending source order.
// Other pixel widths go a channel at a time.
template <int kBpp>
inline void FilterPixel(const uint8_t* in, const Contribution* list, int32_t n, int32_t bpp,
                        uint8_t* out) {
  if constexpr (kBpp == 0) {
    for (int32_t k = 0; k < bpp; ++k) {
      double sum = 0.0;
      for (int32_t i = 0; i < n; ++i)
        sum += list[i].weight * in[static_cast<size_t>(list[i].pixel) * bpp + k];
      out[k] = RoundChannel(sum);
    }
  } else {
    double sum[kBpp] = {};
    for (int32_t i = 0; i < n; ++i) {
      const uint8_t* p = in + static_cast<size_t>(list[i].pixel) * kBpp;
      const double w = list[i].weight;
      for (int k = 0; k < kBpp; ++k) sum[k] += w * p[k];
    }
    for (int k = 0; k < kBpp; ++k) out[k] = RoundChannel(sum[k]);
  }
}

// Target columns [first, last) of every row of a width-changing pass; their contribution lists
// are ready, column x's `count[x - first]` entries at lists + (x - first) * capacity. kBpp 0 takes the pixel width from the picture.
template <int kBpp>
void FilterRows(const Plane& s, const Plane& t, int32_t first, int32_t last,
                const Contribution* lists, const int32_t* count, int32_t capacity, int32_t* run) {
  const int32_t bpp = kBpp ? kBpp : s.bytesPerPixel;
  for (int32_t y = 0; y < t.view.height; ++y) {
    const uint8_t* in = DibRow(s.view, y);
    uint8_t* out = DibRow(t.view, y);
    MarkRuns(in, s.view.width, bpp, run);
    for (int32_t x = first; x < last; ++x) {
      const Contribution* list = lists + static_cast<size_t>(x - first) * capacity;
      const int32_t n = count[x - first];
      uint8_t* o = out + static_cast<size_t>(x) * bpp;
      if (n > 0 && run[list[0].pixel] >= list[0].pixel + n) {
        std::memcpy(o, in + static_cast<size_t>(list[0].pixel) * bpp, bpp);
        continue;
      }
      FilterPixel<kBpp>(in, list, n, bpp, o);
    }
  }
}

}  // namespace

namespace {

// Target columns [first, last) of a width-changing pass.
int AcrossColumns(void* source, void* target, double factor, const FilterEntry& filter,
                  double blur, int32_t first, int32_t last, int32_t capacity) {
  Plane s, t;
  if (!OpenPair(source, target, &s, &t) || s.view.height != t.view.height) return 0;
  double scale, support;
  if (!PassSupport(factor, filter, blur, &scale, &support)) return 0;
  first = std::max(first, 0);
  last = std::min(last, t.view.width);
  if (first >= last) return 1;
  const int32_t bpp = s.bytesPerPixel;
  // Every target column's list, worked out once for all rows.
  const size_t columns = static_cast<size_t>(last - first);
  const size_t listBytes = columns * static_cast<size_t>(capacity) * sizeof(Contribution);
  const size_t countBytes = columns * sizeof(int32_t);
  const size_t runBytes = static_cast<size_t>(s.view.width) * sizeof(int32_t);
  ScopedBlock room(MovableAlloc(listBytes + countBytes + runBytes));
  ScopedLock roomLock(room.handle);
  if (!roomLock) return 0;
  Contribution* lists = reinterpret_cast<Contribution*>(roomLock.bytes);
  int32_t* count = reinterpret_cast<int32_t*>(roomLock.bytes + listBytes);
  int32_t* run = count + columns;
  for (size_t c = 0; c < columns; ++c) {
    count[c] = Contributions(first + static_cast<int32_t>(c), factor, scale, support,
                             s.view.width, filter, lists + c * capacity, capacity);
    if (count[c] < 0) return 0;
  }
  if (bpp == 1)
    FilterRows<1>(s, t, first, last, lists, count, capacity, run);
  else if (bpp == 3)
    FilterRows<3>(s, t, first, last, lists, count, capacity, run);
  else if (bpp == 4)
    FilterRows<4>(s, t, first, last, lists, count, capacity, run);
  else
    FilterRows<0>(s, t, first, last, lists, count, capacity, run);
  return 1;
}

// Eight bytes and their eight sums, worked on element by element.
typedef uint8_t Bytes8 __attribute__((vector_size(8)));
typedef double Doubles8 __attribute__((vector_size(64)));

// Columns [first, last) of a height-changing pass, each byte's terms summed in source order.
int DownColumns(void* source, void* target, double factor, const FilterEntry& filter, double blur,
                int32_t first, int32_t last, Contribution* contributions, int32_t capacity) {
  Plane s, t;
  if (!OpenPair(source, target, &s, &t) || s.view.width != t.view.width) return 0;
  double scale, support;
  if (!PassSupport(factor, filter, blur, &scale, &support)) return 0;
  first = std::max(first, 0);
  last = std::min(last, s.view.width);
  if (first >= last) return 1;
  const size_t begin = static_cast<size_t>(first) * s.bytesPerPixel;
  const size_t end = static_cast<size_t>(last) * s.bytesPerPixel;
  for (int32_t y = 0; y < t.view.height; ++y) {
    const int32_t n =
        Contributions(y, factor, scale, support, s.view.height, filter, contributions, capacity);
    if (n < 0) return 0;
    uint8_t* out = TopRow(t.view, y);
    size_t b = begin;
    // Eight bytes at a time, each summed in its own register in source order.
    for (; n > 0 && b + 8 <= end; b += 8) {
      // Where every row of the window holds the same eight bytes, the window gives them back.
      const uint8_t* first = TopRow(s.view, contributions[0].pixel) + b;
      int32_t i = 1;
      while (i < n && std::memcmp(TopRow(s.view, contributions[i].pixel) + b, first, 8) == 0) ++i;
      if (i == n) {
        std::memcpy(out + b, first, 8);
        continue;
      }
      // Element-wise products and sums of doubles, as the scalar terms give them; a row of
      // zeros adds nothing to any sum (x + 0 is x, and 0 + -0 is 0) and is passed over.
      Doubles8 sum = {};
      for (i = 0; i < n; ++i) {
        const uint8_t* in = TopRow(s.view, contributions[i].pixel) + b;
        uint64_t word;
        std::memcpy(&word, in, 8);
        if (word == 0) continue;
        Bytes8 bytes;
        std::memcpy(&bytes, in, 8);
        sum += contributions[i].weight * __builtin_convertvector(bytes, Doubles8);
      }
      for (int k = 0; k < 8; ++k) out[b + k] = RoundChannel(sum[k]);
    }
    for (; b < end; ++b) {
      double sum = 0.0;
      for (int32_t i = 0; i < n; ++i)
        sum += contributions[i].weight * TopRow(s.view, contributions[i].pixel)[b];
      out[b] = RoundChannel(sum);
    }
  }
  return 1;
}

// What a resampling of `sw` by `sh` to `width` by `height` works with.
struct ResamplePlan {
  double fx, fy;
  const FilterEntry* filter;
  int32_t capacity;
  bool downFirst;  // the cheaper temporary picture decides the order of the passes
};

int PlanResample(int32_t sw, int32_t sh, int32_t width, int32_t height, double blur,
                 ResamplePlan* plan) {
  plan->fx = std::max(static_cast<double>(width) / sw, 0.0001);
  plan->fy = std::max(static_cast<double>(height) / sh, 0.0001);
  // Mitchell for enlargement by area, Lanczos for reduction and equal size.
  plan->filter = &kFilters[plan->fx * plan->fy > 1.0 ? kFilterMitchell : kFilterLanczos];
  const double s0 = plan->filter->support;
  double room = std::max({s0, blur * s0 * std::max(1.0 / plan->fx, 1.0),
                          blur * s0 * std::max(1.0 / plan->fy, 1.0)});
  room = std::max(room, 0.5);
  const double slots = 2.0 * room + 3.0;
  if (!(slots < 0x10000000)) return 0;  // a blur beyond reason, or not a number
  plan->capacity = static_cast<int32_t>(slots);
  plan->downFirst = (int64_t{sh} + height) * width <= (int64_t{sw} + width) * height;
  return 1;
}

// Target columns [first, last) of the resampling of `source` to `target` along `plan`, through
// `temp`, the plan's temporary picture.
int ResampleRegion(void* source, void* temp, void* target, const ResamplePlan& plan, double blur,
                   int32_t first, int32_t last, Contribution* contributions) {
  const FilterEntry& filter = *plan.filter;
  if (!plan.downFirst)
    return AcrossColumns(source, temp, plan.fx, filter, blur, first, last, plan.capacity) &&
           DownColumns(temp, target, plan.fy, filter, blur, first, last, contributions,
                       plan.capacity);
  // The source columns the target columns' windows reach.
  const int32_t sw = reinterpret_cast<const BitmapInfoHeader*>(source)->biWidth;
  double scale, support;
  if (!PassSupport(plan.fx, filter, blur, &scale, &support)) return 0;
  const int32_t n0 = Contributions(first, plan.fx, scale, support, sw, filter, contributions,
                                   plan.capacity);
  const int32_t from = n0 > 0 ? contributions[0].pixel : 0;
  const int32_t n1 = Contributions(last - 1, plan.fx, scale, support, sw, filter, contributions,
                                   plan.capacity);
  const int32_t to = n1 > 0 ? contributions[n1 - 1].pixel + 1 : sw;
  if (n0 < 0 || n1 < 0) return 0;
  return DownColumns(source, temp, plan.fy, filter, blur, from, to, contributions,
                     plan.capacity) &&
         AcrossColumns(temp, target, plan.fx, filter, blur, first, last, plan.capacity);
}

// Runs `plan` from the locked `source` into the locked `target` for columns [first, last).
int RunPlan(void* source, void* target, const ResamplePlan& plan, int32_t first, int32_t last,
            const uint8_t* palette) {
  const BitmapInfoHeader* hs = static_cast<const BitmapInfoHeader*>(source);
  const BitmapInfoHeader* ht = static_cast<const BitmapInfoHeader*>(target);
  const int32_t depth = hs->biBitCount;
  ScopedBlock list(MovableAlloc(sizeof(Contribution) * static_cast<size_t>(plan.capacity)));
  ScopedLock listLock(list.handle);
  ScopedBlock temp(plan.downFirst ? CreatePackedDib(hs->biWidth, ht->biHeight, palette, depth)
                                  : CreatePackedDib(ht->biWidth, hs->biHeight, palette, depth));
  ScopedLock tempLock(temp.handle);
  if (!listLock || !tempLock) return 0;
  return ResampleRegion(source, tempLock.bytes, target, plan, 1.0, first, last,
                        reinterpret_cast<Contribution*>(listLock.bytes));
}

}  // namespace

int ResampleAcross(void* source, void* target, double factor, const FilterEntry& filter,
                   double blur, Contribution* contributions, int32_t capacity) {
  (void)contributions;  // each column's list is kept for all rows instead
  const int32_t width = static_cast<const BitmapInfoHeader*>(target)->biWidth;
  return AcrossColumns(source, target, factor, filter, blur, 0, width, capacity);
}

int ResampleDown(void* source, void* target, double factor, const FilterEntry& filter, double blur,
                 Contribution* contributions, int32_t capacity) {
  const int32_t width = static_cast<const BitmapInfoHeader*>(source)->biWidth;
  return DownColumns(source, target, factor, filter, blur, 0, width, contributions, capacity);
}

MovableHandle ResampleImage(MovableHandle image, int32_t width, int32_t height, int32_t unused,
                            double blur) {
  ScopedLock source(image);
  Plane s;
  if (!source || !OpenPlane(source.bytes, MovableSize(image), &s) || !std::isfinite(blur))
    return nullptr;
  const int32_t sw = s.view.width, sh = s.view.height, depth = s.view.bitCount;
  uint8_t palette[kPaletteBytes];
  const bool hasTable = ReadDibPalette(source.bytes, palette) > 0;
  ScopedBlock target(CreatePackedDib(width, height, hasTable ? palette : nullptr, depth));
  if (!target.handle) return nullptr;
  if (width == sw && height == sh && blur == 1.0) {
    MovableFree(target.Release());
    return DuplicateHandle(image);
  }
  if (width == 0 || height == 0) return target.Release();

  ResamplePlan plan;
  if (!PlanResample(sw, sh, width, height, blur, &plan)) return nullptr;
  ScopedBlock list(MovableAlloc(sizeof(Contribution) * static_cast<size_t>(plan.capacity)));
  ScopedLock listLock(list.handle);
  if (!listLock) return nullptr;
  Contribution* contributions = reinterpret_cast<Contribution*>(listLock.bytes);
  ScopedBlock temp(plan.downFirst
                       ? CreatePackedDib(sw, height, hasTable ? palette : nullptr, depth)
                       : CreatePackedDib(width, sh, hasTable ? palette : nullptr, depth));
  ScopedLock tempLock(temp.handle);
  ScopedLock targetLock(target.handle);
  if (!tempLock || !targetLock) return nullptr;
  int ok;
  if (plan.downFirst)
    ok = ResampleDown(source.bytes, tempLock.bytes, plan.fy, *plan.filter, blur, contributions,
                      plan.capacity) &&
         ResampleAcross(tempLock.bytes, targetLock.bytes, plan.fx, *plan.filter, blur,
                        contributions, plan.capacity);
  else
    ok = ResampleAcross(source.bytes, tempLock.bytes, plan.fx, *plan.filter, blur, contributions,
                        plan.capacity) &&
         ResampleDown(tempLock.bytes, targetLock.bytes, plan.fy, *plan.filter, blur,
                      contributions, plan.capacity);
  if (!ok) return nullptr;
  return target.Release();
}

int ResampleColumns(MovableHandle image, MovableHandle target, int32_t first, int32_t last) {
  ScopedLock source(image), out(target);
  Plane s, t;
  if (!source || !out || !OpenPlane(source.bytes, MovableSize(image), &s) ||
      !OpenPlane(out.bytes, MovableSize(target), &t) || s.view.bitCount != t.view.bitCount)
    return 0;
  const int32_t sw = s.view.width, sh = s.view.height, width = t.view.width,
                height = t.view.height;
  first = std::max(first, 0);
  last = std::min(last, width);
  if (first >= last) return 1;
  if (width == sw && height == sh) {  // the copy
    const size_t from = static_cast<size_t>(first) * s.bytesPerPixel;
    const size_t bytes = static_cast<size_t>(last - first) * s.bytesPerPixel;
    for (int32_t y = 0; y < height; ++y)
      std::memcpy(DibRow(t.view, y) + from, DibRow(s.view, y) + from, bytes);
    return 1;
  }
  ResamplePlan plan;
  uint8_t palette[kPaletteBytes];
  const bool hasTable = ReadDibPalette(source.bytes, palette) > 0;
  return PlanResample(sw, sh, width, height, 1.0, &plan) &&
         RunPlan(source.bytes, out.bytes, plan, first, last, hasTable ? palette : nullptr);
}

MovableHandle ResampleByPercent(MovableHandle image, double xPercent, double yPercent) {
  int32_t sw = 0, sh = 0;
  {
    ScopedLock lock(image);
    if (!lock || MovableSize(image) < kDibHeaderBytes) return nullptr;
    const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    sw = h->biWidth;
    sh = h->biHeight;
  }
  const double w = std::trunc(sw * xPercent / 100.0 + 0.5);
  const double h = std::trunc(sh * yPercent / 100.0 + 0.5);
  if (!(w >= 0.0 && w < 0x7FFFFFFF && h >= 0.0 && h < 0x7FFFFFFF)) return nullptr;
  return ResampleImage(image, static_cast<int32_t>(w), static_cast<int32_t>(h), 0, 1.0);
}

int ResampleFromColumns(MovableHandle image, MovableHandle target, int32_t sourceFirst,
                        int32_t sourceLast) {
  int32_t sw = 0, sh = 0, width = 0, height = 0;
  {
    ScopedLock source(image), out(target);
    if (!source || !out || MovableSize(image) < kDibHeaderBytes ||
        MovableSize(target) < kDibHeaderBytes)
      return 0;
    sw = reinterpret_cast<const BitmapInfoHeader*>(source.bytes)->biWidth;
    sh = reinterpret_cast<const BitmapInfoHeader*>(source.bytes)->biHeight;
    width = reinterpret_cast<const BitmapInfoHeader*>(out.bytes)->biWidth;
    height = reinterpret_cast<const BitmapInfoHeader*>(out.bytes)->biHeight;
  }
  if (sw < 1 || sh < 1 || width < 1 || height < 1) return 0;
  if (sourceFirst >= sourceLast) return 1;
  ResamplePlan plan;
  double scale, support;
  if (!PlanResample(sw, sh, width, height, 1.0, &plan) ||
      !PassSupport(plan.fx, *plan.filter, 1.0, &scale, &support))
    return 0;
  // Column x's window runs from about (x + 0.5) / fx - support to as far past it; a column
  // further widens the range for the truncations.
  const double from = std::floor((sourceFirst - support - 0.5) * plan.fx - 0.5) - 1.0;
  const double to = std::ceil((sourceLast + support + 0.5) * plan.fx - 0.5) + 2.0;
  const int32_t first = static_cast<int32_t>(std::clamp(from, 0.0, static_cast<double>(width)));
  const int32_t last = static_cast<int32_t>(std::clamp(to, 0.0, static_cast<double>(width)));
  return ResampleColumns(image, target, first, last);
}
