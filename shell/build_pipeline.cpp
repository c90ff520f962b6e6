// The build pipeline's passes. Each pass copies a frame's record out of the list and unlocks the
// list before touching pixels, so that the list's block may move; only one list lock is held at a
// time. Pixels are compared and written through the accessors, whatever the depth.
#include "shell/build_pipeline.h"

#include <algorithm>
#include <cstring>

#include "imaging/colour_matcher.h"
#include "imaging/dither.h"
#include "imaging/octree_quantiser.h"
#include "imaging/palette.h"
#include "documents/settings.h"
#include "platform/cursor.h"
#include "shell/main_dialog_ids.h"
#include "shell/messages.h"
#include "shell/packed_dib.h"

namespace {

constexpr char kCaptionBuilding[] = "Building";
constexpr char kCaptionQuantizing[] = "Quantizing";
constexpr char kCaptionSupercompressing[] = "Supercompressing";
constexpr char kCaptionRemapping[] = "Remapping";

void Progress(const BuildRun* run, int32_t step, int32_t total) {
  CallRunHost(run, nullptr, HostOpProgress, static_cast<uint64_t>(step),
              static_cast<uint64_t>(total));
}

void Caption(const BuildRun* run, const char* text) {
  CallRunHost(run, nullptr, HostOpProgressCaption, 0, reinterpret_cast<uint64_t>(text));
}

// The one-bit mask of a frame against `previous`, which takes the frame's changed pixels.
MovableHandle CompareWithPrevious(MovableHandle previous, MovableHandle image) {
  static const uint8_t kBlackWhite[6] = {0, 0, 0, 255, 255, 255};
  ScopedLock before(previous), after(image);
  if (!before || !after) return nullptr;
  const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(before.bytes);
  const int32_t width = h->biWidth, height = h->biHeight;
  ScopedBlock mask(CreatePackedDib(width, height, kBlackWhite, 1));
  ScopedLock bits(mask.handle);
  if (!bits) return nullptr;
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) {
      const uint32_t a = ReadDibPixel(before.bytes, x, y);
      const uint32_t b = ReadDibPixel(after.bytes, x, y);
      if (a != b) WriteDibPixel(before.bytes, x, y, b);
      WriteDibPixel(bits.bytes, x, y, a == b ? 1 : 0);
    }
  return mask.Release();
}

}  // namespace

uint64_t CallRunHost(const BuildRun* run, void* object, int32_t opcode, uint64_t a, uint64_t b) {
  if (!run->host || !run->host->service) return 0;
  return run->host->service(object, opcode, a, b);
}

int32_t PaletteBits(int32_t n) {
  for (int32_t bits = 1; bits <= 8; ++bits)
    if (n <= (1 << bits)) return bits;
  return 24;
}

int ReadFrameRecord(const FrameList* list, int32_t index, FrameRecord* record) {
  if (index < 0 || index >= list->count) return 0;
  ScopedLock lock(list->records);
  if (!lock) return 0;
  std::memcpy(record, lock.bytes + static_cast<size_t>(index) * sizeof(FrameRecord),
              sizeof(FrameRecord));
  return 1;
}

int WriteFrameRecord(FrameList* list, int32_t index, const FrameRecord* record) {
  if (index < 0 || index >= list->count) return 0;
  ScopedLock lock(list->records);
  if (!lock) return 0;
  std::memcpy(lock.bytes + static_cast<size_t>(index) * sizeof(FrameRecord), record,
              sizeof(FrameRecord));
  return 1;
}

int SupercompressFrames(BuildRun* run) {
  Progress(run, 0, 0);
  Caption(run, kCaptionSupercompressing);
  const int32_t count = run->frames.count;
  for (int32_t i = 0; i < count; ++i) {
    Progress(run, i, count);
    FrameRecord record;
    if (!ReadFrameRecord(&run->frames, i, &record)) return 0;
    if (i == 0) {
      MovableFree(run->previous);
      run->previous = CopyMovableBlock(record.image);
      if (!run->previous) return 0;
    } else {
      record.mask = CompareWithPrevious(run->previous, record.image);
      if (!record.mask) return 0;
    }
    if (!WriteFrameRecord(&run->frames, i, &record)) {
      MovableFree(i == 0 ? nullptr : record.mask);
      return 0;
    }
  }
  return 1;
}

