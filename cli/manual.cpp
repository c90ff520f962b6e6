// The manual's reader and its three writers: HTML, man page and plain text.
#include "cli/manual.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "documents/settings.h"
#include "shell/effect_table.h"

namespace {

// The chapters around the effects, in order; each effect's file is "effects/" + its slug.
const char* const kChaptersBefore[] = {"preface", "main-dialog"};
const char* const kChaptersAfter[] = {"materials", "output", "documents", "gm5"};

std::string Slug(const char* name) {
  std::string slug;
  for (const char* p = name; *p; ++p)
    slug += *p == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(*p)));
  return slug;
}

std::string Trim(const std::string& text) {
  size_t begin = text.find_first_not_of(' ');
  if (begin == std::string::npos) return std::string();
  return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

std::string Where(const char* name, int32_t line) {
  return std::string("docs/manual/") + name + ".txt:" + std::to_string(line) + ": ";
}

// Reads one source into `section`. Blocks: see the header.
int ParseSource(const ManualSource& source, ManualSection* section, std::string* error) {
  const char* text = source.text;
  for (const char* p = text; *p; ++p) {
    if (static_cast<unsigned char>(*p) > 126 || (*p < 32 && *p != '\n')) {
      int32_t line = 1;
      for (const char* q = text; q < p; ++q) line += *q == '\n';
      *error = Where(source.name, line) + "only printable ASCII is allowed";
      return 0;
    }
  }
  std::vector<std::string> lines;
  for (const char* p = text; *p;) {
    const char* end = std::strchr(p, '\n');
    if (!end) end = p + std::strlen(p);
    lines.emplace_back(p, end);
    p = *end ? end + 1 : end;
  }
  if (lines.empty() || lines[0].rfind("= ", 0) != 0 || lines[0].back() != '}' ||
      lines[0].find(" {") == std::string::npos) {
    *error = Where(source.name, 1) + "the first line must be \"= Title {ANCHOR}\"";
    return 0;
  }
  size_t brace = lines[0].rfind(" {");
  section->title = Trim(lines[0].substr(2, brace - 2));
  section->anchor = lines[0].substr(brace + 2, lines[0].size() - brace - 3);
  for (char c : section->anchor) {
    if (!std::isupper(static_cast<unsigned char>(c)) &&
        !std::isdigit(static_cast<unsigned char>(c)) && c != '_') {
      *error = Where(source.name, 1) + "an anchor is capitals, digits and \"_\"";
      return 0;
    }
  }
  ManualBlock* open = nullptr;  // the paragraph or item that the next text line continues
  for (size_t i = 1; i < lines.size(); ++i) {
    const std::string& line = lines[i];
    const int32_t number = static_cast<int32_t>(i + 1);
    if (Trim(line).empty()) {
      open = nullptr;
      continue;
    }
    if (line.rfind("    ", 0) == 0 && !(open && open->kind == ManualItem)) {
      section->blocks.push_back({ManualCode, line.substr(4), std::string()});
      open = nullptr;
    } else if (line.rfind("  ", 0) == 0 && open && open->kind == ManualItem) {
      open->text += " " + Trim(line);
    } else if (line.rfind("== ", 0) == 0) {
      section->blocks.push_back({ManualSubheading, Trim(line.substr(3)), std::string()});
      open = nullptr;
    } else if (line.rfind("- ", 0) == 0) {
      section->blocks.push_back({ManualItem, Trim(line.substr(2)), std::string()});
      open = &section->blocks.back();
    } else if (line[0] == '@') {
      std::string word = line.substr(0, line.find(' '));
      std::string rest = line.size() > word.size() ? Trim(line.substr(word.size())) : "";
      if (word == "@controls" && (rest.empty() || rest == "main")) {
        if (rest.empty() && section->effectRow < 0) {
          *error = Where(source.name, number) + "@controls outside an effect needs \"main\"";
          return 0;
        }
        section->blocks.push_back({ManualControls, std::string(), rest});
      } else if (word == "@picture" && rest.find(' ') != std::string::npos) {
        size_t blank = rest.find(' ');
        section->blocks.push_back({ManualPicture, Trim(rest.substr(blank)), rest.substr(0, blank)});
      } else if (word == "@effect-pictures" && rest.empty() && section->effectRow >= 0) {
        section->blocks.push_back({ManualEffectPictures, std::string(), std::string()});
      } else {
        *error = Where(source.name, number) + "unknown directive: " + line;
        return 0;
      }
      open = nullptr;
    } else if (line[0] == '=') {
      *error = Where(source.name, number) + "only the first line is a section title";
      return 0;
    } else if (open && open->kind == ManualParagraph) {
      open->text += " " + Trim(line);
    } else {
      section->blocks.push_back({ManualParagraph, Trim(line), std::string()});
      open = &section->blocks.back();
    }
  }
  return 1;
}

const ManualSource* FindSource(const ManualSource* sources, int32_t count,
                               const std::string& name) {
  for (int32_t i = 0; i < count; ++i)
    if (name == sources[i].name) return &sources[i];
  return nullptr;
}

// ---- control tables ----

std::string ColourText(uint32_t colour) {
  char text[8];
  std::snprintf(text, sizeof text, "#%02X%02X%02X", colour & 0xFF, (colour >> 8) & 0xFF,
                (colour >> 16) & 0xFF);
  return text;
}

std::vector<std::string> SplitRows(const char* rows) {
  std::vector<std::string> out;
  if (!rows) return out;
  std::string row;
  for (const char* p = rows;; ++p) {
    if (*p == ';' || !*p) {
      out.push_back(row);
      row.clear();
      if (!*p) break;
    } else {
      row += *p;
    }
  }
  return out;
}

std::string JoinRows(const std::vector<std::string>& rows) {
  std::string out;
  for (size_t i = 0; i < rows.size(); ++i) out += (i ? ", " : "") + rows[i];
  return out;
}

// min, max, default of a range text; 0 when it has not three numbers.
int ParseRange(const char* range, int32_t* low, int32_t* high, int32_t* initial) {
  return range && std::sscanf(range, "%d,%d,%d", low, high, initial) == 3;
}

std::string CleanCaption(const char* caption) {
  std::string out;
  for (const char* p = caption ? caption : ""; *p; ++p)
    if (*p != '&') out += *p;
  while (!out.empty() && (out.back() == ':' || out.back() == ' ')) out.pop_back();
  return out;
}

// The last word of a setting key that starts with a capital: "Style007DirNorth" gives "North".
std::string LastKeyWord(const char* key) {
  if (!key) return std::string();
  const char* last = key;
  for (const char* p = key; *p; ++p)
    if (std::isupper(static_cast<unsigned char>(*p))) last = p;
  return last;
}

// Controls without a caption of their own, named as a reader sees them. The direction boxes of
// Arrows sit in a cross, and each box means the way its position shows, whatever its key says.
const struct {
  const char* key;
  const char* name;
} kUncaptionedControls[] = {
    {"Style007DirNorth", "Fly up (upper box)"},
    {"Style007DirEast", "Fly left (left box)"},
    {"Style007DirSouth", "Fly down (lower box)"},
    {"Style007DirWest", "Fly right (right box)"},
};

const char* const kShadowCells[] = {"up and left",   "up",   "up and right",  "right", "left",
                                    "down and left", "down", "down and right"};
const char* const kScroll4Cells[] = {"up", "right", "left", "down"};
const char* const kScroll2Cells[] = {"left", "right"};
const char* const kScrollHVCells[] = {"horizontal", "vertical"};

std::string CellName(const char* const* cells, int32_t count, int32_t value) {
  return value >= 0 && value < count ? cells[value] : std::to_string(value);
}

std::string CellList(const char* const* cells, int32_t count) {
  std::string out;
  for (int32_t i = 0; i < count; ++i) out += (i ? ", " : "") + std::string(cells[i]);
  return out;
}

int32_t DefaultInteger(const PageControl& c) {
  int32_t low, high, initial;
  if (c.key) return c.keyDefault;
  if (c.kind == kControlSpinEdit && ParseRange(c.range, &low, &high, &initial)) return initial;
  return c.keyDefault;
}

// Fills `row` from one control; 0 for controls that hold no value.
int DescribeControl(const PageControl& c, ControlRow* row) {
  int32_t low = 0, high = 0, initial = 0;
  const int32_t value = DefaultInteger(c);
  switch (c.kind) {
    case kControlMaterialButton:
      row->takes = "material (colour, gradient, texture or tile)";
      row->value = "colour " + ColourText(c.colour);
      return 1;
    case kControlColourButton:
      row->takes = "colour";
      row->value = ColourText(c.key ? static_cast<uint32_t>(c.keyDefault) : c.colour);
      return 1;
    case kControlSpinEdit:
    case kControlSignedSpinEdit:
      if (ParseRange(c.range, &low, &high, &initial))
        row->takes = "number, " + std::to_string(low) + " to " + std::to_string(high);
      else
        row->takes = "number";
      row->value = std::to_string(value);
      return 1;
    case kControlCheckBox:
      row->takes = "on or off";
      row->value = value ? "on" : "off";
      return 1;
    case kControlComboList: {
      std::vector<std::string> rows = SplitRows(c.range);
      if (!c.range)
        for (int32_t r = 0; r < kEffectCount; ++r) rows.push_back(EffectTable[r].name);
      row->takes = "one of " + JoinRows(rows);
      row->value = value >= 0 && value < static_cast<int32_t>(rows.size()) ? rows[value]
                                                                           : std::to_string(value);
      return 1;
    }
    case kControlShadowPicker:
      row->takes = "one of eight directions";
      row->value = CellName(kShadowCells, 8, value);
      return 1;
    case kControlScroll4Picker:
      row->takes = "direction: " + CellList(kScroll4Cells, 4);
      row->value = CellName(kScroll4Cells, 4, value);
      return 1;
    case kControlScroll2Picker:
      row->takes = "direction: " + CellList(kScroll2Cells, 2);
      row->value = CellName(kScroll2Cells, 2, value);
      return 1;
    case kControlScrollHVPicker:
      row->takes = "direction: " + CellList(kScrollHVCells, 2);
      row->value = CellName(kScrollHVCells, 2, value);
      return 1;
    case kControlFountainButton:
      row->takes = "multi-colour gradient";
      row->value = "the stock gradient";
      return 1;
    case kControlAnimationPicker:
      row->takes = "animation file";
      row->value = "the built-in clip";
      return 1;
    case kControlTextField:
    case kControlFontBox: {
      const char* text = c.key ? SettingString(c.key) : nullptr;
      row->takes = c.kind == kControlTextField ? "text, up to 260 characters" : "font name";
      row->value = text ? "\"" + std::string(text) + "\"" : "";
      return 1;
    }
    default:
      return 0;
  }
}

// ---- inline markup ----

enum InlineTarget { InlineHtml, InlineMan, InlineText };

std::string EscapeHtml(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

// Text for a roff line: backslashes and hyphens escaped (so options stay as typed).
std::string EscapeMan(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\\')
      out += "\\e";
    else if (c == '-')
      out += "\\-";
    else
      out += c;
  }
  return out;
}

// A roff text line: one that would start with a control character is guarded by "\&".
std::string TextLine(const std::string& line) {
  return !line.empty() && (line[0] == '.' || line[0] == '\'') ? "\\&" + line : line;
}

std::string Escape(const std::string& text, InlineTarget target) {
  return target == InlineHtml ? EscapeHtml(text) : target == InlineMan ? EscapeMan(text) : text;
}

std::string Inline(const std::string& text, InlineTarget target) {
  std::string out;
  size_t i = 0;
  while (i < text.size()) {
    if (text[i] == '`') {
      size_t end = text.find('`', i + 1);
      if (end != std::string::npos) {
        std::string code = text.substr(i + 1, end - i - 1);
        if (target == InlineHtml)
          out += "<code>" + EscapeHtml(code) + "</code>";
        else if (target == InlineMan)
          out += "\\fB" + EscapeMan(code) + "\\fR";
        else
          out += code;
        i = end + 1;
        continue;
      }
    } else if (text.compare(i, 2, "**") == 0) {
      size_t end = text.find("**", i + 2);
      if (end != std::string::npos) {
        std::string bold = Inline(text.substr(i + 2, end - i - 2), target);
        if (target == InlineHtml)
          out += "<b>" + bold + "</b>";
        else if (target == InlineMan)
          out += "\\fB" + bold + "\\fR";
        else
          out += bold;
        i = end + 2;
        continue;
      }
    } else if (text[i] == '[') {
      size_t close = text.find("](#", i);
      size_t end = close == std::string::npos ? close : text.find(')', close);
      if (end != std::string::npos) {
        std::string label = Inline(text.substr(i + 1, close - i - 1), target);
        std::string anchor = text.substr(close + 3, end - close - 3);
        out += target == InlineHtml ? "<a href=\"#" + EscapeHtml(anchor) + "\">" + label + "</a>"
                                    : label;
        i = end + 1;
        continue;
      }
    }
    out += Escape(std::string(1, text[i]), target);
    ++i;
  }
  return out;
}

// ---- HTML ----

const char kStyle[] =
    "body{font-family:'DejaVu Sans',Verdana,Arial,sans-serif;line-height:1.5;color:#222;"
    "max-width:60em;margin:0 auto;padding:0 1.5em 3em;background:#fff}"
    "h1{font-size:1.9em;margin:.8em 0 .2em;color:#1f3f6f}"
    "h2{font-size:1.45em;margin:2em 0 .5em;padding-top:.4em;border-top:2px solid #c8d4e6;"
    "color:#1f3f6f}"
    "h3{font-size:1.1em;margin:1.4em 0 .3em}"
    "code,pre{font-family:'DejaVu Sans Mono',Consolas,monospace;font-size:.92em}"
    "code{background:#f0f2f5;padding:0 .2em}"
    "pre{background:#f0f2f5;padding:.6em .9em;overflow-x:auto}"
    "table{border-collapse:collapse;margin:.6em 0;font-size:.92em}"
    "th,td{border:1px solid #c8cdd6;padding:.25em .6em;text-align:left;vertical-align:top}"
    "th{background:#e6ecf5}"
    "figure{margin:1em 0}figure img{max-width:100%;height:auto;border:1px solid #c8cdd6}"
    "figcaption{font-size:.9em;color:#555}"
    "nav ol{columns:2}.lead{font-size:1.1em;color:#444}";

void HtmlControls(const std::vector<ControlRow>& rows, std::string* out) {
  *out +=
      "<table class=\"controls\">\n<tr><th>Control</th><th>Takes</th><th>Default</th>"
      "<th>Id</th><th>Setting</th></tr>\n";
  for (const ControlRow& r : rows) {
    *out += "<tr><td>" + EscapeHtml(r.name) + "</td><td>" + EscapeHtml(r.takes) + "</td><td>" +
            EscapeHtml(r.value) + "</td><td>" + std::to_string(r.id) + "</td><td>" +
            (r.key.empty() ? std::string() : "<code>" + EscapeHtml(r.key) + "</code>") +
            "</td></tr>\n";
  }
  *out += "</table>\n";
}

void HtmlPicture(const std::string& file, const std::string& caption, const std::string& folder,
                 PictureExists exists, void* context, std::string* out) {
  *out += "<figure>";
  int32_t width = 0, height = 0;
  if (exists(file, context, &width, &height)) {
    *out +=
        "<img src=\"" + EscapeHtml(folder + "/" + file) + "\" alt=\"" + EscapeHtml(caption) + "\"";
    if (width > 0 && height > 0)
      *out += " width=\"" + std::to_string(width) + "\" height=\"" + std::to_string(height) + "\"";
    *out += ">";
  }
  *out += "<figcaption>" + EscapeHtml(caption) + "</figcaption></figure>\n";
}

const PageTable& TableOf(const ManualSection& section, const ManualBlock& block,
                         const PageTable* pages) {
  return block.file == "main" ? kMainDialogTable : pages[EffectStyle[section.effectRow]];
}

void HtmlSection(const ManualSection& section, const std::string& folder, PictureExists exists,
                 void* context, const PageTable* pages, std::string* out) {
  *out += "<section id=\"" + section.anchor + "\">\n";
  *out += "<h2>" + EscapeHtml(section.title) + "</h2>\n";
  for (size_t i = 0; i < section.blocks.size(); ++i) {
    const ManualBlock& b = section.blocks[i];
    switch (b.kind) {
      case ManualSubheading:
        *out += "<h3>" + Inline(b.text, InlineHtml) + "</h3>\n";
        break;
      case ManualParagraph:
        *out += "<p>" + Inline(b.text, InlineHtml) + "</p>\n";
        break;
      case ManualItem:
        if (i == 0 || section.blocks[i - 1].kind != ManualItem) *out += "<ul>\n";
        *out += "<li>" + Inline(b.text, InlineHtml) + "</li>\n";
        if (i + 1 == section.blocks.size() || section.blocks[i + 1].kind != ManualItem)
          *out += "</ul>\n";
        break;
      case ManualCode:
        if (i == 0 || section.blocks[i - 1].kind != ManualCode) *out += "<pre>";
        *out += EscapeHtml(b.text) + "\n";
        if (i + 1 == section.blocks.size() || section.blocks[i + 1].kind != ManualCode)
          *out += "</pre>\n";
        break;
      case ManualControls:
        HtmlControls(ControlRows(TableOf(section, b, pages)), out);
        break;
      case ManualPicture:
        HtmlPicture(b.file, b.text, folder, exists, context, out);
        break;
      case ManualEffectPictures: {
        const char* name = EffectTable[section.effectRow].name;
        const std::string slug = Slug(name);
        char page[16];
        std::snprintf(page, sizeof page, "page-%02d.png", section.effectRow);
        HtmlPicture(slug + ".gif", std::string("The default animation of ") + name + ".", folder,
                    exists, context, out);
        HtmlPicture(slug + ".png",
                    "Frames at the start, a quarter, half and three quarters of the way through.",
                    folder, exists, context, out);
        HtmlPicture(page, std::string("The dialog with the page of ") + name + ".", folder, exists,
                    context, out);
        break;
      }
    }
  }
  *out += "</section>\n";
}

// ---- text ----

void Wrap(const std::string& text, const std::string& first, const std::string& rest, int32_t width,
          std::string* out) {
  std::string line = first;
  size_t lineStart = 0;  // words already on the line beyond the indent
  size_t i = 0;
  while (i < text.size()) {
    size_t end = text.find(' ', i);
    if (end == std::string::npos) end = text.size();
    std::string word = text.substr(i, end - i);
    i = end + 1;
    if (word.empty()) continue;
    if (lineStart && static_cast<int32_t>(line.size() + 1 + word.size()) > width) {
      *out += line + "\n";
      line = rest;
      lineStart = 0;
    }
    line += (lineStart ? " " : "") + word;
    lineStart = 1;
  }
  *out += line + "\n";
}

void TextControls(const std::vector<ControlRow>& rows, int32_t width, std::string* out) {
  size_t nameWidth = 0;
  for (const ControlRow& r : rows) nameWidth = std::max(nameWidth, r.name.size());
  for (const ControlRow& r : rows) {
    std::string head = "  " + r.name + std::string(nameWidth - r.name.size() + 2, ' ');
    std::string body = r.takes + "; default " + r.value + " (id " + std::to_string(r.id) +
                       (r.key.empty() ? "" : ", " + r.key) + ")";
    Wrap(body, head, std::string(head.size(), ' '), width, out);
  }
}

}  // namespace

