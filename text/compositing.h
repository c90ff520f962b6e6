// Laying text layers onto a frame: the one blend of the system, coverage added to an alpha plane,
// the shadow, fill and outline layer loops, and conversions between 32-bit pictures and flat
// ones. Colours are 0x00BBGGRR with alpha on top; divisions by 255 truncate and nothing rounds.
// Loops take locked pictures (see packed_dib.h) and rely on off-picture writes being dropped.
#pragma once

#include <cstdint>

#include "platform/memory.h"
#include "text/mask_image.h"

// Per colour channel: under * (255 - coverage) / 255 + over * coverage / 255, each division
// truncating by itself. The top byte of `under` is kept.
inline uint32_t BlendPixel(uint32_t under, uint32_t over, uint32_t coverage) {
  const uint32_t c = coverage & 0xFF;
  uint32_t result = under & 0xFF000000;
  for (int shift = 0; shift < 24; shift += 8) {
    const uint32_t u = (under >> shift) & 0xFF, o = (over >> shift) & 0xFF;
    result |= ((u * (255 - c) / 255 + o * c / 255) & 0xFF) << shift;
  }
  return result;
}

// Adds coverage to the alpha plane (an 8-bit mask) at (x, y), holding the value at 255.
void AddCoverage(void* plane, int32_t x, int32_t y, uint32_t coverage);

// The shadow layer: over the mask-sized window whose corner is (shadowX, shadowY), blends the
// shadow picture, read from that corner, onto the canvas by the mask's coverage at the same canvas
// position. With an alpha plane it only adds the coverage and leaves the canvas alone.
void CompositeShadowLayer(void* canvas, void* alphaPlane, const void* mask,
                          const void* shadowPicture, int32_t shadowX, int32_t shadowY);
// The fill layer: blends the fill picture, anchored at the canvas's corner, by the mask; with an
// alpha plane it also adds the coverage.
void CompositeFillLayer(void* canvas, void* alphaPlane, const void* mask, const void* fillPicture);
// The outline layer: blends a flat colour by the ring of RenderOutlineMask, which is read one
// column to the right of the canvas pixel; with an alpha plane it also adds the coverage.
void CompositeOutlineLayer(void* canvas, void* alphaPlane, const void* ring, uint32_t colour);
// The same layer painted from a 24-bit picture instead of a flat colour: each canvas pixel takes the
// picture's pixel at the same place, blended by the ring read one column to the right.
void CompositeOutlinePicture(void* canvas, void* alphaPlane, const void* ring, const void* picture);

// Blurs a shadow mask in place of the caller's when `softness` is above 0 (sigma of softness + 2
// tenths), freeing the sharp one. Returns 1; 0 when the blur fails, `*mask` then being still the
// caller's to free (possibly already blurred across). Softness 0 keeps the mask as it is.
int SoftenShadowMask(MovableHandle* mask, int32_t softness);
// Ends a frame: with an alpha plane, a new 32-bit picture of the canvas's colours and the plane's
// coverage, freeing both (null when memory fails, both still freed); without, the canvas itself.
MovableHandle FinishTextFrame(MovableHandle canvas, MovableHandle alphaPlane);

// A 24-bit picture of a 32-bit one blended onto `colour` by its alpha; null for other depths or
// when memory fails.
MovableHandle FlattenOnColour(MovableHandle image, uint32_t colour);
// A 32-bit picture with alpha 255 everywhere: table colours for 8 bits or fewer, pixels otherwise.
MovableHandle ExpandToArgb(MovableHandle image);
// An 8-bit grey mask of a picture's alpha bytes; 255 everywhere for a picture without alpha.
MovableHandle AlphaToMask(MovableHandle image);
// A bitmap file held as data (a 14-byte file header, then the header, table and bits) flattened
// on `colour` into a new 24-bit picture; a picture without alpha counts as opaque. Null when the
// data is malformed or memory fails.
MovableHandle FlattenBitmapFile(const uint8_t* data, size_t size, uint32_t colour);
// The bitmap resource `id` flattened on `colour`, or on the face colour of buttons when `colour`
// is 0xFFFFFFFF (-1). Null when the resource is missing or memory fails.
MovableHandle LoadFlattenedResource(int32_t id, uint32_t colour);

