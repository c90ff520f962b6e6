// The C runtime's 15-bit linear congruential generator, as our own code on every platform: the
// look of most effects and of the textures depends on its exact sequence and on the order of calls.
// One process-wide state, like the runtime's; everything runs on one thread.
#pragma once

#include <cstdint>

namespace crt {

constexpr int kRandMax = 0x7FFF;
// The state a freshly started runtime has. Each use of the plug-in and each gm5 command starts the
// generator here, so that an effect that never seeds it draws the same numbers in both.
constexpr uint32_t kStartSeed = 1;

// Sets the state to `seed`.
void srand(uint32_t seed);
// Advances the state (state * 214013 + 2531011 mod 2^32) and returns its bits 16 to 30.
int rand();

// The state as it stands, and how many times srand has been called in this process: what a cache
// of generated pictures needs to leave the generator as making the picture again would.
uint32_t state();
uint32_t seedings();

}  // namespace crt
