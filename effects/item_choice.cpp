#include "effects/item_choice.h"

#include "shell/crt_random.h"

int32_t CollectItemColours(const uint32_t colours[5], const int32_t enabled[5], uint32_t out[5]) {
  out[0] = colours[0];
  int32_t count = 1;
  for (int i = 1; i < 5; ++i)
    if (enabled[i]) out[count++] = colours[i];
  return count;
}

int32_t DrawItemIndex(int32_t count, int32_t* last) {
  int32_t index = 0;
  if (count >= 2) {
    for (int tries = 0; tries < 16; ++tries) {
      index = crt::rand() % count;
      if (index != *last) break;
    }
  }
  *last = index;
  return index;
}
