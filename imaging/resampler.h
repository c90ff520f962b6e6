// The separable two-pass resampler and its table of filter kernels. Pictures of 8, 24 or 32 bits
// are filtered channel by channel (an 8-bit picture by its index values, as grey); each pass
// computes one contribution list per target line and reuses it along the line. Results are new
// Packed DIBs owned by the caller; the source is never changed.
#pragma once

#include <cstdint>

#include "platform/memory.h"

typedef double (*FilterKernel)(double x, double support);

struct FilterEntry {
  FilterKernel kernel;
  double support;
};

enum FilterRow {
  kFilterBoxUnused,
  kFilterPoint,
  kFilterBox,
  kFilterTriangle,
  kFilterHermite,
  kFilterHanning,
  kFilterHamming,
  kFilterBlackman,
  kFilterGaussian,
  kFilterQuadratic,
  kFilterCubic,
  kFilterCatmullRom,
  kFilterMitchell,
  kFilterLanczos,
  kFilterBlackmanBessel,
  kFilterBlackmanSinc,
  kFilterRows
};

extern const FilterEntry kFilters[kFilterRows];

struct Contribution {
  double weight;
  int32_t pixel;
};

// A new picture of `width` by `height` with the depth and colour table of `image`, or 0. `blur`
// of 1.0 adds no softening. A same-size call with blur 1.0 gives a byte copy.
MovableHandle ResampleImage(MovableHandle image, int32_t width, int32_t height, int32_t unused,
                            double blur);
// ResampleImage to a percentage of each side, rounded half up; blur 1.0.
MovableHandle ResampleByPercent(MovableHandle image, double xPercent, double yPercent);

// Rewrites columns [first, last) of `target` as ResampleImage(image, target's width, target's
// height, 0, 1.0) would make them, leaving its other columns alone; `target` has the depth of
// `image`. The work is limited to the source columns those target columns reach. Returns 0 on
// failure.
int ResampleColumns(MovableHandle image, MovableHandle target, int32_t first, int32_t last);
// ResampleColumns over every target column whose filter window reaches source columns
// [sourceFirst, sourceLast), and a few more: after a change to only those source columns, this
// brings a target made from the old source up to date.
int ResampleFromColumns(MovableHandle image, MovableHandle target, int32_t sourceFirst,
                        int32_t sourceLast);

// The two passes, on locked pictures of equal depth: across changes the width (the heights are
// equal), down changes the height. `contributions` holds room for the widest support. Return 0
// when the room is too small.
int ResampleAcross(void* source, void* target, double factor, const FilterEntry& filter,
                   double blur, Contribution* contributions, int32_t capacity);
int ResampleDown(void* source, void* target, double factor, const FilterEntry& filter, double blur,
                 Contribution* contributions, int32_t capacity);