int MarkUnchangedPixels(MovableHandle image, MovableHandle mask, int32_t index, uint32_t colour) {
  ScopedLock picture(image), marks(mask);
  if (!picture || !marks) return 0;
  BitmapInfoHeader* h = reinterpret_cast<BitmapInfoHeader*>(picture.bytes);
  const BitmapInfoHeader* m = reinterpret_cast<const BitmapInfoHeader*>(marks.bytes);
  for (int32_t y = 0; y < m->biHeight; ++y)
    for (int32_t x = 0; x < m->biWidth; ++x)
      if (ReadDibPixel(marks.bytes, x, y) == 1)
        WriteDibPixel(picture.bytes, x, y, static_cast<uint32_t>(index));
  // Slot -1 lies in the header; anything else outside the table is not written.
  const int32_t entries = static_cast<int32_t>(DibTableBytes(h->biBitCount) / 4);
  if (index >= -1 && index < entries) {
    uint8_t* entry = DibTable(picture.bytes) + static_cast<ptrdiff_t>(index) * 4;
    entry[0] = static_cast<uint8_t>(colour >> 16);
    entry[1] = static_cast<uint8_t>(colour >> 8);
    entry[2] = static_cast<uint8_t>(colour);
  }
  return 1;
}

const char kCreateFileFailedText[] = "Error creating new task.";
const char kAddImageFailedText[] =
    "There has been an error adding an image to the current file object.";

