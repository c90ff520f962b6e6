// The settings table and its two passes. Rows are built once from three lists: the general rows
// with their defaults, the style keys in file order, and the style keys that no control mirrors.
// A style key's default is the one its page table gives; the storage is filled from the defaults
// when the library loads, so a second dialog in the same process starts where the first ended.
#include "documents/settings.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include "controls/page_tables.h"

SettingEntry SettingTable[kSettingCount];

namespace {

struct GeneralRow {
  const char* key;
  uint32_t flags;
  uint32_t aux;
  int32_t number;
  const char* text;
};

// Rows of the table before the style rows, in file order.
constexpr GeneralRow kRowsBeforeStyles[] = {
    {"AddDescriptiveCommentBlock", 0x8001, 103, 1, nullptr},
    {"AccentCompensation", 0x1, 0, 1, nullptr},
    {"AlphaGreyBack", 0x4, 0, 8355711, nullptr},
    {"CurrentFileName", 0x2, 0, 0, "untitled.gm5"},
    {"DefaultTextureFileName", 0x2, 0, 0, "rfdplgm5.fft"},
    {"DitherBrightness", 0x14, 100, 20, nullptr},
    {"DitherContrast", 0x14, 101, 20, nullptr},
    {"FastRemap", 0x8001, 102, 0, nullptr},
    {"FitSampleInWindow", 0x8001, 0, 1, nullptr},
    {"IsFirst", 0x1, 0, 1, nullptr},
    {"MainAlphaTrans", 0x1, 0, 0, nullptr},
    {"MainAntialias", 0x1, 0, 1, nullptr},
    {"MainDelay", 0x4, 0, 5, nullptr},
    {"MainDepth", 0x4, 0, 32, nullptr},
    {"MainDither", 0x1, 0, 0, nullptr},
    {"MainEffect", 0x4, 0, 12, nullptr},
    {"MainFitToText", 0x1, 0, 1, nullptr},
    {"MainFontBold", 0x1, 0, 1, nullptr},
    {"MainFontItalic", 0x1, 0, 0, nullptr},
    {"MainFontName", 0x2, 0, 0, "Impact"},
    {"MainFontSize", 0x4, 0, 92, nullptr},
    {"MainFontSpace", 0x4, 0, 90, nullptr},
    {"MainMaskBackground", 0x1, 0, 1, nullptr},
    {"MainPadding", 0x1, 0, 0, nullptr},
    {"MainPalette", 0x4, 0, 6, nullptr},
    {"MainPause", 0x4, 0, 100, nullptr},
    {"MainRolling", 0x1, 0, 1, nullptr},
    {"MainSteps", 0x4, 0, 32, nullptr},
    {"MainSupercompress", 0x1, 0, 0, nullptr},
    {"MainText", 0x2, 0, 0, "This space for rent..."},
    {"MainVerticalOffset", 0x2, 0, 0, "0"},
    {"MatrixLibrary", 0x2, 0, 0, "rfdplgm5.mtx"},
    {"MatrixDefaultTile", 0x2, 0, 0, ""},
    {"MainTransparent", 0x4, 0, 0, nullptr},
    {"OpenPath", 0x2, 0, 0, ""},
    {"PatchLevel", 0x104, 0, 1, nullptr},
    {"RegistrationName", 0x1002, 0, 0, ""},
    {"RegistrationKey", 0x1002, 0, 0, ""},
    {"SampleWindowKeyLine", 0x1, 0, 0, nullptr},
    {"ShowFileOpenPreview", 0x1, 0, 1, nullptr},
};

// Rows after the style rows.
constexpr GeneralRow kRowsAfterStyles[] = {
    {"Truecolour", 0x1, 0, 1, nullptr},
    {"UpdateDelay", 0x4, 0, 250, nullptr},
    {"UseAlphaGreyBack", 0x1, 0, 1, nullptr},
    {"VersionNumber", 0x104, 0, 512, nullptr},
};

// The style rows' suffixes in file order; Style002Frames stands twice.
constexpr const char* kStyleSuffixes[21] = {
    "FillOpacity Frames OutlineColor OutlineEnable Scroll ShadowColor ShadowDirection ShadowEnable "
    "ShadowOffset ShadowOpacity Soft Track",
    "Angle FillOpacity InitAngle OutlineColor OutlineEnable Radius ShadowColor ShadowDirection "
    "ShadowEnable ShadowOffset ShadowOpacity Soft",
    "Frames OutlineColor OutlineEnable ShadowColor ShadowDirection ShadowEnable ShadowOffset "
    "ShadowOpacity Soft Density Depth Drift FillColor1 FillColor2 FillColor3 FillColor4 FillColor5 "
    "FillEnable2 FillEnable3 FillEnable4 FillEnable5 FillOpacity Frames Seed Size Width",
    "Density Drift FillColor1 FillColor2 FillColor3 FillColor4 FillColor5 FillEnable2 FillEnable3 "
    "FillEnable4 FillEnable5 FillOpacity Frames Seed Size Variable",
    "End Inverse Offset OutlineColor OutlineEnable Rotation ShadowColor ShadowDirection "
    "ShadowEnable ShadowOffset ShadowOpacity Size Soft Start",
    "OutlineColor OutlineEnable ShadowColor ShadowDirection ShadowEnable ShadowOffset "
    "ShadowOpacity Soft Rotation XOffset YOffset InitRotation",
    "Frames OutlineColor OutlineEnable ShadowColor ShadowDirection ShadowEnable ShadowOffset "
    "ShadowOpacity Soft FrameBackground Glare Density FillColor1 FillColor2 FillColor3 FillColor4 "
    "FillColor5 FillEnable2 FillEnable3 FillEnable4 FillEnable5 Matrix Shade Seed Size",
    "Frames OutlineColor OutlineEnable ShadowColor ShadowDirection ShadowEnable ShadowOffset "
    "ShadowOpacity Soft Density DirNorth DirEast DirSouth DirWest Drift FillColor1 FillColor2 "
    "FillColor3 FillColor4 FillColor5 FillEnable2 FillEnable3 FillEnable4 FillEnable5 FillOpacity "
    "Seed Size",
    "Background FillOpacity Frames OutlineColor OutlineEnable ShadowColor ShadowDirection "
    "ShadowEnable ShadowOffset ShadowOpacity Soft",
    "FillOpacity Frames OutlineColor OutlineEnable ShadowColor ShadowDirection ShadowEnable "
    "ShadowOffset ShadowOpacity Soft Amplitude FillColor1 FillColor2 FillColor3 FillColor4 "
    "FillColor5 FillEnable2 FillEnable3 FillEnable4 FillEnable5 Glare Scroll Seed Shade Size "
    "Wavelength",
    "Background FillOpacity Frames OutlineColor OutlineEnable ShadowColor ShadowDirection "
    "ShadowEnable ShadowOffset ShadowOpacity Soft Wavesize Waveheight",
    "AnimPath FillOpacity OutlineColor OutlineEnable ShadowColor ShadowDirection ShadowEnable "
    "ShadowOffset ShadowOpacity Soft",
    "BackFillColor FillColor FillOpacity Frames OutlineColor OutlineEnable Scroll ShadowColor "
    "ShadowDirection ShadowEnable ShadowOffset ShadowOpacity Size Soft",
    "FillOpacity ShadowColor ShadowDirection ShadowEnable ShadowOffset ShadowOpacity Soft Rotation "
    "XOffset YOffset InitRotation",
    "BackgroundColor FillOpacity Frames LeafSize OutlineColor OutlineEnable ShadowColor "
    "ShadowDirection ShadowEnable ShadowOffset ShadowOpacity Soft",
    "BackgroundColor FillOpacity Frames OutlineColor OutlineEnable ShadowColor ShadowDirection "
    "ShadowEnable ShadowOffset ShadowOpacity Soft BevelEnable BevelSize Mode Seed SlowEnd "
    "SlowHFactor SlowVFactor Speed Tracks",
    "Density Drift FillColor1 FillColor2 FillColor3 FillColor4 FillColor5 FillEnable2 FillEnable3 "
    "FillEnable4 FillEnable5 FillOpacity Frames Seed ShadowColor Size Soft Variable",
    "Density Drift FillColor1 FillColor2 FillColor3 FillColor4 FillColor5 FillEnable2 FillEnable3 "
    "FillEnable4 FillEnable5 FillOpacity Frames ObjectSoft Scroll Seed ShadowColor Size Soft "
    "Variable",
    "FillOpacity Frames HDisplace Mode OutlineColor OutlineEnable Ratio Seed ShadowColor "
    "ShadowDirection ShadowEnable ShadowOffset ShadowOpacity Soft VDisplace",
    "DotColor DotEnable DotSquare FillEnable3 FillEnable4 FillEnable5 FillOpacity Frames "
    "OutlineColor OutlineEnable ShadowColor ShadowDirection ShadowEnable ShadowOffset "
    "ShadowOpacity "
    "Soft SwellDelayFactor SwellEdgeFactor SwellSizeFactor SwellSoftness",
    "Barcount FillOpacity OutlineColor OutlineEnable ShadowColor ShadowDirection ShadowEnable "
    "ShadowOffset ShadowOpacity Soft Tilestep Vertical",
};

struct UnboundDefault {
  const char* key;
  int32_t number;
};

// Style settings that no page control mirrors: the file keeps them, and some effects read them.
constexpr UnboundDefault kUnboundStyleDefaults[] = {
    {"Style002Width", 192},
    {"Style002Depth", 192},
    {"Style006Frames", 100},
    {"Style006FrameBackground", 0xFFFFFF},
    {"Style009FillOpacity", 255},
    {"Style011FillOpacity", 255},
    {"Style015SlowHFactor", 95},
    {"Style015SlowVFactor", 98},
    {"Style018Ratio", 6},
    {"Style019SwellSizeFactor", 20},
    {"Style019SwellEdgeFactor", 75},
    {"Style019SwellDelayFactor", 150},
    {"Style019SwellSoftness", 20},
    {"Style019FillOpacity", 255},
};

constexpr int32_t kStringRowLimit = 16;
constexpr size_t kKeyLimit = 32;

struct Storage {
  int32_t numbers[kSettingCount];
  char texts[kStringRowLimit][kSettingTextSize];
};

Storage g_store;
Storage g_defaults;
char g_styleKeys[kSettingCount][kKeyLimit];
SettingScrambler g_scrambler = nullptr;
char g_folder[kSettingTextSize] = "";
int g_folderSet = 0;

int32_t DefaultForStyleKey(const char* key) {
  if (const PageControl* c = FindControlForKey(key)) return c->keyDefault;
  for (const UnboundDefault& d : kUnboundStyleDefaults)
    if (std::strcmp(d.key, key) == 0) return d.number;
  return 0;
}

// Colours are integers, enables booleans, the animation path a string, everything else integers.
uint32_t FlagsForSuffix(std::string_view suffix) {
  if (suffix == "AnimPath") return kSettingString;
  if (suffix.find("Enable") != std::string_view::npos) return kSettingBoolean;
  return kSettingInteger;
}

// Fills the table and the default storage. Runs once, while the library loads.
int BuildTable() {
  int32_t row = 0;
  int32_t strings = 0;
  auto addGeneral = [&](const GeneralRow& r) {
    SettingEntry& e = SettingTable[row];
    e = {r.key, nullptr, r.flags, r.aux, 0};
    if (r.flags & kSettingString) {
      std::snprintf(g_defaults.texts[strings], kSettingTextSize, "%s", r.text);
      e.value = g_store.texts[strings++];
    } else {
      g_defaults.numbers[row] = r.number;
      e.value = &g_store.numbers[row];
    }
    ++row;
  };
  for (const GeneralRow& r : kRowsBeforeStyles) addGeneral(r);
  for (int32_t style = 0; style < 21; ++style) {
    const char* p = kStyleSuffixes[style];
    while (*p) {
      const char* end = std::strchr(p, ' ');
      if (!end) end = p + std::strlen(p);
      const std::string_view suffix(p, static_cast<size_t>(end - p));
      char* key = g_styleKeys[row];
      std::snprintf(key, kKeyLimit, "Style%03d%.*s", style, static_cast<int>(suffix.size()),
                    suffix.data());
      SettingEntry& e = SettingTable[row];
      e = {key, nullptr, FlagsForSuffix(suffix), 0, 0};
      // A key that stands twice shares the first row's value.
      for (int32_t earlier = 0; earlier < row && !e.value; ++earlier)
        if (std::strcmp(SettingTable[earlier].key, key) == 0) e.value = SettingTable[earlier].value;
      if (!e.value) {
        if (e.flags & kSettingString) {
          g_defaults.texts[strings][0] = 0;
          e.value = g_store.texts[strings++];
        } else {
          g_defaults.numbers[row] = DefaultForStyleKey(key);
          e.value = &g_store.numbers[row];
        }
      }
      ++row;
      p = *end ? end + 1 : end;
    }
  }
  for (const GeneralRow& r : kRowsAfterStyles) addGeneral(r);
  std::memcpy(g_store.numbers, g_defaults.numbers, sizeof g_store.numbers);
  std::memcpy(g_store.texts, g_defaults.texts, sizeof g_store.texts);
  return row == kSettingCount && strings <= kStringRowLimit;
}

const int g_tableBuilt = BuildTable();

void CopyValue(const char* from, char* to) {
  std::memset(to, 0, kSettingTextSize);
  std::strncpy(to, from, kSettingTextSize - 1);
}

}  // namespace

