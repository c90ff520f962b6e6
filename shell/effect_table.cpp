// The table of effects and the shell's handling of its rows: clamping of a selected row, showing a
// page's controls, calling the procedures a row has, and the frame list that builds fill.
#include "shell/effect_table.h"

#include <cstring>

#include "controls/page_tables.h"
#include "effects/arrows.h"
#include "effects/candy.h"
#include "effects/confetti.h"
#include "effects/diagonal_fuse.h"
#include "effects/heartbeat.h"
#include "effects/machine.h"
#include "effects/neural_network.h"
#include "effects/omni.h"
#include "effects/quark.h"
#include "effects/quark_outline.h"
#include "effects/rattle.h"
#include "effects/ring.h"
#include "effects/simple.h"
#include "effects/snow.h"
#include "effects/stars.h"
#include "effects/tracks.h"
#include "effects/tram_lines.h"
#include "effects/unplugged_tv.h"
#include "effects/waterside.h"
#include "effects/wavelet.h"
#include "effects/zipper.h"
#include "shell/effect_pages.h"

// Rows in alphabetical order of the names but for Omni, which stands ahead of Machine: the index is
// stored in settings and documents and must not move. Every row makes its page with the shared
// init procedure; preview, build and key colour stay null until an effect is built.
const EffectEntry EffectTable[kEffectCount] = {
    {"Arrows", EffectPageInit<7>, ArrowsEffectPreview, ArrowsEffectBuild, ArrowsEffectKeyColour,
     kPageIds<7>.data(), nullptr},
    {"Candy", EffectPageInit<17>, CandyEffectPreview, CandyEffectBuild, CandyEffectKeyColour,
     kPageIds<17>.data(), nullptr},
    {"Confetti", EffectPageInit<16>, ConfettiEffectPreview, ConfettiEffectBuild,
     ConfettiEffectKeyColour, kPageIds<16>.data(), nullptr},
    {"Diagonal Fuse", EffectPageInit<12>, DiagonalFuseEffectPreview, DiagonalFuseEffectBuild,
     DiagonalFuseEffectKeyColour, kPageIds<12>.data(), nullptr},
    {"Heartbeat", EffectPageInit<10>, PreviewHeartbeat, BuildHeartbeat, HeartbeatBackground,
     kPageIds<10>.data(), nullptr},
    {"Omni", EffectPageInit<11>, OmniEffectPreview, OmniEffectBuild, OmniEffectKeyColour,
     kPageIds<11>.data(), nullptr},
    {"Machine", EffectPageInit<4>, MachineEffectPreview, MachineEffectBuild, MachineEffectKeyColour,
     kPageIds<4>.data(), nullptr},
    {"Neural Network", EffectPageInit<6>, NeuralNetworkEffectPreview, NeuralNetworkEffectBuild,
     NeuralNetworkEffectKeyColour, kPageIds<6>.data(), nullptr},
    {"Quark", EffectPageInit<5>, QuarkEffectPreview, QuarkEffectBuild, QuarkEffectKeyColour,
     kPageIds<5>.data(), nullptr},
    {"Quark Outline", EffectPageInit<13>, QuarkOutlineEffectPreview, QuarkOutlineEffectBuild,
     QuarkOutlineEffectKeyColour, kPageIds<13>.data(), nullptr},
    {"Rattle", EffectPageInit<18>, PreviewRattle, BuildRattle, RattleBackground,
     kPageIds<18>.data(), nullptr},
    {"Ring", EffectPageInit<1>, RingEffectPreview, RingEffectBuild, RingEffectKeyColour,
     kPageIds<1>.data(), nullptr},
    {"Simple", EffectPageInit<0>, SimpleEffectPreview, SimpleEffectBuild, SimpleEffectKeyColour,
     kPageIds<0>.data(), nullptr},
    {"Snow", EffectPageInit<2>, SnowEffectPreview, SnowEffectBuild, SnowEffectKeyColour,
     kPageIds<2>.data(), nullptr},
    {"Stars", EffectPageInit<3>, StarsEffectPreview, StarsEffectBuild, StarsEffectKeyColour,
     kPageIds<3>.data(), nullptr},
    {"Tracks", EffectPageInit<15>, TracksEffectPreview, TracksEffectBuild, TracksEffectKeyColour,
     kPageIds<15>.data(), nullptr},
    {"Tram Lines", EffectPageInit<20>, TramLinesEffectPreview, TramLinesEffectBuild,
     TramLinesEffectKeyColour, kPageIds<20>.data(), nullptr},
    {"Unplugged TV", EffectPageInit<19>, UnpluggedTvEffectPreview, UnpluggedTvEffectBuild,
     UnpluggedTvEffectKeyColour, kPageIds<19>.data(), nullptr},
    {"Waterside", EffectPageInit<8>, WatersideEffectPreview, WatersideEffectBuild,
     WatersideEffectKeyColour, kPageIds<8>.data(), nullptr},
    {"Wavelet", EffectPageInit<9>, WaveletEffectPreview, WaveletEffectBuild, WaveletEffectKeyColour,
     kPageIds<9>.data(), nullptr},
    {"Zipper", EffectPageInit<14>, ZipperEffectPreview, ZipperEffectBuild, ZipperEffectKeyColour,
     kPageIds<14>.data(), nullptr},
};