namespace {

uint64_t Address(const void* p) {
  return reinterpret_cast<uint64_t>(p);
}

// The key colour as it goes into a palette slot: no key (-1) goes in as white.
void PutKeyInSlot(BuildRun* run, int32_t slot) {
  const uint32_t key = run->keyColour == -1 ? 0xFFFFFF : static_cast<uint32_t>(run->keyColour);
  run->palette[slot * 3] = static_cast<uint8_t>(key);
  run->palette[slot * 3 + 1] = static_cast<uint8_t>(key >> 8);
  run->palette[slot * 3 + 2] = static_cast<uint8_t>(key >> 16);
}

int32_t NearestToKey(const BuildRun* run, int32_t count) {
  const uint32_t key = static_cast<uint32_t>(run->keyColour);
  return NearestPaletteIndex(key & 0xFF, (key >> 8) & 0xFF, (key >> 16) & 0xFF, run->palette,
                             count);
}

void SettingsStep(BuildRun* run, const BuildOptions* options, const EffectEntry* effect) {
  run->alpha = options->alphaTransparency && !run->isTest;
  run->trueColour = options->trueColour || run->alpha;
  int32_t t = run->alpha ? 0 : options->transparent;
  // Every effect answers -1 to this question; the test is kept all the same.
  if (effect->keyColour && effect->keyColour(run->dialog, 1) > 0) t = 0;
  run->superCompress = options->superCompress && !run->trueColour;
  if (!run->superCompress) {
    run->transparent = t;
    run->keepKey = options->maskBackground;
  }
  run->keyColour = effect->keyColour ? effect->keyColour(run->dialog, 0) : -1;
  if (run->keyColour == -1) {
    run->transparent = 0;
    run->keepKey = 0;
  } else if (run->transparent) {
    run->keepKey = 1;
  }
}

void FixedPaletteStep(BuildRun* run, const BuildOptions* options) {
  // The registration state feeds the unregistered mark, which this product never draws.
  CallRunHost(run, nullptr, HostOpQueryRegistered, 0, 0);
  BuildFixedPalette(run->palette, &run->bits, options->fixedPalette);
  run->colours = kPaletteEntries;
  run->keyIndex = -1;
  run->superIndex = -1;
}

int FramesStep(BuildRun* run, const EffectEntry* effect) {
  Progress(run, 0, 0);
  Caption(run, kCaptionBuilding);
  BuildContext context{};
  context.dialog = run->dialog;
  context.frames = &run->frames;
  context.host = run->host;
  if (effect->build) {
    Caption(run, kCaptionBuilding);
    const int ok = effect->build(&context);
    MovableFree(context.image);
    if (!ok) return 0;
  }
  Progress(run, 0, 0);
  if (run->frames.count < 1) return 0;
  if (run->frames.count == 1) run->superCompress = 0;
  return 1;
}

int CustomPaletteStep(BuildRun* run) {
  int32_t request = run->superCompress || run->keepKey ? 255 : 256;
  Caption(run, kCaptionQuantizing);
  if (QuantiseFrames(&request, run->palette, &run->frames) != 1) return 0;
  int32_t c = request;
  if (!run->keepKey) {
    if (c < 254) {
      PutKeyInSlot(run, c);
      ++c;
    } else {
      PutKeyInSlot(run, NearestToKey(run, c));
    }
  }
  // The sort comes first, so that the reserved slot c lies past every sorted colour.
  SortPaletteByLuminance(run->palette, c);
  run->bits = PaletteBits(c + (run->superCompress || run->keepKey ? 1 : 0));
  if (run->keepKey) PutKeyInSlot(run, c);
  run->keyIndex = c;
  run->colours = c;
  if (run->superCompress) {
    PutKeyInSlot(run, c);
    run->superIndex = c;
    run->markColour = static_cast<uint32_t>(run->keyColour);
  }
  return 1;
}

// Replaces `*image` by the copy in which the key colour's pixels hold `index`. When the copy
// cannot be made the remapped picture stands as it is and the build goes on.
void KeepKeyPixels(MovableHandle* image, MovableHandle unreduced, const BuildRun* run,
                   int32_t index) {
  MovableHandle replaced =
      ReplaceKeyColour(*image, unreduced, static_cast<uint32_t>(run->keyColour), index);
  if (!replaced) return;
  MovableFree(*image);
  *image = replaced;
}

int RemapStep(BuildRun* run, const BuildOptions* options) {
  Caption(run, kCaptionRemapping);
  const int32_t count = run->frames.count;
  // One matcher serves every frame: the colour lists it builds for the palette are the costly
  // part of a frame's reduction, and frames of an animation meet the same colours.
  ColourMatcher matcher;
  if (!run->trueColour && !OpenColourMatcher(&matcher, run->palette, run->colours)) return 0;
  for (int32_t i = 0; i < count; ++i) {
    Progress(run, i, count);
    FrameRecord record;
    if (!ReadFrameRecord(&run->frames, i, &record)) return 0;
    if (!run->trueColour) {
      MovableHandle reduced =
          options->dither
              ? DitherToPalette(record.image, run->palette, run->bits, run->colours, options->remap,
                                &matcher)
              : RemapToPalette(record.image, run->palette, run->bits, run->colours, options->remap,
                               &matcher);
      if (!reduced) return 0;
      int kept = 1;
      if (run->superCompress) {
        if (i == 0) KeepKeyPixels(&reduced, record.image, run, run->keyIndex);
        if (kept && record.mask) {
          kept = MarkUnchangedPixels(reduced, record.mask, run->superIndex, run->markColour);
          record.transparentIndex = run->superIndex;
        }
      }
      if (kept && run->keepKey && run->keyIndex != -1)
        KeepKeyPixels(&reduced, record.image, run, run->keyIndex);
      if (!kept) {
        MovableFree(reduced);
        return 0;
      }
      // The list takes the new picture before the old one goes, so that it never holds a freed
      // handle.
      const MovableHandle unreduced = record.image;
      record.image = reduced;
      if (!WriteFrameRecord(&run->frames, i, &record)) {
        MovableFree(reduced);
        return 0;
      }
      MovableFree(unreduced);
    }
    {
      ScopedLock picture(record.image);
      if (!picture) return 0;
      const BitmapInfoHeader* h = reinterpret_cast<const BitmapInfoHeader*>(picture.bytes);
      run->maxWidth = std::max(run->maxWidth, h->biWidth);
      run->maxHeight = std::max(run->maxHeight, h->biHeight);
    }
    if (run->transparent) record.transparentIndex = run->keyIndex;
    if (!WriteFrameRecord(&run->frames, i, &record)) return 0;
  }
  return 1;
}

// Hands the frames to the host. Returns 1, or 0 after showing what the host refused.
int HandOverStep(BuildRun* run, const BuildOptions* options) {
  Progress(run, 0, 0);
  FileObjectRecord file{};
  file.size = sizeof(file);
  file.version = kInterfaceVersion;
  file.owner = run->dialog;
  file.bits = run->bits;
  file.width = run->maxWidth;
  file.height = run->maxHeight;
  std::memcpy(file.palette, run->palette, sizeof(file.palette));
  file.frameCount = run->frames.count;
  if (run->transparent) file.transparentIndex = run->keyIndex;
  if (!CallRunHost(run, nullptr, run->isTest ? HostOpCreateTestFile : HostOpCreateFile, 0,
                   Address(&file))) {
    ShowMessage(run->dialog, kCreateFileFailedText);
    return 0;
  }
  const bool indexedHost = run->host->capabilities & kHostIndexed;
  if (!indexedHost) {
    CallRunHost(run, &file, HostOpSetBackground, kBackgroundColour,
                static_cast<uint32_t>(run->keyColour));
  } else {
    const int32_t index = run->keyIndex != -1 ? run->keyIndex : NearestToKey(run, run->colours);
    CallRunHost(run, &file, HostOpSetBackground, kBackgroundIndex, static_cast<uint32_t>(index));
  }
  for (int32_t i = 0; i < run->frames.count; ++i) {
    FrameRecord frame;
    if (!ReadFrameRecord(&run->frames, i, &frame)) {
      CallRunHost(run, &file, HostOpCloseFile, 0, 0);
      ShowMessage(run->dialog, LoadMessage(kMessageMemoryError));
      return 0;
    }
    ImageRecord image{};
    image.size = sizeof(image);
    image.version = kInterfaceVersion;
    image.image = frame.image;
    image.transparent = run->alpha || run->transparent;
    image.delay = frame.delay;
    image.index = i;
    image.transparentIndex = !indexedHost && run->alpha ? 0 : frame.transparentIndex;
    if (!CallRunHost(run, &file, HostOpAddImage, 0, Address(&image))) {
      ShowMessage(run->dialog, kAddImageFailedText);
      CallRunHost(run, &file, HostOpCloseFile, 0, 0);
      return 0;
    }
  }
  if (options->addComment) CallRunHost(run, &file, HostOpAddComment, 0, Address(kCommentText));
  CallRunHost(run, &file, HostOpCloseFile, 1, 0);
  return 1;
}

}  // namespace

