#include "effects/item_colours.h"

#include "controls/value_controls.h"
#include "shell/crt_random.h"

int32_t ReadItemColours(WindowHandle dialog, int32_t firstId, int32_t enableId,
                        uint32_t colors[5]) {
  int translated;
  int32_t count = 0;
  for (int32_t i = 0; i < 5; ++i)
    if (i == 0 || DialogGetCheck(DialogItem(dialog, enableId + i - 1)))
      colors[count++] = GetDialogItemInt(dialog, firstId + 2 * i, &translated, 0);
  return count;
}

int32_t PickItemColour(int32_t count, int32_t* last) {
  int32_t index = 0;
  if (count >= 2) {
    // After 16 draws equal to the last, the equal one stands.
    for (int tries = 0; tries < 16; ++tries) {
      index = crt::rand() % count;
      if (index != *last) break;
    }
  }
  *last = index;
  return index;
}
