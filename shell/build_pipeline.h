// The build pipeline: from the effect's frames to a file of the host. One run asks the effect for
// frames, chooses the palette, optionally supercompresses (later frames keep only the pixels that
// changed, the rest marked by a reserved slot), remaps each frame and hands everything over
// through HostService. A run keeps its working state in a BuildRun and owns every frame it holds.
#pragma once

#include <cstdint>

#include "imaging/dither.h"
#include "platform/dialog.h"
#include "platform/memory.h"
#include "shell/effect_table.h"
#include "shell/host_interface.h"

// The working state of one run.
struct BuildRun {
  WindowHandle dialog;
  HostRecord* host;
  int32_t isTest;
  int32_t alpha;          // frames keep an alpha plane; never in a test
  int32_t trueColour;     // frames stay 24 or 32 bits: no palette, no remapping
  int32_t superCompress;  // frames after the first keep only changed pixels
  int32_t transparent;    // the file has a transparent colour
  int32_t keepKey;        // pixels of the key colour stay exact through remapping
  int32_t keyColour;      // 0x00BBGGRR, or -1 for none
  int32_t keyIndex;       // palette slot of the key colour, -1 until one is picked
  int32_t superIndex;     // palette slot marking unchanged pixels, -1 until one is picked
  uint32_t markColour;    // colour of the slot superIndex
  uint8_t palette[768];   // red, green, blue triples
  int32_t colours;        // palette entries remapping may pick
  int32_t bits;           // depth of the file
  FrameList frames;
  MovableHandle previous;  // the picture as a viewer sees it so far, while supercompressing
  int32_t maxWidth, maxHeight;
};

// The state of the main dialog's boxes that a run reads.
struct BuildOptions {
  int32_t maskBackground;     // keep the key colour exact through remapping
  int32_t trueColour;         // no palette
  int32_t customPalette;      // quantise the frames instead of the fixed palette
  int32_t dither;             // dither rather than remap
  int32_t superCompress;      // later frames keep only changed pixels
  int32_t transparent;        // the file gets a transparent colour
  int32_t alphaTransparency;  // frames with an alpha plane (builds only)
  int32_t fixedPalette;       // number of the fixed palette
  int32_t addComment;         // the descriptive comment block goes into the file
  RemapSettings remap;
};

// The messages a run ends with.
extern const char kCreateFileFailedText[];
extern const char kAddImageFailedText[];

// One whole run for `effect`, from its frames to a closed file of the host: settings, fixed
// palette, frames, custom palette, supercompression, remapping, handing over and the end. A
// failure shows its message in the dialog. Returns 1 when the host took the file, else 0; either
// way every frame is freed.
int RunBuild(WindowHandle dialog, HostRecord* host, int32_t isTest, const BuildOptions* options,
             const EffectEntry* effect);

// Build (isTest 0) or Test (1) from the main dialog: reads its boxes and the selected effect row,
// turns Alpha transparency off for a test and back on afterwards, and runs the build.
int BuildFrames(WindowHandle dialog, HostRecord* host, int32_t isTest);

// The depth of a file of `n` colours: 1 up to 2, 2 up to 4, ... 8 up to 256, else 24.
int32_t PaletteBits(int32_t n);

// Copies record `index` of the list out of or into the list, holding the lock only for the copy.
// 0 when the list cannot be locked or the index is outside it.
int ReadFrameRecord(const FrameList* list, int32_t index, FrameRecord* record);
int WriteFrameRecord(FrameList* list, int32_t index, const FrameRecord* record);

// Gives every frame after the first a one-bit mask (1 where the pixel equals what a viewer already
// sees) and keeps run->previous up to date. Reports progress to the host. 0 when memory fails.
int SupercompressFrames(BuildRun* run);

// Marks the unchanged pixels of a remapped picture: pixels under a mask value of 1 get `index`
// (truncated to the picture's depth), and `colour` goes into table entry `index`. Entry -1 is the
// four bytes just ahead of the table, the header's biClrImportant, whose three low bytes then take
// the colour. 0 when a picture cannot be locked.
int MarkUnchangedPixels(MovableHandle image, MovableHandle mask, int32_t index, uint32_t colour);

// Calls the run's host; 0 when there is none.
uint64_t CallRunHost(const BuildRun* run, void* object, int32_t opcode, uint64_t a, uint64_t b);
