// SPDX-License-Identifier: MIT
// _getch: one key from standard input, unbuffered and without echo, in the
// codes of the original console. Keys that a terminal sends as escape
// sequences come back as two codes, a prefix (0 or 224) and the key's code;
// the second is kept for the next call.
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "platform/ascii.h"
#include "platform/platform.h"

namespace fskit::platform {
namespace {

constexpr int kEscape = 27;
constexpr int kEndOfInput = 4;  // what Ctrl+D gives
// An Escape press with nothing behind it within this time is the key itself.
constexpr int kSequenceWaitMs = 50;

struct ConsoleState {
  int pending = -1;  // the code the next call delivers, if any
};
constinit ConsoleState console;

// The console's two codes for a key, plain and with Shift, Ctrl and Alt held.
struct KeyCodes {
  uint8_t prefix[4];
  uint8_t code[4];
};
enum Key { kUp, kDown, kRight, kLeft, kInsert, kDelete, kPageUp, kPageDown, kF1 };
constexpr KeyCodes kCursorKeys[] = {
    {{224, 224, 224, 0}, {72, 72, 141, 152}},    // up
    {{224, 224, 224, 0}, {80, 80, 145, 160}},    // down
    {{224, 224, 224, 0}, {77, 77, 116, 157}},    // right
    {{224, 224, 224, 0}, {75, 75, 115, 155}},    // left
    {{224, 224, 224, 0}, {82, 82, 146, 162}},    // insert
    {{224, 224, 224, 0}, {83, 83, 147, 163}},    // delete
    {{224, 224, 224, 0}, {73, 73, 134, 153}},    // page up
    {{224, 224, 224, 0}, {81, 81, 118, 161}}};  // page down

// F1 to F12 (index 0 to 11) under modifier column 0 plain, 1 Shift, 2 Ctrl, 3 Alt.
void functionKeyCodes(int index, int column, int &prefix, int &code) {
  if (index < 10) {
    static constexpr int kFirst[4] = {59, 84, 94, 104};
    prefix = 0;
    code = kFirst[column] + index;
  } else {
    prefix = 224;
    code = 133 + 2 * column + (index - 10);
  }
}

// Reads one byte; -1 at end of input or on an error.
int readByte() {
  unsigned char byte;
  for (;;) {
    ssize_t got = ::read(STDIN_FILENO, &byte, 1);
    if (got == 1) return byte;
    if (got < 0 && errno == EINTR) continue;
    return -1;
  }
}

// The next byte of an escape sequence, or -1 when none follows in time.
int readSequenceByte() {
  pollfd input = {STDIN_FILENO, POLLIN, 0};
  int ready;
  do ready = ::poll(&input, 1, kSequenceWaitMs);
  while (ready < 0 && errno == EINTR);
  return ready > 0 ? readByte() : -1;
}

// Modifier column of a terminal's modifier parameter (1 + Shift 1, Alt 2,
// Ctrl 4, Meta 8): Alt wins over Ctrl, Ctrl over Shift, as on the console.
int modifierColumn(int parameter) {
  int held = parameter - 1;
  if (held & (2 | 8)) return 3;
  if (held & 4) return 2;
  if (held & 1) return 1;
  return 0;
}

// A key of the "ESC [ number ~" form; -1 for a number that names none.
int tildeKey(int number) {
  switch (number) {
    case 2: return kInsert;
    case 3: return kDelete;
    case 5: return kPageUp;
    case 6: return kPageDown;
    case 11: case 12: case 13: case 14: case 15: return kF1 + number - 11;
    case 17: case 18: case 19: case 20: case 21: return kF1 + number - 12;
    case 23: case 24: return kF1 + number - 13;
    default: return -1;
  }
}

// A key named by the final letter of "ESC [ A" or "ESC O P"; -1 for none.
int letterKey(int letter) {
  switch (letter) {
    case 'A': return kUp;
    case 'B': return kDown;
    case 'C': return kRight;
    case 'D': return kLeft;
    case 'P': case 'Q': case 'R': case 'S': return kF1 + letter - 'P';
    default: return -1;
  }
}

// The numbers of a sequence's parameter text ("15;2"): at most two, 1 where
// the second is left out. False for anything else.
bool parseParameters(const char *text, int length, int (&numbers)[2]) {
  numbers[0] = 0;
  numbers[1] = 1;
  int index = 0;
  for (int i = 0; i < length; ++i) {
    if (text[i] == ';') {
      if (++index > 1) return false;
      numbers[1] = 0;
    } else if (ascii::isDigit(text[i]) && numbers[index] < 1000) {
      numbers[index] = numbers[index] * 10 + (text[i] - '0');
    } else {
      return false;
    }
  }
  return true;
}

// Reads the rest of a sequence after ESC and queues the key's second code.
// Returns the first code to deliver: 27 for a lone Escape and for a sequence
// that names no key, which is consumed all the same.
int readEscapeSequence() {
  int introducer = readSequenceByte();
  if (introducer < 0) return kEscape;
  if (introducer != '[' && introducer != 'O') {
    // Not a sequence (Alt with a key sends ESC and the key): both count.
    console.pending = introducer;
    return kEscape;
  }
  char parameters[16];
  int length = 0, final = -1;
  bool valid = true;
  for (int consumed = 0; consumed < 32; ++consumed) {
    int byte = readSequenceByte();
    if (byte < 0x20 || byte > 0x7e) break;  // cut short
    if (byte >= 0x40) {
      final = byte;
      break;
    }
    if (length == int(sizeof parameters)) valid = false;
    else parameters[length++] = char(byte);
  }
  int numbers[2];
  if (!valid || final < 0 || !parseParameters(parameters, length, numbers)) return kEscape;
  int key = final == '~' ? tildeKey(numbers[0]) : letterKey(final);
  int modifier = numbers[1];
  if (key < 0 || modifier < 1 || modifier > 16) return kEscape;
  int column = modifierColumn(modifier);
  int prefix, code;
  if (key >= kF1) {
    functionKeyCodes(key - kF1, column, prefix, code);
  } else {
    prefix = kCursorKeys[key].prefix[column];
    code = kCursorKeys[key].code[column];
  }
  console.pending = code;
  return prefix;
}

int readKey() {
  int byte = readByte();
  if (byte < 0) return kEndOfInput;
  return byte == kEscape ? readEscapeSequence() : byte;
}

// Raw mode for the length of one key: no line buffering, no echo, no signals,
// and Enter kept as carriage return.
class RawMode {
 public:
  RawMode() : active_(::tcgetattr(STDIN_FILENO, &saved_) == 0) {
    if (!active_) return;
    termios raw = saved_;
    raw.c_lflag &= ~tcflag_t(ICANON | ECHO | ISIG | IEXTEN);
    raw.c_iflag &= ~tcflag_t(ICRNL | INLCR | IGNCR | IXON);
    raw.c_cc[VMIN] = 1;
    raw.c_cc[VTIME] = 0;
    ::tcsetattr(STDIN_FILENO, TCSANOW, &raw);
  }
  ~RawMode() {
    if (active_) ::tcsetattr(STDIN_FILENO, TCSANOW, &saved_);
  }
  RawMode(const RawMode &) = delete;
  RawMode &operator=(const RawMode &) = delete;

 private:
  termios saved_{};
  bool active_;
};

}  // namespace

int _getch() {
  if (console.pending >= 0) {
    int code = console.pending;
    console.pending = -1;
    return code;
  }
  RawMode raw;
  return readKey();
}

}  // namespace fskit::platform