std::string EffectAnchor(const char* name) {
  std::string anchor;
  for (const char* p = name; *p; ++p)
    anchor += *p == ' ' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(*p)));
  return anchor;
}

int ReadManual(const ManualSource* sources, int32_t count, std::vector<ManualSection>* sections,
               std::string* error) {
  sections->clear();
  std::vector<std::pair<std::string, int32_t>> order;
  for (const char* name : kChaptersBefore) order.emplace_back(name, -1);
  for (int32_t row = 0; row < kEffectCount; ++row)
    order.emplace_back("effects/" + Slug(EffectTable[row].name), row);
  for (const char* name : kChaptersAfter) order.emplace_back(name, -1);
  for (const auto& [name, row] : order) {
    const ManualSource* source = FindSource(sources, count, name);
    if (!source) {
      *error = "docs/manual/" + name + ".txt is missing";
      return 0;
    }
    ManualSection section;
    section.effectRow = row;
    if (!ParseSource(*source, &section, error)) return 0;
    if (row >= 0 && section.anchor != EffectAnchor(EffectTable[row].name)) {
      *error = Where(source->name, 1) + "the anchor must be " + EffectAnchor(EffectTable[row].name);
      return 0;
    }
    sections->push_back(std::move(section));
  }
  for (int32_t i = 0; i < count; ++i) {
    bool used = false;
    for (const auto& entry : order) used = used || entry.first == sources[i].name;
    if (!used) {
      *error = std::string("docs/manual/") + sources[i].name + ".txt belongs to no chapter";
      return 0;
    }
  }
  return 1;
}

