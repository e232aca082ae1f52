// SPDX-License-Identifier: MIT
// getKeyCode(): one key press as one number. The console delivers function,
// cursor and editing keys as a prefix (0 or 224) and a second code; the
// extended-key table turns that code into the key's named code.
#include <initializer_list>

#include <fskit/util.h>

#include "platform/platform.h"
#include "util/util_state.h"

namespace {

using fskit::util::kExtendedKeys;

constexpr uint16_t kUp = 274, kDown = 275, kLeft = 276, kRight = 277;
constexpr uint16_t kF1 = 281, kF11 = 291, kF12 = 292;
constexpr uint16_t kInsert = 312, kDelete = 313, kPageUp = 315, kPageDown = 316;

// The layout puts the second code c at entry c - 58 after the prefix 0 and at
// entry c + 39 after the prefix 224: F1 to F10 (59 to 68) at 1 to 10, their
// Shift, Ctrl and Alt forms at 26 to 55, the Alt cursor keys (152 to 163) at
// 94 to 105, the grey cursor keys (72 to 83) at 111 to 122, and F11 and F12
// with their variants (133 to 140) at 172 to 179.
void fillExtendedKeys(uint16_t (&table)[kExtendedKeys]) {
  auto run = [&table](int first, int count, uint16_t code) {
    for (int i = 0; i < count; ++i) table[first + i] = uint16_t(code + i);
  };
  auto put = [&table](std::initializer_list<int> entries, std::initializer_list<uint16_t> codes) {
    const uint16_t *code = codes.begin();
    for (int entry : entries) table[entry] = *code++;
  };
  run(1, 10, kF1);
  put({14, 15, 17, 19, 22, 23}, {kUp, kPageUp, kLeft, kRight, kDown, kPageDown});
  run(26, 10, kF1);
  run(36, 10, kF1);
  run(46, 10, kF1);
  put({57, 58}, {kLeft, kRight});
  put({83, 87}, {kUp, kDown});
  for (int first : {94, 111})
    put({first, first + 1, first + 3, first + 5, first + 8, first + 9, first + 10, first + 11},
        {kUp, kPageUp, kLeft, kRight, kDown, kPageDown, kInsert, kDelete});
  for (int entry = 172; entry < 180; entry += 2) put({entry, entry + 1}, {kF11, kF12});
  put({180, 184, 185, 186}, {kUp, kDown, kInsert, kDelete});
  table[0] = 1;  // filled
}

}  // namespace

extern "C" {

FSKIT_API int32_t getKeyCode(...) {
  fskit::util::UtilState &state = fskit::util::utilState();
  uint16_t (&table)[kExtendedKeys] = state.extendedKeys;
  std::call_once(state.extendedKeysFilled, [&table] { fillExtendedKeys(table); });
  std::lock_guard<fskit::platform::Mutex> turn(state.keyboard);
  int code = fskit::platform::_getch();
  if (code != 0 && code != 224) return code;
  int second = fskit::platform::_getch();
  int entry = code == 0 ? second - 58 : second + 39;
  return entry > 0 && entry < kExtendedKeys ? table[entry] : 0;
}

}  // extern "C"
