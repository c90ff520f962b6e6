// The in-process host: HostService routed to the active session, with progress shown on the way.
#include "cli/inprocess_host.h"

#include "cli/animation_files.h"
#include "cli/picture_files.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "shell/packed_dib.h"

namespace {

InProcessHost* activeHost = nullptr;

uint64_t MachineMemory() {
  const long pages = sysconf(_SC_PHYS_PAGES), size = sysconf(_SC_PAGE_SIZE);
  return pages > 0 && size > 0 ? static_cast<uint64_t>(pages) * static_cast<uint64_t>(size)
                               : UINT64_MAX;
}

std::string InMegabytes(uint64_t bytes) {
  char text[32];
  snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / (1024.0 * 1024.0));
  return text;
}

int RefuseFile(InProcessHost* host, const FileObjectRecord* record) {
  return RefuseCanvas(host, record->width, record->height, record->bits, record->frameCount);
}

uint64_t ServeInProcess(void* object, int32_t opcode, uint64_t a, uint64_t b) {
  InProcessHost* host = activeHost;
  if (!host) return 0;
  if (opcode == HostOpCreateFile && b &&
      RefuseFile(host, reinterpret_cast<const FileObjectRecord*>(b)))
    return 0;
  // A path in the request is read here; an empty one goes to the session, which answers for the
  // user (gm5 has no one to ask).
  if (opcode == HostOpOpenAnimation && b) {
    const AnimationRequest* request = reinterpret_cast<const AnimationRequest*>(b);
    if (request->magic == kAnimationRequestMagic && request->path[0]) {
      const std::string path(request->path, strnlen(request->path, sizeof request->path));
      ComposedAnimation animation;
      if (!ReadAnimationFile(path.c_str(), &animation)) return 0;
      return reinterpret_cast<uint64_t>(MakeAnimationBlockOf(animation));
    }
  }
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
  host->session.readPicture = ReadPictureFile;
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

uint64_t EstimateFrameBytes(int32_t width, int32_t height, int32_t bits, int32_t frameCount) {
  if (width <= 0 || height <= 0) return 0;
  const uint64_t stride =
      (static_cast<uint64_t>(width) * static_cast<uint64_t>(bits) + 31) / 32 * 4;
  const uint64_t frame =
      kDibHeaderBytes + DibTableBytes(bits) + stride * static_cast<uint64_t>(height);
  const uint64_t canvas =
      uint64_t{4} * static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
  return frame * static_cast<uint64_t>(frameCount > 0 ? frameCount : 1) + canvas;
}

int RefuseCanvas(InProcessHost* host, int32_t width, int32_t height, int32_t bits,
                 int32_t frameCount) {
  if (width > host->largestSide || height > host->largestSide) {
    host->refusal = "the animation would be " + std::to_string(width) + "x" +
                    std::to_string(height) + ", larger than the output holds (" +
                    std::to_string(host->largestSide) + " pixels a side)";
    return 1;
  }
  const uint64_t limit = host->memoryLimit ? host->memoryLimit : MachineMemory();
  const uint64_t need = EstimateFrameBytes(width, height, bits, frameCount);
  if (need > limit) {
    host->refusal = "the animation would need about " + InMegabytes(need) + " for its " +
                    std::to_string(frameCount) + " frames of " + std::to_string(width) + "x" +
                    std::to_string(height) + ", more than the " + InMegabytes(limit) +
                    " of memory (use a smaller --size)";
    return 1;
  }
  return 0;
}