int RunBuild(WindowHandle dialog, HostRecord* host, int32_t isTest, const BuildOptions* options,
             const EffectEntry* effect) {
  BuildRun run{};
  run.dialog = dialog;
  run.host = host;
  run.isTest = isTest;
  SettingsStep(&run, options, effect);
  FixedPaletteStep(&run, options);
  int ok = FramesStep(&run, effect);
  if (ok && !run.trueColour && options->customPalette) ok = CustomPaletteStep(&run);
  if (ok && run.superCompress) ok = SupercompressFrames(&run);
  if (ok) ok = RemapStep(&run, options);
  if (!ok) ShowMessage(dialog, LoadMessage(kMessageMemoryError));
  if (ok) ok = HandOverStep(&run, options);
  MovableFree(run.previous);
  FreeFrameList(&run.frames);
  return ok;
}

namespace {

int32_t SettingOr(const char* key, int32_t fallback) {
  const int32_t* value = SettingInteger(key);
  return value ? *value : fallback;
}

}  // namespace

int BuildFrames(WindowHandle dialog, HostRecord* host, int32_t isTest) {
  auto checked = [dialog](int32_t id) { return DialogGetCheck(DialogItem(dialog, id)); };
  BuildOptions options{};
  options.maskBackground = checked(kIdMaskBackground);
  options.trueColour = checked(kIdTrueColour);
  options.customPalette = checked(kIdCustomPalette);
  options.dither = checked(kIdDither);
  options.superCompress = checked(kIdSupercompress);
  options.transparent = checked(kIdTransparent);
  options.alphaTransparency = checked(kIdAlphaTransparency);
  options.fixedPalette = DialogGetSelection(DialogItem(dialog, kIdPalette));
  options.addComment = SettingOr("AddDescriptiveCommentBlock", 1);
  options.remap.fastRemap = SettingOr("FastRemap", 0);
  options.remap.ditherBrightness = SettingOr("DitherBrightness", 20);
  options.remap.ditherContrast = SettingOr("DitherContrast", 20);
  // The effect's renderer reads the box itself, so a test turns it off for the run.
  if (isTest) DialogSetCheck(DialogItem(dialog, kIdAlphaTransparency), 0);
  int32_t row = DialogGetSelection(DialogItem(dialog, kIdEffect));
  row = std::clamp(row, 0, kEffectCount - 1);
  // The wait cursor stays up until the box is checked again, on every way out of the run.
  WaitCursor wait;
  const int ok = RunBuild(dialog, host, isTest, &options, &EffectTable[row]);
  DialogSetCheck(DialogItem(dialog, kIdAlphaTransparency), options.alphaTransparency);
  return ok;
}
