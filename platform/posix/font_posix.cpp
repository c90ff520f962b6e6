// Finding and sizing fonts on POSIX. fontconfig chooses the file; when its best match is not the
// family asked for, "DejaVu Sans" is asked for instead, so a missing "Impact" gives the same face
// here as under Wine. One FreeType library serves the process and lives until it ends.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>
#include <set>
#include <string>

#include <fontconfig/fontconfig.h>

#include "platform/posix/font_face_posix.h"
#include "platform/posix/font_list_posix.h"

#include FT_TRUETYPE_TABLES_H

namespace {

constexpr char kFallbackFace[] = "DejaVu Sans";

FT_Library Library() {
  static FT_Library library = nullptr;
  if (!library && FT_Init_FreeType(&library)) library = nullptr;
  return library;
}

int FamilyMatches(FcPattern* match, const char* family) {
  FcChar8* name = nullptr;
  for (int i = 0; FcPatternGetString(match, FC_FAMILY, i, &name) == FcResultMatch; ++i) {
    if (!FcStrCmpIgnoreCase(name, reinterpret_cast<const FcChar8*>(family))) return 1;
  }
  return 0;
}

// The best match for a family at the weight and slant; `exact` says whether it is that family.
FcPattern* MatchFamily(const char* family, const FontDescription* d, int* exact) {
  FcPattern* pattern = FcPatternCreate();
  if (!pattern) return nullptr;
  FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
  FcPatternAddInteger(pattern, FC_WEIGHT,
                      d->weight >= kFontWeightBold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
  FcPatternAddInteger(pattern, FC_SLANT, d->italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
  FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
  FcDefaultSubstitute(pattern);
  FcResult result = FcResultNoMatch;
  FcPattern* match = FcFontMatch(nullptr, pattern, &result);
  FcPatternDestroy(pattern);
  *exact = match && FamilyMatches(match, family);
  return match;
}

FT_Face OpenFace(const FontDescription* d) {
  int exact = 0;
  FcPattern* match = MatchFamily(d->faceName, d, &exact);
  if (!exact) {
    int fallbackExact = 0;
    FcPattern* fallback = MatchFamily(kFallbackFace, d, &fallbackExact);
    if (fallback && (fallbackExact || !match)) {
      if (match) FcPatternDestroy(match);
      match = fallback;
    } else if (fallback) {
      FcPatternDestroy(fallback);
    }
  }
  if (!match) return nullptr;
  FcChar8* file = nullptr;
  int index = 0;
  FT_Face face = nullptr;
  if (FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch && Library()) {
    FcPatternGetInteger(match, FC_INDEX, 0, &index);
    if (FT_New_Face(Library(), reinterpret_cast<const char*>(file), index, &face)) face = nullptr;
  }
  FcPatternDestroy(match);
  return face;
}

}  // namespace

int ListFontFamilies(void (*visit)(const char* family, void* context), void* context) {
  FcPattern* pattern = FcPatternCreate();
  FcObjectSet* objects = FcObjectSetBuild(FC_FAMILY, nullptr);
  if (pattern) FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
  FcFontSet* fonts = pattern && objects ? FcFontList(nullptr, pattern, objects) : nullptr;
  std::set<std::string> families;
  for (int i = 0; fonts && i < fonts->nfont; ++i) {
    FcChar8* name = nullptr;
    if (FcPatternGetString(fonts->fonts[i], FC_FAMILY, 0, &name) == FcResultMatch)
      families.insert(reinterpret_cast<const char*>(name));
  }
  if (fonts) FcFontSetDestroy(fonts);
  if (objects) FcObjectSetDestroy(objects);
  if (pattern) FcPatternDestroy(pattern);
  for (const std::string& family : families) visit(family.c_str(), context);
  return static_cast<int>(families.size());
}

int DrawnFontFamily(const char* family, char* face, size_t size) {
  if (!face || size == 0) return 0;
  face[0] = 0;
  FontDescription d{};
  d.height = 16;
  d.weight = 400;
  std::snprintf(d.faceName, sizeof d.faceName, "%s", family ? family : "");
  int exact = 0;
  FcPattern* match = MatchFamily(d.faceName, &d, &exact);
  if (!exact) {
    int fallbackExact = 0;
    FcPattern* fallback = MatchFamily(kFallbackFace, &d, &fallbackExact);
    if (fallback && (fallbackExact || !match)) {
      if (match) FcPatternDestroy(match);
      match = fallback;
    } else if (fallback) {
      FcPatternDestroy(fallback);
    }
  }
  if (!match) return 0;
  FcChar8* name = nullptr;
  if (exact)
    std::snprintf(face, size, "%s", d.faceName);
  else if (FcPatternGetString(match, FC_FAMILY, 0, &name) == FcResultMatch)
    std::snprintf(face, size, "%s", reinterpret_cast<const char*>(name));
  FcPatternDestroy(match);
  return face[0] != 0;
}

PosixFont* OpenPosixFont(const FontDescription* description) {
  if (!description || description->height < 1) return nullptr;
  FT_Face face = OpenFace(description);
  if (!face) return nullptr;
  PosixFont* font = new (std::nothrow) PosixFont();
  if (!font) {
    FT_Done_Face(face);
    return nullptr;
  }
  font->magic = kPosixFontMagic;
  font->face = face;
  font->description = *description;
  // GDI fills a positive height with the Windows ascent and descent; fonts without an OS/2 table
  // use the horizontal header's.
  double ascender = face->ascender, descender = -face->descender;
  const TT_OS2* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  if (os2 && os2->usWinAscent + os2->usWinDescent > 0) {
    ascender = os2->usWinAscent;
    descender = os2->usWinDescent;
  }
  if (ascender + descender <= 0) ascender = face->units_per_EM, descender = 0;
  const double scale = description->height / (ascender + descender);
  font->emPixels = face->units_per_EM * scale;
  font->ascent = ascender * scale;
  font->cellHeight =
      static_cast<int32_t>(std::lround(ascender * scale) + std::lround(descender * scale));
  if (FT_Set_Char_Size(face, 0, static_cast<FT_F26Dot6>(std::lround(font->emPixels * 64)), 72,
                       72)) {
    ClosePosixFont(font);
    return nullptr;
  }
  return font;
}

void ClosePosixFont(PosixFont* font) {
  if (!font) return;
  font->magic = 0;
  FT_Done_Face(font->face);
  delete font;
}

PosixFont* PosixFontFromContext(void* deviceContext) {
  PosixFont* font = static_cast<PosixFont*>(deviceContext);
  return font && font->magic == kPosixFontMagic ? font : nullptr;
}

uint32_t CodePageCharacter(uint8_t byte) {
  // 0x80 to 0x9F of Windows-1252; the five unassigned bytes map to themselves, as Windows does.
  static const uint16_t kHigh[32] = {
      0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
      0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  return byte >= 0x80 && byte < 0xA0 ? kHigh[byte - 0x80] : byte;
}

int CreateLayoutFont(WindowHandle window, const char* faceName, int32_t cellHeight, int32_t bold,
                     int32_t italic, LayoutFont* font) {
  *font = LayoutFont();
  FontDescription d = {};
  d.height = cellHeight;
  d.weight = bold ? kFontWeightBold : kFontWeightNormal;
  d.italic = italic ? 1 : 0;
  if (faceName) std::strncpy(d.faceName, faceName, kFaceNameBytes - 1);
  PosixFont* opened = OpenPosixFont(&d);
  if (!opened) return 0;
  font->description = d;
  font->window = window;
  font->font = opened;
  font->deviceContext = opened;
  font->logFont = &opened->description;
  return 1;
}

void DeleteLayoutFont(LayoutFont* font) {
  if (!font) return;
  ClosePosixFont(static_cast<PosixFont*>(font->font));
  *font = LayoutFont();
}

int32_t FontCellHeight(void* deviceContext) {
  const PosixFont* font = PosixFontFromContext(deviceContext);
  return font ? font->cellHeight : 0;
}
