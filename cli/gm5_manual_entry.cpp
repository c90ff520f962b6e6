// gm5_manual: writes the help document and the man page from the manual built into the program.
//   gm5_manual --html DIR/RFDPLGM5.HTML --pictures FOLDER   pictures taken from DIR/FOLDER
//   gm5_manual --man DIR/gm5.1
// The build runs it; each file is written whole to a temporary name and renamed into place.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "cli/manual.h"
#include "documents/settings.h"

namespace {

int Fail(const std::string& message) {
  std::fprintf(stderr, "gm5_manual: %s\n", message.c_str());
  return 1;
}

int WriteWhole(const std::string& path, const std::string& text) {
  const std::string temporary = path + ".tmp";
  std::FILE* file = std::fopen(temporary.c_str(), "wb");
  if (!file) return 0;
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (std::fclose(file) != 0 || !written || std::rename(temporary.c_str(), path.c_str()) != 0) {
    std::remove(temporary.c_str());
    return 0;
  }
  return 1;
}

// A picture is shown when its file is there and not empty. Its size comes from its header: a
// PNG's IHDR (big-endian, bytes 16 to 23) or a GIF's logical screen (little-endian, bytes 6 to 9).
int PictureInFolder(const std::string& file, void* context, int32_t* width, int32_t* height) {
  const std::string path = *static_cast<const std::string*>(context) + "/" + file;
  std::FILE* picture = std::fopen(path.c_str(), "rb");
  if (!picture) return 0;
  unsigned char head[24] = {};
  const size_t got = std::fread(head, 1, sizeof head, picture);
  std::fclose(picture);
  if (got == 0) return 0;
  *width = *height = 0;
  if (got == sizeof head && std::memcmp(head, "\x89PNG", 4) == 0) {
    *width = (head[16] << 24) | (head[17] << 16) | (head[18] << 8) | head[19];
    *height = (head[20] << 24) | (head[21] << 16) | (head[22] << 8) | head[23];
  } else if (got >= 10 && std::memcmp(head, "GIF", 3) == 0) {
    *width = head[6] | (head[7] << 8);
    *height = head[8] | (head[9] << 8);
  }
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  std::string html, man, pictures = "RFDPLGM5_files";
  for (int i = 1; i + 1 < argc; i += 2) {
    if (std::strcmp(argv[i], "--html") == 0)
      html = argv[i + 1];
    else if (std::strcmp(argv[i], "--man") == 0)
      man = argv[i + 1];
    else if (std::strcmp(argv[i], "--pictures") == 0)
      pictures = argv[i + 1];
    else
      return Fail(std::string("unknown option: ") + argv[i]);
  }
  if ((argc - 1) % 2 != 0 || (html.empty() && man.empty()))
    return Fail("usage: gm5_manual [--html OUT.HTML [--pictures FOLDER]] [--man OUT.1]");
  // The defaults the tables show for text settings are those of a fresh settings table.
  ResetSettings();
  std::vector<ManualSection> sections;
  std::string error;
  if (!ReadManual(kManualSources, kManualSourceCount, &sections, &error)) return Fail(error);
  if (!html.empty()) {
    const size_t slash = html.find_last_of('/');
    std::string folder =
        (slash == std::string::npos ? std::string(".") : html.substr(0, slash)) + "/" + pictures;
    if (!WriteWhole(html, FormatManualHtml(sections, pictures, PictureInFolder, &folder)))
      return Fail("cannot write " + html);
  }
  if (!man.empty() && !WriteWhole(man, FormatManualPage(sections, GM5_VERSION)))
    return Fail("cannot write " + man);
  return 0;
}
