// Drawing of the progress line: "\r", the caption padded to a column, a 30-cell bar, the count.
#include "cli/progress.h"

#include <unistd.h>

namespace {

constexpr int kBarCells = 30;

void Draw(ProgressBar* bar) {
  if (!bar->enabled) return;
  char cells[kBarCells + 1];
  int64_t filled = 0;
  if (bar->total > 0) {
    int64_t step = bar->step < 0 ? 0 : bar->step > bar->total ? bar->total : bar->step;
    filled = step * kBarCells / bar->total;
  }
  for (int i = 0; i < kBarCells; ++i) cells[i] = i < filled ? '#' : '.';
  cells[kBarCells] = 0;
  if (bar->total > 0)
    fprintf(bar->out, "\r%-16.16s [%s] %lld/%lld\x1b[K", bar->caption.c_str(), cells,
            static_cast<long long>(bar->step), static_cast<long long>(bar->total));
  else
    fprintf(bar->out, "\r%-16.16s\x1b[K", bar->caption.c_str());
  fflush(bar->out);
  bar->drawn = 1;
}

}  // namespace

void BeginProgress(ProgressBar* bar, FILE* out, int quiet) {
  bar->out = out;
  bar->enabled = out && !quiet && isatty(fileno(out));
  bar->drawn = 0;
}

void ProgressCaption(ProgressBar* bar, const char* caption) {
  bar->caption = caption ? caption : "";
  bar->step = bar->total = 0;
  Draw(bar);
}

void ProgressStep(ProgressBar* bar, int64_t step, int64_t total) {
  bar->step = step;
  bar->total = total;
  Draw(bar);
}

void EndProgress(ProgressBar* bar) {
  if (bar->enabled && bar->drawn) {
    fputc('\n', bar->out);
    fflush(bar->out);
  }
  bar->drawn = 0;
}