const SettingEntry* FindSetting(const char* key) {
  if (!key) return nullptr;
  for (const SettingEntry& e : SettingTable)
    if (e.key && std::strcmp(e.key, key) == 0) return &e;
  return nullptr;
}

int32_t* SettingInteger(const char* key) {
  const SettingEntry* e = FindSetting(key);
  return e && (e->flags & (kSettingBoolean | kSettingInteger)) ? static_cast<int32_t*>(e->value)
                                                               : nullptr;
}

char* SettingString(const char* key) {
  const SettingEntry* e = FindSetting(key);
  return e && (e->flags & kSettingString) ? static_cast<char*>(e->value) : nullptr;
}

void ResetSettings() {
  std::memcpy(g_store.numbers, g_defaults.numbers, sizeof g_store.numbers);
  std::memcpy(g_store.texts, g_defaults.texts, sizeof g_store.texts);
}

void SetSettingScrambler(SettingScrambler scrambler) {
  g_scrambler = scrambler;
}

void SetSettingsFolder(const char* folder) {
  g_folderSet = folder != nullptr;
  std::snprintf(g_folder, sizeof g_folder, "%s", folder ? folder : "");
}

int SettingsFolderPath(const char* name, char* path, size_t size) {
  if (!path || size == 0) return 0;
  path[0] = 0;
  char folder[kSettingTextSize] = "";
  if (g_folderSet)
    std::snprintf(folder, sizeof folder, "%s", g_folder);
  else if (!PlatformSettingsFolder(folder, sizeof folder))
    return 0;
  if (!folder[0]) return 0;
  const int n = std::snprintf(path, size, "%s%s", folder, name ? name : "");
  if (n < 0 || static_cast<size_t>(n) >= size) {
    path[0] = 0;
    return 0;
  }
  return 1;
}

