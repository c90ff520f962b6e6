// The manual: the built help document has every anchor the plug-in asks the host for and every
// effect's section, its pictures and links resolve, its control tables follow the page tables,
// the man page renders cleanly, and the reader refuses broken sources.
#include <sys/stat.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/run_gm5.h"

#include "cli/manual.h"
#include "documents/settings.h"
#include "shell/effect_table.h"
#include "shell/host_interface.h"

namespace {

std::string ReadWhole(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::string Folder(const std::string& path) {
  return path.substr(0, path.find_last_of('/'));
}

std::vector<ManualSection> Sections() {
  ResetSettings();
  std::vector<ManualSection> sections;
  std::string error;
  EXPECT_TRUE(ReadManual(kManualSources, kManualSourceCount, &sections, &error)) << error;
  return sections;
}

// The values of every `prefix"VALUE"` in `html`, in order: prefix `id="` gives the anchors.
std::vector<std::string> Values(const std::string& html, const std::string& prefix) {
  std::vector<std::string> values;
  for (size_t at = html.find(prefix); at != std::string::npos; at = html.find(prefix, at + 1)) {
    const size_t begin = at + prefix.size();
    values.push_back(html.substr(begin, html.find('"', begin) - begin));
  }
  return values;
}

int NoPictures(const std::string&, void*, int32_t*, int32_t*) {
  return 0;
}

TEST(Manual, BuiltDocumentHasEveryHelpTopicEffectAndResolvesItsPicturesAndLinks) {
  const std::string html = ReadWhole(GM5_MANUAL_HTML);
  ASSERT_FALSE(html.empty()) << GM5_MANUAL_HTML;
  std::set<std::string> ids;
  const std::vector<std::string> anchors = Values(html, " id=\"");
  for (const std::string& anchor : anchors)
    EXPECT_TRUE(ids.insert(anchor).second) << "anchor twice: " << anchor;
  ASSERT_GT(kHelpTopicCount, 0);
  for (int32_t i = 0; i < kHelpTopicCount; ++i)
    EXPECT_TRUE(ids.count(kHelpTopics[i])) << kHelpTopics[i];
  for (int32_t row = 0; row < kEffectCount; ++row)
    EXPECT_TRUE(ids.count(EffectAnchor(EffectTable[row].name))) << EffectTable[row].name;
  // The document opens on the preface: no anchor stands before it.
  ASSERT_FALSE(anchors.empty());
  EXPECT_EQ(anchors[0], "PREFACE");

  const std::vector<std::string> links = Values(html, "href=\"#");
  for (const std::string& link : links)
    EXPECT_TRUE(ids.count(link)) << "link to a missing anchor: " << link;
  EXPECT_GT(links.size(), static_cast<size_t>(kEffectCount));

  // Every picture the document shows is a file beside it; a missing one is only a caption.
  for (const std::string& source : Values(html, "<img src=\"")) {
    struct stat info;
    const std::string path = Folder(GM5_MANUAL_HTML) + "/" + source;
    EXPECT_TRUE(stat(path.c_str(), &info) == 0 && info.st_size > 0) << path;
  }
  EXPECT_EQ(html.find("<img src=\"http"), std::string::npos);
}

TEST(Manual, ControlTablesFollowThePageTablesSoAChangedDefaultChangesEveryForm) {
  ResetSettings();
  // Every control that holds a value has one row, under a name no other row of its page has.
  for (const PageTable& page : kPageTables) {
    std::vector<ControlRow> rows = ControlRows(page);
    std::set<std::string> names;
    std::set<int32_t> ids;
    for (const ControlRow& r : rows) {
      EXPECT_TRUE(names.insert(r.name).second) << "style " << page.style << ": " << r.name;
      EXPECT_FALSE(r.name.empty() || r.takes.empty() || r.value.empty()) << r.id;
      ids.insert(r.id);
    }
    for (int32_t i = 0; i < page.count; ++i) {
      const ControlKind kind = page.controls[i].kind;
      EXPECT_EQ(ids.count(page.controls[i].id) == 1, kind != kControlLabel && kind != kControlOther)
          << page.controls[i].id;
    }
  }

  // Snow's Density with another default, and Frames with another range: the manual follows.
  std::vector<PageControl> snow(kPageTables[2].controls,
                                kPageTables[2].controls + kPageTables[2].count);
  for (PageControl& c : snow) {
    if (c.id == 193) c.keyDefault = 77;
    if (c.id == 175) c.range = "2,500,64";
  }
  std::array<PageTable, 21> changed = kPageTables;
  changed[2] = {2, snow.data(), static_cast<int32_t>(snow.size())};

  const std::vector<ManualSection> sections = Sections();
  const ManualSection* section = FindEffectSection(sections, "snow");
  ASSERT_NE(section, nullptr);
  const std::string before = FormatManualText(*section, 78);
  const std::string after = FormatManualText(*section, 78, changed.data());
  EXPECT_NE(before.find("default 64 (id 193"), std::string::npos) << before;
  EXPECT_NE(after.find("default 77 (id 193"), std::string::npos) << after;
  EXPECT_NE(after.find("number, 2 to 500; default 64 (id 175"), std::string::npos) << after;
  EXPECT_EQ(FormatManualText(*FindEffectSection(sections, "ring"), 78, changed.data()),
            FormatManualText(*FindEffectSection(sections, "ring"), 78));

  const std::string html = FormatManualHtml(sections, "pictures", NoPictures, nullptr);
  const std::string changedHtml =
      FormatManualHtml(sections, "pictures", NoPictures, nullptr, changed.data());
  EXPECT_NE(html.find("<td>64</td><td>193</td>"), std::string::npos);
  EXPECT_NE(changedHtml.find("<td>77</td><td>193</td>"), std::string::npos);
  EXPECT_EQ(changedHtml.find("<td>64</td><td>193</td>"), std::string::npos);
  EXPECT_NE(FormatManualPage(sections, "1", changed.data()), FormatManualPage(sections, "1"));
}

TEST(Manual, ReaderNamesTheFileAndLineOfABrokenSource) {
  std::vector<ManualSource> sources(kManualSources, kManualSources + kManualSourceCount);
  std::vector<ManualSection> sections;
  std::string error;
  ASSERT_TRUE(ReadManual(sources.data(), kManualSourceCount, &sections, &error)) << error;
  ASSERT_EQ(sections.size(), static_cast<size_t>(kEffectCount) + 6);
  for (int32_t row = 0; row < kEffectCount; ++row) EXPECT_EQ(sections[2 + row].effectRow, row);

  struct Case {
    const char* name;
    const char* text;  // null: the source is left out
    const char* message;
  };
  const Case cases[] = {
      {"effects/snow", nullptr, "docs/manual/effects/snow.txt is missing"},
      {"effects/snow", "= Snow {SNOW}\n\nFlakes \xE2\x80\x94 falling.\n",
       "docs/manual/effects/snow.txt:3: only printable ASCII is allowed"},
      {"effects/snow", "= Snow {SNOW}\n@movie snow.gif\n",
       "docs/manual/effects/snow.txt:2: unknown directive"},
      {"effects/snow", "= Snow {FLAKES}\n",
       "docs/manual/effects/snow.txt:1: the anchor must be SNOW"},
      {"output", "= Output {OUTPUT}\n@controls\n",
       "docs/manual/output.txt:2: @controls outside an effect"},
      {"preface", "Welcome\n", "docs/manual/preface.txt:1: the first line must be"},
  };
  for (const Case& c : cases) {
    std::vector<ManualSource> broken;
    for (const ManualSource& s : sources)
      if (std::string(s.name) != c.name) broken.push_back(s);
    if (c.text) broken.push_back({c.name, c.text});
    EXPECT_FALSE(ReadManual(broken.data(), static_cast<int32_t>(broken.size()), &sections, &error));
    EXPECT_EQ(error.rfind(c.message, 0), 0u) << error;
  }
  sources.push_back({"effects/stripes", "= Stripes {STRIPES}\n"});
  EXPECT_FALSE(ReadManual(sources.data(), static_cast<int32_t>(sources.size()), &sections, &error));
  EXPECT_EQ(error, "docs/manual/effects/stripes.txt belongs to no chapter");
}

TEST(Manual, ManPageRendersWithoutWarningsAndHoldsEveryEffect) {
  const std::string page = ReadWhole(GM5_MANUAL_PAGE);
  ASSERT_FALSE(page.empty());
  for (int32_t row = 0; row < kEffectCount; ++row)
    EXPECT_NE(page.find(std::string("\n.SS ") + EffectTable[row].name + "\n"), std::string::npos)
        << EffectTable[row].name;
  // Text that would read as a roff request is guarded, in paragraphs, items and preformatted lines.
  std::vector<ManualSource> sources;
  for (int32_t i = 0; i < kManualSourceCount; ++i)
    if (std::string(kManualSources[i].name) != "gm5") sources.push_back(kManualSources[i]);
  sources.push_back(
      {"gm5", "= gm5 {GM5}\n\n== Files\n\n.gm5 documents\n\n- 'quoted' item\n\n    .x\n"});
  std::vector<ManualSection> sections;
  std::string error;
  ResetSettings();
  ASSERT_TRUE(ReadManual(sources.data(), static_cast<int32_t>(sources.size()), &sections, &error));
  const std::string guarded = FormatManualPage(sections, "1");
  EXPECT_NE(guarded.find("\n.SH FILES\n.PP\n\\&.gm5 documents\n"), std::string::npos);
  EXPECT_NE(guarded.find("\n\\&'quoted' item\n"), std::string::npos);
  EXPECT_NE(guarded.find("\n\\&.x\n"), std::string::npos);

  if (std::system("command -v groff >/dev/null 2>&1") != 0) GTEST_SKIP() << "no groff";
  FILE* pipe = popen(("groff -ww -man -z " GM5_MANUAL_PAGE " 2>&1"), "r");
  ASSERT_NE(pipe, nullptr);
  std::string warnings;
  char buffer[512];
  for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) warnings.append(buffer, n);
  EXPECT_EQ(pclose(pipe), 0);
  EXPECT_EQ(warnings, "");
}

TEST(Manual, Gm5HelpPrintsAnEffectsSectionAsText) {
  ProgramRun snow = RunGm5("help snow");
  EXPECT_EQ(snow.status, 0);
  EXPECT_EQ(snow.out.rfind("Snow\n====\n\nThe text stands still", 0), 0u) << snow.out;
  EXPECT_NE(snow.out.find("Density "), std::string::npos);
  EXPECT_NE(snow.out.find("Style002Density)"), std::string::npos);
  for (size_t at = 0, end; (end = snow.out.find('\n', at)) != std::string::npos; at = end + 1)
    EXPECT_LE(end - at, 78u) << snow.out.substr(at, end - at);

  ProgramRun fuse = RunGm5("help 'diagonal fuse'");
  EXPECT_EQ(fuse.status, 0);
  EXPECT_EQ(fuse.out.rfind("Diagonal Fuse\n", 0), 0u);

  ProgramRun list = RunGm5("help");
  EXPECT_EQ(list.status, 0);
  for (int32_t row = 0; row < kEffectCount; ++row)
    EXPECT_NE(list.out.find(std::string("  ") + EffectTable[row].name + "\n"), std::string::npos);

  ProgramRun unknown = RunGm5("help stripes");
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.out, "gm5: unknown effect: stripes (see gm5 effects)\n");
  EXPECT_EQ(RunGm5("help snow ring").out, "gm5: help takes at most one effect\n");
}

}  // namespace
