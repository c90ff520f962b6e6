// gm5 render and gm5 preview: a run dialog from the settings, the document and the options, then
// the whole build against the in-process host and the writer chosen by the output's name, or the
// selected effect's sample picture as a PNG. Failures come back as one line; no output is left.
#pragma once

#include <string>

#include "cli/command_line.h"
#include "host/host_session.h"

// `gm5 render [DOCUMENT.gm5] -o OUT`. Returns 0 with a one-line `error` on failure. When `built`
// is given it receives a copy of the file the engine handed over, whatever the writer did.
int RenderAnimation(const CommandLine& line, std::string* error, HostFile* built = nullptr);
// `gm5 preview [DOCUMENT.gm5] -o SAMPLE.png`. Returns 0 with a one-line `error` on failure.
int RenderPreview(const CommandLine& line, std::string* error);