int32_t ParseAtoi(const char* text) {
  if (!text) return 0;
  const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
  while (std::isspace(*p)) ++p;
  int negative = 0;
  if (*p == '+' || *p == '-') negative = *p++ == '-';
  int64_t value = 0;
  for (; *p >= '0' && *p <= '9'; ++p) {
    value = value * 10 + (*p - '0');
    if (value > INT64_C(0x80000000)) value = INT64_C(0x80000000);
  }
  if (negative) value = -value;
  if (value > INT32_MAX) return INT32_MAX;
  if (value < INT32_MIN) return INT32_MIN;
  return static_cast<int32_t>(value);
}

int BackUpFile(const char* path) {
  if (!path || !path[0]) return 0;
  char backup[1024];
  const int n = std::snprintf(backup, sizeof backup, "%s.bak", path);
  if (n < 0 || static_cast<size_t>(n) >= sizeof backup) return 0;
  std::remove(backup);
  std::FILE* from = std::fopen(path, "rb");
  if (!from) return 0;
  std::FILE* to = std::fopen(backup, "wb");
  if (!to) {
    std::fclose(from);
    return 0;
  }
  char buffer[4096];
  int ok = 1;
  size_t got;
  while ((got = std::fread(buffer, 1, sizeof buffer, from)) > 0)
    if (std::fwrite(buffer, 1, got, to) != got) ok = 0;
  if (std::ferror(from)) ok = 0;
  std::fclose(from);
  if (std::fclose(to) != 0) ok = 0;
  return ok;
}

