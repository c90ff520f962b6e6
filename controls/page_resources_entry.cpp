// gm5_page_rc: writes the effect pages' resource script from the page tables, to the file named
// by its one argument or to standard output. Run by hand after a page table changes; a unit test
// compares the committed script with a fresh one.
#include <cstdio>
#include <string>

#include "controls/page_layout.h"

int main(int argc, char** argv) {
  std::string script;
  if (!FormatPageResources(&script)) {
    std::fprintf(stderr, "gm5_page_rc: a page does not fit its area\n");
    return 1;
  }
  std::FILE* file = argc > 1 ? std::fopen(argv[1], "wb") : stdout;
  if (!file) {
    std::fprintf(stderr, "gm5_page_rc: cannot write %s\n", argv[1]);
    return 1;
  }
  const bool written = std::fwrite(script.data(), 1, script.size(), file) == script.size();
  if (file != stdout && std::fclose(file) != 0) return 1;
  return written ? 0 : 1;
}
