// SPDX-License-Identifier: MIT
// _getch on Windows: the console's own key read, which already delivers the
// two codes of the extended keys, when standard input is the console. Input
// that is piped or redirected from a file gives its bytes one by one, as the
// POSIX side does with input that is not a terminal, and 4 at its end.
#include <conio.h>
#include <io.h>
#include <windows.h>

#include "platform/platform.h"

namespace fskit::platform {

int _getch() {
  constexpr int kEndOfInput = 4;  // what Ctrl+D gives
  auto input = reinterpret_cast<HANDLE>(::_get_osfhandle(0));
  if (input == INVALID_HANDLE_VALUE) return kEndOfInput;
  DWORD mode;
  if (GetConsoleMode(input, &mode)) return ::_getch();
  // Read past the C runtime so that its text mode changes no byte.
  unsigned char byte;
  DWORD got = 0;
  if (!ReadFile(input, &byte, 1, &got, nullptr) || got != 1) return kEndOfInput;
  return byte;
}

}  // namespace fskit::platform
