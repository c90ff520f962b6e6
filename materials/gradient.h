// Gradients as pixels: the two-colour description, the multi-colour marker list, and the four
// geometric renderers. Each renderer has a plain mode (two colours, no description) and a table
// mode (colours from GradientLookup). Colours are 0x00BBGGRR; every image is a new 24-bit Packed
// DIB handle owned by the caller, or null when something could not be made.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/memory.h"

enum GradientType : int32_t {
  kGradientLinear = 0,
  kGradientConical = 1,
  kGradientElliptical = 2,
  kGradientRectangular = 3,
};

#pragma pack(push, 1)
struct GradientSpec {
  int32_t type;          // GradientType; any other value draws as Linear
  uint32_t startColour;  // colour at the start of the table
  uint32_t endColour;    // colour at its end
  int32_t edgePad;       // percent of the table held flat at each end, 0 to 45
  int32_t centreX;       // percent, -50 to 50
  int32_t centreY;       // percent, -50 to 50
  int32_t midpoint;      // percent; 50 is a straight ramp
  int32_t colourMode;    // which colour wells of the editor respond; not used in drawing
  int32_t rotation;      // degrees, -360 to 360
  int32_t twoColour;     // 1 two colours, 0 the marker list
};

// A marker: low 24 bits the colour, high 8 bits the position 0 to 255.
typedef uint32_t FountainMarker;

constexpr int32_t kFountainMarkers = 64;
constexpr uint32_t kFountainLooped = 2;  // flags: the end returns to leftColour
constexpr uint32_t kFountainVersion = 0x04000001;
constexpr uint32_t kFountainSize = 585;

struct FountainGradient {
  char magic[8];  // "COBLFOUN"
  uint32_t version;
  uint32_t size;
  uint32_t flags;
  // Zero-terminated, at most 260 characters. Library lists keep the handle of an entry's preview
  // strip inside this span, at offset 281 of the record.
  char name[269];
  uint32_t markerCount;  // 0 to 64
  uint32_t leftColour;   // colour at position 0
  uint32_t rightColour;  // colour at position 255; the top byte is ignored
  FountainMarker markers[kFountainMarkers];
  uint8_t spare[28];  // zero
};
#pragma pack(pop)

static_assert(sizeof(GradientSpec) == 40);
static_assert(offsetof(GradientSpec, rotation) == 32 && offsetof(GradientSpec, twoColour) == 36);
static_assert(sizeof(FountainGradient) == kFountainSize);
static_assert(offsetof(FountainGradient, flags) == 16 && offsetof(FountainGradient, name) == 20);
static_assert(offsetof(FountainGradient, markerCount) == 289);
static_assert(offsetof(FountainGradient, leftColour) == 293);
static_assert(offsetof(FountainGradient, rightColour) == 297);
static_assert(offsetof(FountainGradient, markers) == 301);

// Resets the record to marker set `set`: 0 no markers, 1 one grey marker, any other the
// seven-colour rainbow. `flags` keep their value.
void InitFountainGradient(FountainGradient* gradient, int32_t set);

// Per channel a * (1 - t) + b * t, truncated; no rounding anywhere.
uint32_t BlendColours(uint32_t a, uint32_t b, double t);

// A width by height image of `spec` in table mode. `fountain` is the marker list used when
// spec->twoColour is 0 and may be null otherwise.
MovableHandle MakeGradientImage(int32_t width, int32_t height, const GradientSpec* spec,
                                const FountainGradient* fountain);
// The same shapes in plain mode, from `first` and `second`.
MovableHandle MakeRampImage(uint32_t first, uint32_t second, int32_t width, int32_t height,
                            int32_t centreX, int32_t centreY, int32_t rotation, int32_t type);

// The renderers. A null `spec` selects plain mode from `first` and `second`; otherwise the colours
// come from GradientLookup(spec, fountain, ...) and `first` and `second` are not used.
MovableHandle LinearGradient(uint32_t first, uint32_t second, int32_t width, int32_t height,
                             int32_t centreX, int32_t centreY, int32_t rotation,
                             const GradientSpec* spec, const FountainGradient* fountain);
MovableHandle ConicalGradient(uint32_t first, uint32_t second, int32_t width, int32_t height,
                              int32_t centreX, int32_t centreY, int32_t rotation,
                              const GradientSpec* spec, const FountainGradient* fountain);
MovableHandle EllipticalGradient(uint32_t first, uint32_t second, int32_t width, int32_t height,
                                 int32_t centreX, int32_t centreY, int32_t rotation,
                                 const GradientSpec* spec, const FountainGradient* fountain);
MovableHandle RectangularGradient(uint32_t first, uint32_t second, int32_t width, int32_t height,
                                  int32_t centreX, int32_t centreY, int32_t rotation,
                                  const GradientSpec* spec, const FountainGradient* fountain);

// A block holding an int32 count followed by `count` colours: the gradient's colour table.
// Null when memory fails or the marker list is needed and missing.
MovableHandle GradientLookup(const GradientSpec* spec, const FountainGradient* fountain,
                             int32_t count);
// Reads entry `index` of a locked lookup table; black outside it.
uint32_t GradientTableEntry(const uint8_t* table, int64_t index);

// A width by height image running left to right through the marker list.
MovableHandle FountainStrip(const FountainGradient* gradient, int32_t width, int32_t height);
