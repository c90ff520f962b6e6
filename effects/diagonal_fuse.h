// Diagonal Fuse: slanted two-colour leaves grow in from the top and the bottom of the text,
// interleaved like the teeth of two combs, until they meet and fuse and the letters show the Fill
// colour alone. The fill picture is drawn afresh for each frame from the leaves' progress; there
// is no loop: the sequence ends on the fused frame and holds it for the pause.
#pragma once

#include <cstdint>

#include "platform/dialog.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// The frame parameters: a local of the build or preview, whose address is BuildContext.params.
struct FuseParams {
  uint64_t reserved;  // always 0
  float progress;     // 0.2 to 1.0: how far the leaves have grown
};

// What the fill picture depends on.
struct FuseLeaves {
  int32_t width, height;  // the canvas
  int32_t margin;         // the main dialog's margin, before any softness is added
  int32_t leafSize;
  int32_t scroll;  // 0 or 1: which way the leaves lean
  uint32_t fill, backFill;
  float progress;
};

// The leaves drawn at four times the size, white on black, and brought down to the canvas: the
// mask of the Fill colour. The full-sized picture when the reduction fails; null on failure.
MovableHandle DrawFuseMask(const FuseLeaves* leaves);
// The canvas-sized 24-bit fill: Back fill and Fill mixed by the mask. Null on failure.
MovableHandle MakeFuseFill(const FuseLeaves* leaves);
// The progress of build frame `i` of `n`.
float FuseProgress(int32_t i, int32_t n);

int DiagonalFuseEffectPreview(BuildContext* context);
int DiagonalFuseEffectBuild(BuildContext* context);
int32_t DiagonalFuseEffectKeyColour(WindowHandle dialog, int32_t mode);