void SaveSettings() {
  char path[kSettingTextSize];
  if (!g_tableBuilt || !SettingsFolderPath("rfdplgm5.ini", path, sizeof path)) return;
  BackUpFile(path);
  std::FILE* file = std::fopen(path, "wt");
  if (!file) return;
  const std::time_t now = std::time(nullptr);
  const char* stamp = std::ctime(&now);
  std::fputs(";Cobalt Lanternary animtion plugin configuration file\n", file);
  std::fputs(";Edit this at your own risk\n", file);
  std::fprintf(file, ";Last updated %24.24s\n", stamp ? stamp : "");
  std::fputs(";\n", file);
  std::fputs("[PlugIn]\n", file);
  for (const SettingEntry& e : SettingTable) {
    if (e.flags & (kSettingBoolean | kSettingInteger)) {
      // Signed, so that a negative value reads back as itself.
      std::fprintf(file, "%s = %d\n", e.key, *static_cast<int32_t*>(e.value));
    } else if (e.flags & kSettingString) {
      char copy[kSettingTextSize];
      CopyValue(static_cast<const char*>(e.value), copy);
      if ((e.flags & kSettingScrambled) && g_scrambler) g_scrambler(copy, 1);
      std::fprintf(file, "%s = %s\n", e.key, copy);
    }
  }
  std::fclose(file);
}