std::vector<ControlRow> ControlRows(const PageTable& table) {
  std::vector<ControlRow> rows;
  std::string label;  // the caption of the last label, which names the unnamed checks after it
  std::string previous;
  for (int32_t i = 0; i < table.count; ++i) {
    const PageControl& c = table.controls[i];
    if (c.kind == kControlLabel) {
      label = CleanCaption(c.caption);
      continue;
    }
    ControlRow row;
    row.id = c.id;
    row.key = c.key ? c.key : "";
    if (!DescribeControl(c, &row)) continue;
    row.name = CleanCaption(c.caption);
    for (const auto& uncaptioned : kUncaptionedControls)
      if (row.name.empty() && c.key && std::strcmp(c.key, uncaptioned.key) == 0)
        row.name = uncaptioned.name;
    if (row.name.empty()) row.name = label + " " + LastKeyWord(c.key);
    // An "Enable" check enables the colour its key numbers (FillEnable3: "Color 3"), else the
    // control before it; a second "Opacity" is told apart by its key.
    const size_t keyLength = c.key ? std::strlen(c.key) : 0;
    if (row.name == "Enable" && keyLength &&
        std::isdigit(static_cast<unsigned char>(c.key[keyLength - 1])))
      row.name = std::string("Color ") + c.key[keyLength - 1] + " enable";
    else if (row.name == "Enable" && !previous.empty())
      row.name = previous + " enable";
    if (row.name == "Opacity" && c.key && std::strstr(c.key, "FillOpacity"))
      row.name = "Fill opacity";
    if (row.name == "Opacity" && c.key && std::strstr(c.key, "ShadowOpacity"))
      row.name = "Shadow opacity";
    if (c.kind != kControlCheckBox) previous = row.name;
    rows.push_back(row);
  }
  return rows;
}

