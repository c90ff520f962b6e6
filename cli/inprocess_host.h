// The host that gm5 is to the engine: a HostRecord whose service is served by a host session in
// this process, acting as an indexed host (delays in hundredths of a second) or a true-colour one
// (milliseconds), and showing the pipeline's captions and steps on a progress bar.
// One host is active at a time: HostService carries no context of its own.
#pragma once

#include <cstdint>

#include "cli/progress.h"
#include "host/host_session.h"
#include "shell/host_interface.h"

struct InProcessHost {
  HostRecord record{};
  HostSession session;
  ProgressBar* progress = nullptr;  // not owned; may be null
  int32_t trueColour = 0;
};

// Makes `host` the active one, indexed unless `trueColour`. `progress` may be null.
void BeginInProcessHost(InProcessHost* host, int32_t trueColour, ProgressBar* progress);
// Stops serving calls: the record's service refuses everything from now on.
void EndInProcessHost(InProcessHost* host);
// The file the engine handed over and committed last (test files aside), or null.
const HostFile* InProcessResult(const InProcessHost* host);
// Milliseconds in one unit of a frame's delay for this host.
int32_t InProcessDelayMilliseconds(const InProcessHost* host);
