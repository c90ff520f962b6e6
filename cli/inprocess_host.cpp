// The in-process host: HostService routed to the active session, with progress shown on the way.
#include "cli/inprocess_host.h"

#include <cstring>

namespace {

InProcessHost* activeHost = nullptr;

uint64_t ServeInProcess(void* object, int32_t opcode, uint64_t a, uint64_t b) {
  InProcessHost* host = activeHost;
  if (!host) return 0;
  uint64_t result = ServeHostCall(&host->session, object, opcode, a, b);
  if (host->progress && opcode == HostOpProgressCaption && b) {
    const char* text = reinterpret_cast<const char*>(b);
    ProgressCaption(host->progress, std::string(text, strnlen(text, 256)).c_str());
  } else if (host->progress && opcode == HostOpProgress) {
    ProgressStep(host->progress, static_cast<int64_t>(a), static_cast<int64_t>(b));
  }
  return result;
}

}  // namespace

void BeginInProcessHost(InProcessHost* host, int32_t trueColour, ProgressBar* progress) {
  host->record = HostRecord{};
  host->record.version = kInterfaceVersion;
  host->record.service = ServeInProcess;
  host->record.capabilities = trueColour ? kHostTrueColourOffered : kHostIndexed;
  host->progress = progress;
  host->trueColour = trueColour;
  activeHost = host;
}

void EndInProcessHost(InProcessHost* host) {
  if (activeHost == host) activeHost = nullptr;
}

const HostFile* InProcessResult(const InProcessHost* host) {
  const std::vector<std::unique_ptr<HostFile>>& files = host->session.files;
  for (auto file = files.rbegin(); file != files.rend(); ++file)
    if ((*file)->committed && !(*file)->test) return file->get();
  return nullptr;
}

int32_t InProcessDelayMilliseconds(const InProcessHost* host) {
  return host->trueColour ? 1 : 10;
}