std::string FormatManualHtml(const std::vector<ManualSection>& sections, const std::string& folder,
                             PictureExists exists, void* context, const PageTable* pages) {
  std::string out =
      "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>Glyph Motion #5: user's manual</title>\n<style>";
  out += kStyle;
  out +=
      "</style></head>\n<body>\n<h1>Glyph Motion #5</h1>\n"
      "<p class=\"lead\">The user's manual of the text-animation plug-in and of gm5, its "
      "command-line renderer.</p>\n";
  for (size_t i = 0; i < sections.size(); ++i) {
    HtmlSection(sections[i], folder, exists, context, pages, &out);
    if (i == 0) {
      // The contents follow the preface, so that the help topic opens on the preface itself.
      out += "<nav id=\"CONTENTS\"><h2>Contents</h2><ol>\n";
      for (const ManualSection& s : sections)
        out += "<li><a href=\"#" + s.anchor + "\">" + EscapeHtml(s.title) + "</a></li>\n";
      out += "</ol></nav>\n";
    }
  }
  out += "</body></html>\n";
  return out;
}

std::string FormatManualPage(const std::vector<ManualSection>& sections, const char* version,
                             const PageTable* pages) {
  std::string out = ".\\\" The man page of gm5, made from the manual's sources by the build.\n";
  out += ".TH GM5 1 \"\" \"gm5 " + EscapeMan(version) + "\" \"Glyph Motion 5\"\n";
  out += ".SH NAME\ngm5 \\- render text animations with the Glyph Motion 5 engine\n";
  auto blocks = [&](const ManualSection& s, int subheadingIsSection) {
    int inCode = 0;
    // As man sections, the chapter's lead (before its first subheading) is the NAME line's work.
    int seenSubheading = !subheadingIsSection;
    for (const ManualBlock& b : s.blocks) {
      seenSubheading = seenSubheading || b.kind == ManualSubheading;
      if (!seenSubheading) continue;
      if (b.kind != ManualCode && inCode) {
        out += ".EE\n.RE\n";
        inCode = 0;
      }
      switch (b.kind) {
        case ManualSubheading:
          if (subheadingIsSection) {
            std::string upper;
            for (char c : b.text)
              upper += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            out += ".SH " + Inline(upper, InlineMan) + "\n";
          } else {
            out += ".SS " + Inline(b.text, InlineMan) + "\n";
          }
          break;
        case ManualParagraph:
          out += ".PP\n" + TextLine(Inline(b.text, InlineMan)) + "\n";
          break;
        case ManualItem:
          out += ".IP \\(bu 2\n" + TextLine(Inline(b.text, InlineMan)) + "\n";
          break;
        case ManualCode:
          if (!inCode) out += ".PP\n.RS 4\n.EX\n";
          inCode = 1;
          out += (b.text.empty() || b.text[0] == '.' || b.text[0] == '\'' ? "\\&" : "") +
                 EscapeMan(b.text) + "\n";
          break;
        case ManualControls:
          out += ".PP\nControls of the page:\n";
          for (const ControlRow& r : ControlRows(TableOf(s, b, pages))) {
            out += ".TP\n\\fB" + EscapeMan(r.name) + "\\fR (id " + std::to_string(r.id) +
                   (r.key.empty() ? "" : ", \\fB" + EscapeMan(r.key) + "\\fR") + ")\n";
            out += TextLine(EscapeMan(r.takes) + "; default " + EscapeMan(r.value)) + ".\n";
          }
          break;
        case ManualPicture:
        case ManualEffectPictures:
          break;
      }
    }
    if (inCode) out += ".EE\n.RE\n";
  };
  for (const ManualSection& s : sections)
    if (s.anchor == "GM5") blocks(s, 1);
  out +=
      ".SH EFFECTS\n.PP\nEach effect's page, as \\fBgm5 controls\\fR \\fIEFFECT\\fR lists it; "
      "\\fBgm5 help\\fR \\fIEFFECT\\fR prints one of these sections.\n";
  for (const ManualSection& s : sections) {
    if (s.effectRow < 0) continue;
    out += ".SS " + EscapeMan(s.title) + "\n";
    blocks(s, 0);
  }
  out +=
      ".SH SEE ALSO\n.PP\n\\fBRFDPLGM5.HTML\\fR, the full manual with pictures, installed "
      "with this page.\n";
  return out;
}

