// The process-wide state of the C runtime generator. The runtime starts as if seeded with 1.
#include "shell/crt_random.h"

namespace {
uint32_t randomState = 1;
}

namespace crt {

void srand(uint32_t seed) {
  randomState = seed;
}

int rand() {
  randomState = randomState * 214013u + 2531011u;
  return static_cast<int>((randomState >> 16) & 0x7FFF);
}

}  // namespace crt
