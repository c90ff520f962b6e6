// Text masks of the two platforms side by side. "gm5_mask_parity dump DIR" renders a fixed set of
// strings and sizes and writes each mask with its measurements to DIR; "gm5_mask_parity compare
// DIR" renders the same set here and compares it with DIR, printing the differences and failing
// when they pass the bounds below. The Windows build dumps through GDI+ under Wine and the native
// build compares with FreeType (scripts/mask-parity).
//
// Each character is measured on its own as a drawn box (glyph advance plus the fixed padding) and
// the mask is laid out with one advance of a cell height per character on both sides, so that
// glyph boxes and ink are compared directly without drift. Spaces
// are the exception: Wine's string measure keeps a trailing space, so a lone space measures as its
// advance plus the padding where GDI+, which the native measure follows, gives the padding alone.
// Spaces' boxes are therefore not bounded, and MeasureText's advances, where every character loses
// one space's measure, are printed but not bounded either.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "shell/packed_dib.h"
#include "text/drawing_layer.h"
#include "platform/font.h"
#include "text/text_mask.h"

namespace {

// Each case holds its bounds on the relative difference of the coverage sums and on the summed
// pixel differences over the coverage. They are the figures measured on Debian 12 (Wine 8,
// FreeType 2.12, DejaVu Sans) with a margin of about a third. Wine's GDI+ keeps no antialiased
// coverage below about 96 and puts some glyphs a pixel to the right at small sizes, so small text
// is heavier and less aligned there; at the default 92 pixels the two agree within a few percent.
struct ParityCase {
  const char* text;
  int32_t size, bold;
  double coverageBound, pixelBound;
};

const ParityCase kCases[] = {
    {"This space for rent...", 92, 1, 0.04, 0.10},      // measured +0.023, 0.056
    {"This space for rent...", 24, 1, 0.06, 0.45},      // +0.035, 0.327
    {"Hello, World", 48, 0, 0.08, 0.22},                // +0.060, 0.149
    {"AVATAR 0123456789", 36, 1, 0.09, 0.16},           // +0.064, 0.104
    {"Caf\xE9 na\xEFve \xC9t\xE9", 60, 0, 0.08, 0.35},  // +0.051, 0.263
    {"mmm iii WWW", 18, 0, 0.40, 1.10},                 // +0.306, 0.841
};

// A glyph box may differ by one pixel (both add the same padding to advances that round apart), and
// the cell height by one (the two round ascent and descent differently at some sizes).
constexpr int32_t kBoxBound = 1, kHeightBound = 1;

struct Mask {
  int32_t width = 0, height = 0;
  std::vector<uint32_t> boxes;     // drawn width of each character alone
  std::vector<uint32_t> advances;  // MeasureText's advances
  std::vector<uint32_t> layout;    // the same advance for every character
  std::vector<uint8_t> pixels;     // rows from the top
};

int Render(const ParityCase& c, Mask* out) {
  LayoutFont font;
  if (!CreateLayoutFont(nullptr, "DejaVu Sans", c.size, c.bold, 0, &font)) return 0;
  const size_t length = std::strlen(c.text);
  out->advances.assign(length, 0);
  TextSize size;
  MeasureText(font.deviceContext, nullptr, c.text, &size, c.bold, 0, c.size, "DejaVu Sans", 100,
              font.logFont, out->advances.data());
  out->width = 0;
  for (size_t i = 0; i < length; ++i) {
    const char one[2] = {c.text[i], 0};
    DrawRequest r = {};
    r.operation = kDrawText;
    r.textMode = kTextBitmap;
    r.text = one;
    r.faceName = "DejaVu Sans";
    r.fontSize = c.size;
    r.bold = c.bold;
    r.deviceContext = font.deviceContext;
    r.logFont = font.logFont;
    MovableFree(reinterpret_cast<MovableHandle>(DispatchDraw(&r)));
    out->boxes.push_back(static_cast<uint32_t>(r.measuredWidth));
    out->layout.push_back(static_cast<uint32_t>(c.size));
    out->width += out->layout.back();
  }
  out->height = size.height;
  MovableHandle mask =
      RenderTextMask(nullptr, font.deviceContext, 0, 0, c.text, out->width, out->height, 255, 1,
                     c.size, c.bold, 0, "DejaVu Sans", out->layout.data(), font.logFont);
  DeleteLayoutFont(&font);
  ScopedBlock owned(mask);
  ScopedLock lock(mask);
  if (!lock) return 0;
  out->pixels.resize(static_cast<size_t>(out->width) * out->height);
  for (int32_t y = 0; y < out->height; ++y)
    for (int32_t x = 0; x < out->width; ++x)
      out->pixels[static_cast<size_t>(y) * out->width + x] =
          static_cast<uint8_t>(ReadDibPixel(lock.bytes, x, y));
  return 1;
}

std::string CasePath(const char* dir, size_t index) {
  return std::string(dir) + "/mask" + std::to_string(index) + ".bin";
}

int Write(const char* path, const Mask& m) {
  FILE* f = std::fopen(path, "wb");
  if (!f) return 0;
  std::fprintf(f, "%d %d %zu", m.width, m.height, m.advances.size());
  for (uint32_t a : m.boxes) std::fprintf(f, " %u", a);
  for (uint32_t a : m.advances) std::fprintf(f, " %u", a);
  std::fputc('\n', f);
  const bool ok = std::fwrite(m.pixels.data(), 1, m.pixels.size(), f) == m.pixels.size();
  return std::fclose(f) == 0 && ok;
}

int Read(const char* path, Mask* m) {
  FILE* f = std::fopen(path, "rb");
  if (!f) return 0;
  size_t count = 0;
  int ok = std::fscanf(f, "%d %d %zu", &m->width, &m->height, &count) == 3 && m->width >= 0 &&
           m->height >= 0 && count < 4096 && m->width < 100000 && m->height < 100000;
  for (size_t i = 0; ok && i < 2 * count; ++i) {
    unsigned a = 0;
    ok = std::fscanf(f, " %u", &a) == 1;
    (i < count ? m->boxes : m->advances).push_back(a);
  }
  ok = ok && std::fgetc(f) == '\n';
  if (ok) {
    m->pixels.resize(static_cast<size_t>(m->width) * m->height);
    ok = std::fread(m->pixels.data(), 1, m->pixels.size(), f) == m->pixels.size();
  }
  std::fclose(f);
  return ok;
}

// Compares the masks of one case; prints a line and returns 1 within the bounds.
int Compare(const ParityCase& c, const Mask& other, const Mask& here) {
  int32_t worstBox = 0, worstAdvance = 0;
  for (size_t i = 0; i < here.boxes.size() && i < other.boxes.size(); ++i) {
    const int32_t box =
        c.text[i] == ' ' ? 0 : std::abs(static_cast<int32_t>(here.boxes[i] - other.boxes[i]));
    const int32_t advance = std::abs(static_cast<int32_t>(here.advances[i] - other.advances[i]));
    worstBox = box > worstBox ? box : worstBox;
    worstAdvance = advance > worstAdvance ? advance : worstAdvance;
  }
  double sumHere = 0, sumOther = 0, misplaced = 0;
  for (uint8_t v : here.pixels) sumHere += v;
  for (uint8_t v : other.pixels) sumOther += v;
  const int32_t w = here.width < other.width ? here.width : other.width;
  const int32_t h = here.height < other.height ? here.height : other.height;
  for (int32_t y = 0; y < h; ++y)
    for (int32_t x = 0; x < w; ++x)
      misplaced += std::abs(here.pixels[static_cast<size_t>(y) * here.width + x] -
                            other.pixels[static_cast<size_t>(y) * other.width + x]);
  const double coverage = sumHere > 0 ? (sumOther - sumHere) / sumHere : 1.0;
  const double pixels = sumHere > 0 ? misplaced / sumHere : 1.0;
  const int ok = here.boxes.size() == other.boxes.size() &&
                 std::abs(here.height - other.height) <= kHeightBound && worstBox <= kBoxBound &&
                 std::fabs(coverage) <= c.coverageBound && pixels <= c.pixelBound;
  std::printf(
      "%-4s %3d px %-4s box %d width %4d/%4d height %3d/%3d coverage %+.4f pixels %.4f "
      "(measured advances up to %d apart)\n",
      ok ? "ok" : "FAIL", c.size, c.bold ? "bold" : "", worstBox, here.width, other.width,
      here.height, other.height, coverage, pixels, worstAdvance);
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 || (std::strcmp(argv[1], "dump") && std::strcmp(argv[1], "compare"))) {
    std::fprintf(stderr, "usage: gm5_mask_parity dump|compare DIR\n");
    return 2;
  }
  DrawRequest session = {};
  session.operation = kDrawStartup;
  if (DispatchDraw(&session) != 1) return 1;
  int failures = 0;
  for (size_t i = 0; i < sizeof kCases / sizeof kCases[0]; ++i) {
    Mask here;
    if (!Render(kCases[i], &here)) {
      std::fprintf(stderr, "cannot render case %zu\n", i);
      ++failures;
      continue;
    }
    const std::string path = CasePath(argv[2], i);
    if (argv[1][0] == 'd') {
      failures += !Write(path.c_str(), here);
    } else {
      Mask other;
      if (!Read(path.c_str(), &other)) {
        std::fprintf(stderr, "cannot read %s\n", path.c_str());
        ++failures;
        continue;
      }
      failures += !Compare(kCases[i], other, here);
    }
  }
  session.operation = kDrawShutdown;
  DispatchDraw(&session);
  return failures ? 1 : 0;
}
