// The process-wide state of the C runtime generator, as a freshly started runtime has it.
#include "shell/crt_random.h"

namespace {
uint32_t randomState = crt::kStartSeed;
uint32_t seedCount = 0;
}  // namespace

namespace crt {

void srand(uint32_t seed) {
  randomState = seed;
  ++seedCount;
}

int rand() {
  randomState = randomState * 214013u + 2531011u;
  return static_cast<int>((randomState >> 16) & 0x7FFF);
}

uint32_t state() {
  return randomState;
}

uint32_t seedings() {
  return seedCount;
}

}  // namespace crt
