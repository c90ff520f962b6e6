#include "effects/item_choice.h"

#include "controls/value_controls.h"
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

int32_t ReadItemColours(WindowHandle dialog, int32_t firstId, int32_t enableId,
                        uint32_t colors[5]) {
  int translated;
  uint32_t colours[5];
  int32_t enabled[5] = {1, 0, 0, 0, 0};
  for (int32_t i = 0; i < 5; ++i) {
    colours[i] = GetDialogItemInt(dialog, firstId + 2 * i, &translated, 0);
    if (i) enabled[i] = DialogGetCheck(DialogItem(dialog, enableId + i - 1));
  }
  return CollectItemColours(colours, enabled, colors);
}
