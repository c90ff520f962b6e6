// The common frame renderer: the steps that turn one frame's settings and text position into a
// picture (offsets, margin, text, canvas, background, materials, alpha plane, shadow, fill,
// outline, finish). Effects call the steps by name on a TextFrame and replace only the ones they
// change. Every step returns 1, or 0 after which EndTextFrame frees all that was made; the result
// of FinishFrameStep belongs to the caller. Colours are 0x00BBGGRR.
#pragma once

#include <cstdint>
#include <memory>

#include "materials/fill_cache.h"
#include "materials/material.h"
#include "platform/dialog.h"
#include "platform/memory.h"
#include "text/text_layout.h"

// What the parameter step reads from the dialog and the effect's page.
struct FrameSettings {
  TextLayoutInput text;  // text, font, pad, softness, outline and shadow switches, shadow offset
  int32_t alphaTransparency, alphaBackground;
  uint32_t alphaGreyBack;  // the background colour of alpha builds with the grey background
  int32_t fillOpacity, shadowOpacity;
  int32_t shadowDirection;  // 0 to 7; 0 when the picker holds no value
  uint32_t outlineColour;
  Material* fill;  // the three materials, writable (a fill records its size in them)
  Material* shadow;
  Material* background;       // null when the page's Background is a colour button
  uint32_t backgroundColour;  // that button's colour
  int32_t sample;             // 1 for the dialog's sample: never an alpha plane
  FillCache* fills;           // the build's texture fills, or null to make each anew
};

// The ids a page reads for the common steps (the main dialog's ids are the same for every page).
// A page whose fill comes from elsewhere (a frame set) has no Fill material and no Fill opacity:
// it gives 0 for `fill` and `fillOpacity`, and the fill is then drawn at full level, 255. A page
// whose shadow is a plain colour gives 0 for `shadow` and makes `shadowImage` itself.
struct FramePageIds {
  int32_t fill, shadow;  // material buttons
  int32_t background;    // a material button, or a colour button for a plain background
  int32_t outline;       // colour button
  int32_t fillOpacity, shadowOpacity, softness, shadowOffset;
  int32_t shadowDirection;  // eight-way picker
  int32_t shadowEnable, outlineEnable;
};

// The text and the face name as the parameter step reads them. The text is read whole, however
// long, with room for the blank the layout appends.
struct FrameTexts {
  std::unique_ptr<char[]> text;
  char faceName[264];
};

// Reads the whole window text of `control` into `text`, `length` + 16 bytes, and its length into
// `length` when given. Returns 0 when memory runs out.
int ReadWholeText(WindowHandle control, std::unique_ptr<char[]>* text, int* length = nullptr);

// The parameter step: reads the main dialog's text, font and alpha boxes and the page's controls
// into `settings`, the text into `text` (which must stay alive while `settings` is used), and locks
// the materials (the fill only when the page has one). Returns 1, or 0 when a material button
// holds no record or the text can't be held (nothing then stays locked). ReleaseFrameSettings unlocks the materials.
int ReadFrameSettings(WindowHandle dialog, const FramePageIds* ids, int32_t sample,
                      FrameSettings* settings, FrameTexts* text);
void ReleaseFrameSettings(WindowHandle dialog, const FramePageIds* ids);

// One frame in the making. Zero it, or let BeginTextFrame do so.
struct TextFrame {
  const FrameSettings* settings;
  TextShifts shifts;  // where shadow and text stand relative to the margin
  TextLayout layout;  // font, text, margin (`pad`) and canvas size
  int32_t width, height;
  MovableHandle canvas;       // 24 bits
  MovableHandle fillImage;    // 24 bits
  MovableHandle shadowImage;  // 24 bits, with the shadow on
  MovableHandle alphaPlane;   // 8-bit coverage, in builds with alpha
  // 24 bits at the canvas size, or null: the outline step then paints the ring with this picture
  // instead of the Outline colour. Set by the effect after BeginTextFrame; freed with the frame.
  MovableHandle outlineImage;
  // Applied to each layer's mask as soon as it is drawn, the shadow's before its softness: a new
  // mask to use instead (the step frees the first), or null to fail the step. Null: masks are used
  // as drawn. Set after BeginTextFrame.
  MovableHandle (*maskWarp)(MovableHandle mask, void* context);
  void* maskWarpContext;
};

// Offsets, margin, text and canvas: makes the font, measures the text and sizes the canvas.
// 0 for an empty text.
int BeginTextFrame(WindowHandle window, const FrameSettings* settings, TextFrame* frame);
// The canvas: the grey alpha background when both alpha switches are on, else the Background
// material or colour.
int BackgroundStep(TextFrame* frame);
// The Fill material, and the Shadow material when the shadow is on, at the canvas size.
int MaterialStep(TextFrame* frame);
// The Shadow material alone, when the shadow is on: for effects that make `fillImage` themselves.
int ShadowMaterialStep(TextFrame* frame);
// A zero coverage plane, only in a build with alpha transparency.
int AlphaPlaneStep(TextFrame* frame);
// The shadow at (x, y) plus margin and shadow shift, softened by the softness; only with the
// shadow on.
int ShadowStep(TextFrame* frame, int32_t x, int32_t y);
// The text at (x, y) plus margin and text shift, filled with the Fill material.
int FillStep(TextFrame* frame, int32_t x, int32_t y);
// The outline ring of the text at the fill step's place, in the Outline colour or from
// `outlineImage` when the frame has one; only with the outline on.
int OutlineStep(TextFrame* frame, int32_t x, int32_t y);
// The frame's picture (32 bits with an alpha plane), taken out of the frame; null when memory
// fails. The frame still has to be ended.
MovableHandle FinishFrameStep(TextFrame* frame);
// Frees everything the frame still holds. Safe on a zeroed frame.
void EndTextFrame(TextFrame* frame);

// All the steps in order for text offset by (x, y) from its place of rest: the renderer of an
// effect that changes none of them. A new picture, or null.
MovableHandle RenderStandardFrame(WindowHandle window, const FrameSettings* settings, int32_t x,
                                  int32_t y);
