// The mask scenes and their bounds. The bounds are the figures measured on Debian 12 (Wine 8,
// FreeType 2.12, DejaVu Sans) with a margin of about a third. Wine's GDI+ keeps no antialiased
// coverage below about 96 and draws some glyphs a pixel further right at small sizes, so small
// text comes out heavier and less aligned there; at the default 92 pixels the two agree within a
// few percent.
#include "tests/support/mask_scenes.h"

#include <cstring>
#include <vector>

#include "platform/font.h"
#include "shell/packed_dib.h"
#include "tests/support/drawing_session.h"
#include "text/compositing.h"
#include "text/drawing_layer.h"
#include "text/text_mask.h"

const MaskScene kMaskScenes[] = {
    {"default-92", "This space for rent...", 92, 1, 0.04, 0.10},      // measured +0.023, 0.056
    {"default-24", "This space for rent...", 24, 1, 0.06, 0.45},      // +0.035, 0.327
    {"hello-48", "Hello, World", 48, 0, 0.08, 0.22},                  // +0.060, 0.149
    {"digits-36", "AVATAR 0123456789", 36, 1, 0.09, 0.16},            // +0.064, 0.104
    {"accents-60", "Caf\xE9 na\xEFve \xC9t\xE9", 60, 0, 0.08, 0.35},  // +0.051, 0.263
    {"small-18", "mmm iii WWW", 18, 0, 0.40, 1.10},                   // +0.306, 0.841
};
const int32_t kMaskSceneCount = sizeof kMaskScenes / sizeof kMaskScenes[0];

void StartDrawingForTests() {
  static bool started = false;
  if (started) return;
  DrawRequest r = {};
  r.operation = kDrawStartup;
  started = DispatchDraw(&r) == 1;
}

int RenderMaskScene(const MaskScene* scene, MovableHandle* mask, MovableHandle* measures) {
  *mask = *measures = nullptr;
  LayoutFont font;
  if (!CreateLayoutFont(nullptr, kTestFace, scene->size, scene->bold, 0, &font)) return 0;
  const int32_t length = static_cast<int32_t>(std::strlen(scene->text));
  std::vector<uint32_t> advances(length + 16, 0), layout(length, scene->size);
  TextSize size;
  MeasureText(font.deviceContext, nullptr, scene->text, &size, scene->bold, 0, scene->size,
              kTestFace, 100, font.logFont, advances.data());
  ScopedBlock table(CreatePackedDib32(length, 2));
  {
    ScopedLock lock(table.handle);
    for (int32_t i = 0; lock && i < length; ++i) {
      const char one[2] = {scene->text[i], 0};
      DrawRequest r = {};
      r.operation = kDrawText;
      r.textMode = kTextBitmap;
      r.text = one;
      r.faceName = kTestFace;
      r.fontSize = scene->size;
      r.bold = scene->bold;
      r.deviceContext = font.deviceContext;
      r.logFont = font.logFont;
      MovableFree(reinterpret_cast<MovableHandle>(DispatchDraw(&r)));
      WriteDibPixel(lock.bytes, i, 0, static_cast<uint32_t>(r.measuredWidth));
      WriteDibPixel(lock.bytes, i, 1, advances[i]);
    }
  }
  *mask = RenderTextMask(nullptr, font.deviceContext, 0, 0, scene->text, length * scene->size,
                         size.height, 255, 1, scene->size, scene->bold, 0, kTestFace, layout.data(),
                         font.logFont);
  DeleteLayoutFont(&font);
  if (!*mask || !table.handle) {
    *mask = MovableFree(*mask);
    return 0;
  }
  *measures = table.Release();
  return 1;
}