namespace {

// Applies one line of the file; `line` is at most 259 characters and may be changed.
void ApplySettingsLine(char* line, int shift) {
  if (line[0] == ';') return;
  for (char* p = line; *p; ++p)
    if (static_cast<unsigned char>(*p) < 32) {
      *p = 0;
      break;
    }
  size_t n = 0;
  while (static_cast<unsigned char>(line[n]) > 32 && line[n] != '=') ++n;
  const SettingEntry* row = nullptr;
  for (const SettingEntry& e : SettingTable) {
    if (e.flags & kSettingNeverRead) continue;
    if (shift && !(e.flags & kSettingScrambled)) continue;
    // A prefix match: the line's key may be shorter than the row's.
    if (std::strncmp(e.key, line, n) == 0) {
      row = &e;
      break;
    }
  }
  if (!row) return;
  const char* value = line + n;
  while (*value == ' ' || *value == '\t') ++value;
  while (*value == '=') ++value;
  while (*value == ' ' || *value == '\t') ++value;
  if (row->flags & (kSettingBoolean | kSettingInteger)) {
    *static_cast<int32_t*>(row->value) = ParseAtoi(value);
  } else if (row->flags & kSettingString) {
    char* text = static_cast<char*>(row->value);
    CopyValue(value, text);
    if (row->flags & kSettingScrambled) {
      for (size_t end = std::strlen(text); end > 0 && text[end - 1] == ' '; --end)
        text[end - 1] = 0;
      if (g_scrambler) g_scrambler(text, 0);
    }
  }
}

}  // namespace

void LoadSettingsFromFile(std::FILE* file, int shift) {
  if (!file || !g_tableBuilt) return;
  // The reader's limit: a longer line arrives in pieces, each taken as a line of its own.
  char line[260];
  while (std::fgets(line, sizeof line, file)) ApplySettingsLine(line, shift);
}

void LoadSettings() {
  const int shift = SettingsShiftHeld();
  char path[kSettingTextSize];
  if (!SettingsFolderPath("rfdplgm5.ini", path, sizeof path)) return;
  std::FILE* file = std::fopen(path, "rt");
  if (!file) return;
  LoadSettingsFromFile(file, shift);
  std::fclose(file);
}
