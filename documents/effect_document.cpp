// Saving and loading effect documents through the controls' own line messages.
#include "documents/effect_document.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "controls/value_controls.h"
#include "documents/settings.h"
#include "shell/messages.h"

namespace {

constexpr char kProduct[] = "Glyph Motion 5 Plugin";
constexpr char kMaker[] = "Cobalt Lanternary";

void ShowModal(WindowHandle window, const char* text) {
  ShowMessage(window, text);
}

DocumentMessageShower g_shower = ShowModal;

void Show(WindowHandle window, const char* text) {
  if (g_shower) g_shower(window, text);
}

int WriteChildLine(WindowHandle child, void* file) {
  DialogWriteLine(child, file);
  return 1;
}

// Skips leading control characters and blanks, drops comments, and cuts at the line end.
// Returns the line to hand on, or null.
char* PrepareLine(char* line) {
  while (*line && static_cast<unsigned char>(*line) < 33) ++line;
  if (*line == ';' || *line == 0) return nullptr;
  if (char* feed = std::strchr(line, '\n')) *feed = 0;
  if (char* ret = std::strchr(line, '\r')) *ret = 0;
  return line;
}

}  // namespace

void SetDocumentMessageShower(DocumentMessageShower shower) {
  g_shower = shower ? shower : ShowModal;
}

int SaveDocument(WindowHandle dialog, const char* path) {
  if (path) BackUpFile(path);
  std::FILE* file = path ? std::fopen(path, "wt") : nullptr;
  if (!file) {
    Show(dialog, kDocumentCreateError);
    return 0;
  }
  SaveDocumentTo(dialog, file);
  std::fclose(file);
  return 1;
}

int SaveDocumentTo(WindowHandle dialog, void* stream) {
  std::FILE* file = static_cast<std::FILE*>(stream);
  if (!file) return 0;
  std::fprintf(file, ";This is a document created by %s by %s - do not edit.\n", kProduct, kMaker);
  std::fputs(";Start of document\n", file);
  DialogEnumChildren(dialog, WriteChildLine, file);
  std::fputs(";End of document\n", file);
  return !std::ferror(file);
}

int LoadDocumentFrom(WindowHandle dialog, void* stream) {
  std::FILE* file = static_cast<std::FILE*>(stream);
  if (!file) return 0;
  std::vector<char> buffer(kDocumentLineLimit);
  // An empty file passes; a first line must carry both marks.
  if (std::fgets(buffer.data(), static_cast<int>(buffer.size()), file) &&
      (!std::strstr(buffer.data(), kProduct) || !std::strstr(buffer.data(), kMaker)))
    return 0;
  while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), file)) {
    char* line = PrepareLine(buffer.data());
    if (!line || std::strlen(line) < 6) continue;
    const int32_t id = ParseAtoi(line + 6);
    if (id < 1) continue;
    if (WindowHandle control = DialogItem(dialog, id)) DialogReadLine(control, line);
  }
  return 1;
}

void LoadDocument(WindowHandle dialog, const char* path) {
  std::FILE* file = path ? std::fopen(path, "rt") : nullptr;
  if (!file) {
    Show(dialog, kDocumentOpenError);
    return;
  }
  const int read = LoadDocumentFrom(dialog, file);
  std::fclose(file);
  if (!read) {
    Show(dialog, kDocumentDamaged);
    return;
  }
  DialogPostMessage(dialog, kMessageAfterLoad);
}
