// The progress bar on stderr: the pipeline's caption and a bar of its steps, redrawn in place on
// one line. It draws only when enabled (stderr is a terminal and --quiet was not given).
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

struct ProgressBar {
  FILE* out = nullptr;  // not owned
  int enabled = 0;
  int drawn = 0;  // a line is on screen and needs ending
  std::string caption;
  int64_t step = 0, total = 0;
};

// Enabled for `out` when it is a terminal and not `quiet`.
void BeginProgress(ProgressBar* bar, FILE* out, int quiet);
// A new caption ("Building", "Quantizing", ...): the bar restarts empty.
void ProgressCaption(ProgressBar* bar, const char* caption);
// Step `step` of `total`; a total of 0 or less shows the caption alone.
void ProgressStep(ProgressBar* bar, int64_t step, int64_t total);
// Ends the line, so that messages that follow start on their own.
void EndProgress(ProgressBar* bar);