const int32_t EffectStyle[kEffectCount] = {7, 17, 16, 12, 10, 11, 4,  6, 5, 13, 18,
                                           1, 0,  2,  3,  15, 20, 19, 8, 9, 14};

int32_t EffectRowForBuild(int32_t row) {
  if (row < 0) return 0;
  return row >= kEffectCount ? kEffectCount - 1 : row;
}

int32_t EffectRowForPage(int32_t row) {
  if (row < 0) return 0;
  return row >= kEffectCount ? kEffectCount : row;
}

int32_t EffectPageId(int32_t row) {
  return kEffectPageBase + EffectStyle[EffectRowForBuild(row)];
}

int IsPageControlId(int32_t id) {
  return (id >= 100 && id <= 1198) || (id >= 10100 && id <= 11198);
}

int ListHasControl(EffectControlList controls, int32_t id) {
  if (!controls) return 0;
  for (; *controls; ++controls)
    if (*controls == id) return 1;
  return 0;
}

namespace {

struct PagePass {
  bool hideAll;
  EffectControlList controls;
};

// The one test of both passes: the first hides every page control, the second shows the listed
// ones and hides the rest.
int ShowForPass(WindowHandle child, void* param) {
  const PagePass* pass = static_cast<const PagePass*>(param);
  const int32_t id = DialogItemId(child);
  if (IsPageControlId(id))
    DialogShowItem(child, !pass->hideAll && ListHasControl(pass->controls, id));
  return 1;
}

}  // namespace

void ShowPageControls(WindowHandle dialog, EffectControlList controls) {
  PagePass pass = {true, nullptr};
  DialogEnumChildren(dialog, ShowForPass, &pass);
  pass = {false, controls};
  DialogEnumChildren(dialog, ShowForPass, &pass);
}

void ShowEffectPage(WindowHandle dialog, int32_t row) {
  row = EffectRowForPage(row);
  ShowPageControls(dialog, row < kEffectCount ? EffectTable[row].controls : nullptr);
}

int InitEffectPages(WindowHandle dialog, WindowHandle effectBox) {
  for (int32_t row = 0; row < kEffectCount; ++row) {
    if (effectBox) DialogAddRow(effectBox, EffectTable[row].name);
    if (!EffectTable[row].init) continue;
    BuildContext context;
    std::memset(&context, 0, sizeof context);
    context.dialog = dialog;
    if (!EffectTable[row].init(&context)) return 0;
  }
  return 1;
}

int RunEffectPreview(int32_t row, BuildContext* context) {
  const EffectEntry& entry = EffectTable[EffectRowForBuild(row)];
  if (!entry.preview) return 0;
  if (entry.preview(context) && context->image) return 1;
  context->image = MovableFree(context->image);
  return 0;
}

int RunEffectBuild(int32_t row, BuildContext* context) {
  const EffectEntry& entry = EffectTable[EffectRowForBuild(row)];
  if (!entry.build) return 1;
  if (entry.build(context)) return 1;
  context->image = MovableFree(context->image);
  return 0;
}

int32_t RunEffectKeyColour(int32_t row, WindowHandle dialog, int32_t mode) {
  const EffectEntry& entry = EffectTable[EffectRowForBuild(row)];
  return entry.keyColour ? entry.keyColour(dialog, mode) : -1;
}

int AppendFrame(FrameList* list, const FrameRecord* record) {
  if (!list || !record) return 0;
  if (!list->records) {
    MovableHandle first = MovableAlloc(sizeof(FrameRecord));
    if (!first) return 0;
    void* slot = MovableLock(first);
    if (!slot) {
      MovableFree(first);
      return 0;
    }
    std::memcpy(slot, record, sizeof(FrameRecord));
    MovableUnlock(first);
    list->records = first;
    list->count = 1;
    return 1;
  }
  MovableHandle grown =
      MovableReAlloc(list->records, (static_cast<size_t>(list->count) + 1) * sizeof(FrameRecord));
  if (!grown) return 0;
  list->records = grown;
  ScopedLock lock(grown);
  if (!lock) return 0;
  std::memcpy(lock.bytes + static_cast<size_t>(list->count) * sizeof(FrameRecord), record,
              sizeof(FrameRecord));
  ++list->count;
  return 1;
}

void FreeFrameList(FrameList* list) {
  if (!list) return;
  for (int32_t i = 0; i < list->count; ++i) {
    FrameRecord frame;
    {
      ScopedLock lock(list->records);
      if (!lock) continue;
      std::memcpy(&frame, lock.bytes + static_cast<size_t>(i) * sizeof(FrameRecord), sizeof frame);
    }
    MovableFree(frame.image);
    MovableFree(frame.mask);
  }
  MovableFree(list->records);
  list->records = nullptr;
  list->count = 0;
}
