// The effect table: twenty-one rows, one per effect, through which the shell reaches every effect.
// The row index is what the settings and documents store (MainEffect), so the order is fixed; the
// style number is the effects' own numbering, which names their page (7400 + style) and settings.
// Built frames travel in a FrameList, a movable array of FrameRecords that owns their images.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/dialog.h"
#include "platform/memory.h"

struct HostRecord;
struct FrameList;

constexpr int32_t kEffectCount = 21;
constexpr int32_t kEffectDefaultRow = 12;  // Simple
constexpr int32_t kEffectPageBase = 7400;

// BuildContext.flags
constexpr uint32_t kBuildFlagPreview = 2;
constexpr uint32_t kBuildFlagBuild = 4;

// The record the shell fills, zeroed first, and hands to EffectPreview and EffectBuild.
struct BuildContext {
  WindowHandle dialog;  // the main dialog; parameters are read from its controls at call time
  FrameList* frames;    // where EffectBuild appends; null for a preview
  uint64_t reserved0;
  HostRecord* host;     // for progress reports
  MovableHandle image;  // the preview's result; in a build a spare slot freed on failure
  uint64_t reserved1[4];
  int32_t sampleWidth;  // sample area size in a preview; 0 in a build
  int32_t sampleHeight;
  uint32_t flags;  // kBuildFlagPreview / kBuildFlagBuild, set by the effect on entry
  void* params;    // the effect's own frame parameters, set before it calls its renderer
  int32_t sample;  // 1 for a preview: the renderer then makes no alpha plane
};

typedef int (*EffectInit)(BuildContext* context);
typedef int (*EffectPreview)(BuildContext* context);
typedef int (*EffectBuild)(BuildContext* context);
typedef int32_t (*EffectKeyColour)(WindowHandle dialog, int32_t mode);
typedef const int32_t* EffectControlList;  // ended by 0

struct EffectEntry {
  const char* name;  // as shown in the Effect box
  EffectInit init;
  EffectPreview preview;
  EffectBuild build;
  EffectKeyColour keyColour;
  EffectControlList controls;  // the page's control ids and their updown partners; null = empty
  void* reserved;
};

extern const EffectEntry EffectTable[kEffectCount];
// The style number of each row.
extern const int32_t EffectStyle[kEffectCount];

// One built frame. The list owns `image` and `mask`.
struct FrameRecord {
  MovableHandle image;       // 24-bit Packed DIB, or 32 bits with an alpha plane
  MovableHandle mask;        // null from the effect; the one-bit supercompression mask
  int32_t delay;             // in host units
  int32_t transparentIndex;  // -1 from the effect
  uint8_t reserved[32];
};
static_assert(sizeof(FrameRecord) == 56, "a frame record is 56 bytes");
static_assert(offsetof(FrameRecord, delay) == 16 && offsetof(FrameRecord, reserved) == 24);

struct FrameList {
  MovableHandle records;  // array of FrameRecord; null when empty
  int32_t count;
};

// Copies `record` into a new last slot. Returns 1, or 0 with the list as it was.
int AppendFrame(FrameList* list, const FrameRecord* record);
// Frees every record's image and mask, then the array; leaves the list empty.
void FreeFrameList(FrameList* list);

// The row the shell builds for a selection: nothing selected (-1) is row 0, past the end the last.
int32_t EffectRowForBuild(int32_t row);
// The row whose page is shown: as for a build, but past the end is one past the last row, whose
// (empty) list hides every page control.
int32_t EffectRowForPage(int32_t row);
// The page dialog resource of a row.
int32_t EffectPageId(int32_t row);
// Nonzero when `id` is a page control or updown partner id (100..1198, 10100..11198).
int IsPageControlId(int32_t id);
// Nonzero when `id` is in the control list.
int ListHasControl(EffectControlList controls, int32_t id);
// Hides every page control of the dialog, then shows those of `row`. Controls of the main dialog
// itself (ids outside the page ranges) are left alone.
void ShowEffectPage(WindowHandle dialog, int32_t row);
// The same for an explicit control list (ended by 0, or null for none).
void ShowPageControls(WindowHandle dialog, EffectControlList controls);

// Row by row in table order: adds the row's name to `effectBox` (when there is one), then calls its
// EffectInit with a context holding only `dialog`; rows without one are passed over. Returns 0 at
// the first row that fails, leaving the rest neither named nor called.
int InitEffectPages(WindowHandle dialog, WindowHandle effectBox = nullptr);
// The row's preview into context->image. Returns 0, with context->image null, when the row has no
// preview, the preview fails or it made no image; the caller then paints the background only.
int RunEffectPreview(int32_t row, BuildContext* context);
// The row's build. A row without a build procedure is skipped with success: its list stays empty,
// which the pipeline reports. On failure the spare image in the context is freed.
int RunEffectBuild(int32_t row, BuildContext* context);
// The row's key colour answer, -1 when the row has no procedure.
int32_t RunEffectKeyColour(int32_t row, WindowHandle dialog, int32_t mode);
