// Texture group text: the reader never reads past the input, always returns, and whatever it
// accepts the writer writes out and the reader reads back to the same names and recipes.
#include <stdio.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "materials/texture_file.h"
#include "materials/texture_item.h"

namespace {

int SameRecipes(const TextureList& a, const TextureList& b) {
  if (a.entries.size() != b.entries.size()) return 0;
  for (size_t i = 0; i < a.entries.size(); ++i) {
    if (std::strcmp(a.entries[i].name, b.entries[i].name) != 0) return 0;
    ScopedLock la(a.entries[i].item), lb(b.entries[i].item);
    if (!la || !lb) return 0;
    const TextureItem* x = reinterpret_cast<const TextureItem*>(la.bytes);
    const TextureItem* y = reinterpret_cast<const TextureItem*>(lb.bytes);
    // Integers survive exactly; floats to the writer's six decimals, so only these are compared.
    if (x->TextureType != y->TextureType || x->MatrixSize != y->MatrixSize ||
        std::memcmp(x->SeedValue, y->SeedValue, sizeof x->SeedValue) != 0 ||
        std::memcmp(x->ForeColour, y->ForeColour, sizeof x->ForeColour) != 0 ||
        x->BubbleShape != y->BubbleShape)
      return 0;
  }
  return 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FILE* file = fmemopen(const_cast<uint8_t*>(data), size, "r");
  if (!file) return 0;
  TextureList list;
  ReadTextureFrom(file, &list);
  fclose(file);
  // Names with a line break, a leading "=" or blank or a trailing blank can't survive a
  // line-based file, and an empty one is written as "UNKNOWN NAME", which sorts elsewhere.
  int plain = 1;
  for (const TextureEntry& e : list.entries) {
    const size_t n = std::strlen(e.name);
    if (n == 0 || e.name[0] == '=') plain = 0;
    for (size_t i = 0; i < n; ++i)
      if (static_cast<unsigned char>(e.name[i]) < 33 && (i == 0 || i + 1 == n || e.name[i] == '\n'))
        plain = 0;
  }
  if (!list.entries.empty() && plain) {
    char* text = nullptr;
    size_t length = 0;
    FILE* out = open_memstream(&text, &length);
    if (!out) abort();
    if (!WriteTextureTo(out, &list, 0, nullptr)) abort();
    fclose(out);
    FILE* in = fmemopen(text, length, "r");
    TextureList back;
    if (!in || !ReadTextureFrom(in, &back) || !SameRecipes(list, back)) abort();
    fclose(in);
    free(text);
    ClearTextureList(&back);
  }
  ClearTextureList(&list);
  return 0;
}
