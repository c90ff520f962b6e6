// Rattle: the text and its fill shaken together from frame to frame. A displacement table made
// before the first frame gives each frame's (x, y); the renderer draws the text there on a canvas
// grown by the reach of the shaking, and rolls the fill picture by the same amount so that the
// fill moves with the text. The sample shows the text unmoved on a canvas without that margin.
#pragma once

#include <cstdint>

#include "effects/displacement_table.h"
#include "materials/fill_cache.h"
#include "platform/memory.h"
#include "shell/effect_table.h"

// The frame parameters: this frame's displacement, the table and the reach of the shaking (which
// the canvas grows by on each side). A zeroed record draws the unmoved text with no margin.
struct RattleParams {
  int32_t offsetX, offsetY;
  const DisplacementEntry* table;  // one entry per frame
  int32_t hDisplace, vDisplace;
  FillCache* fills;  // the build's texture fills; null in a sample
};

// Reads Frames, Seed, Mode and the two displacements from the page (and the calm mode's ratio
// from its setting), stores the displacements in `params` and returns the table, or null.
MovableHandle MakeRattleTable(WindowHandle dialog, RattleParams* params);

// One frame for context->params, a RattleParams: a new picture, or null.
MovableHandle RenderRattleFrame(BuildContext* context);

// The effect table's procedures.
int PreviewRattle(BuildContext* context);
int BuildRattle(BuildContext* context);
int32_t RattleBackground(WindowHandle dialog, int32_t mode);