std::string FormatManualText(const ManualSection& section, int32_t width, const PageTable* pages) {
  std::string out = section.title + "\n" + std::string(section.title.size(), '=') + "\n";
  ManualBlockKind last = ManualSubheading;
  for (const ManualBlock& b : section.blocks) {
    // A list or a run of preformatted lines stands apart from what goes before it.
    if ((b.kind == ManualItem || b.kind == ManualCode) && b.kind != last) out += "\n";
    last = b.kind;
    switch (b.kind) {
      case ManualSubheading: {
        std::string title = Inline(b.text, InlineText);
        out += "\n" + title + "\n" + std::string(title.size(), '-') + "\n";
        break;
      }
      case ManualParagraph:
        out += "\n";
        Wrap(Inline(b.text, InlineText), "", "", width, &out);
        break;
      case ManualItem:
        Wrap(Inline(b.text, InlineText), "  - ", "    ", width, &out);
        break;
      case ManualCode:
        out += "    " + b.text + "\n";
        break;
      case ManualControls:
        out += "\nControls:\n";
        TextControls(ControlRows(TableOf(section, b, pages)), width, &out);
        break;
      case ManualPicture:
      case ManualEffectPictures:
        break;
    }
  }
  return out;
}

const ManualSection* FindEffectSection(const std::vector<ManualSection>& sections,
                                       const std::string& name) {
  std::string wanted;
  for (char c : name)
    wanted +=
        c == ' ' || c == '-' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  for (const ManualSection& s : sections)
    if (s.effectRow >= 0 && s.anchor == wanted) return &s;
  return nullptr;
}
