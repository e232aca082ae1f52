// SPDX-License-Identifier: MIT
// Console keys: the key table, _getch's codes for escape sequences, a pseudo-terminal.
#include <fskit/util.h>
#include <gtest/gtest.h>
#if !defined(_WIN32)
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#endif

#include <chrono>
#include <thread>

#include "platform/platform.h"
#include "tests/support/test_support.h"

TEST(KeyCode, TwoCodeKeysGiveTheirNamedCodesAndOtherBytesPassAsTheyAre) {
  // Second codes after 0 and 224, one per group of the key table; unnamed or outside ones: 0.
  const int keys[][3] = {
      {0, 59, FS_KEY_F1}, {0, 68, 290}, {0, 84, FS_KEY_F1}, {0, 113, 290}, {0, 72, FS_KEY_UP},
      {0, 75, FS_KEY_LEFT}, {0, 152, FS_KEY_UP}, {0, 163, FS_KEY_DELETE}, {224, 72, FS_KEY_UP},
      {224, 82, FS_KEY_INSERT}, {224, 81, FS_KEY_PAGE_DOWN}, {224, 133, FS_KEY_F11},
      {224, 140, FS_KEY_F12}, {224, 141, FS_KEY_UP}, {224, 147, FS_KEY_DELETE}, {224, 115, 0},
      {0, 58, 0}, {0, 17, 0}, {224, 255, 0}};
  std::string input;
  for (const auto &key : keys) input += {char(key[0]), char(key[1])};
  // A lone Escape and bytes that are no sequence pass on either platform.
  fskit::test::StdinFrom typed(input + "\x1bx\r\xe9\x1b");
  for (const auto &key : keys) EXPECT_EQ(getKeyCode(), key[2]) << key[0] << " " << key[1];
  for (int code : {27, int('x'), 13, 0xe9, 27, 4}) EXPECT_EQ(getKeyCode(), code);
}

TEST(KeyCode, GetchGivesTheConsoleCodesOfEscapeSequences) {
#if defined(_WIN32)
  GTEST_SKIP() << "the Windows console gives the two codes itself, without escape sequences";
#else
  struct Case { std::string input; std::vector<int> codes; };
  const Case cases[] = {
      {"\x1b[A\x1bOB\x1b[C\x1bOD", {224, 72, 224, 80, 224, 77, 224, 75}},
      {"\x1b[2~\x1b[3~\x1b[5~\x1b[6~", {224, 82, 224, 83, 224, 73, 224, 81}},
      {"\x1bOP\x1b[14~\x1b[15~\x1b[17~\x1b[21~", {0, 59, 0, 62, 0, 63, 0, 64, 0, 68}},
      {"\x1b[23~\x1b[24~", {224, 133, 224, 134}},
      // Modifiers: Shift, Ctrl, Alt, Ctrl+Alt (Alt wins), and on F keys.
      {"\x1b[1;2A\x1b[1;5A\x1b[1;3A\x1b[1;7A", {224, 72, 224, 141, 0, 152, 0, 152}},
      {"\x1b[1;2P\x1b[15;5~\x1b[21;3~\x1b[24;2~", {0, 84, 0, 98, 0, 113, 224, 136}},
      // Unknown sequences are consumed and give 27; so does a cut one.
      {"\x1b[H\x1b[99~\x1b[1;5;2A\x1b[", {27, 27, 27, 27}},
      {"", {4, 4}}};
  for (const Case &c : cases) {
    fskit::test::StdinFrom input(c.input);
    std::vector<int> codes;
    for (size_t i = 0; i < c.codes.size(); ++i) codes.push_back(fskit::platform::_getch());
    EXPECT_EQ(codes, c.codes) << c.input.substr(1);
    EXPECT_EQ(fskit::platform::_getch(), 4);
  }
#endif
}

TEST(KeyCode, ReadsKeysFromATerminalAndRestoresIt) {
#if defined(_WIN32)
  GTEST_SKIP() << "drives a pseudo-terminal (forkpty), which Windows does not have";
#else
  struct Key { const char *input; int32_t code; };
  // One key of each kind; the sequences themselves are the _getch test's.
  const Key keys[] = {{"a", 97},          {"\r", 13},          {"\x1b", 27},       {"\x1b[A", 274},
                      {"\x1bOB", 275},    {"\x1b[1;5D", 0},    {"\x1b[1;3C", 277}, {"\x1b[6;2~", 316},
                      {"\x1b[21;5~", 290}, {"\x1b[24;3~", 292}, {"\x1b[H", 27},     {"\x04", 4}};
  int results[2];
  ASSERT_EQ(pipe(results), 0);
  int master;
  pid_t child = forkpty(&master, nullptr, nullptr, nullptr);
  ASSERT_GE(child, 0);
  if (child == 0) {
    // Reports each code and whether the terminal was left as it was found.
    termios before, after;
    tcgetattr(STDIN_FILENO, &before);
    for (size_t i = 0; i < std::size(keys); ++i) {
      int32_t report[2] = {getKeyCode(), 0};
      tcgetattr(STDIN_FILENO, &after);
      report[1] = after.c_lflag == before.c_lflag && after.c_iflag == before.c_iflag;
      if (write(results[1], report, sizeof report) != sizeof report) _exit(1);
    }
    _exit(0);
  }
  close(results[1]);
  for (const Key &key : keys) {
    // A key is typed only once the child's terminal has left line mode.
    termios settings{};
    for (int wait = 0; wait < 5000 && (settings.c_lflag & ICANON || wait == 0); ++wait) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      tcgetattr(master, &settings);
    }
    ASSERT_FALSE(settings.c_lflag & ICANON) << "no key read for " << key.input + 1;
    ASSERT_EQ(write(master, key.input, strlen(key.input)), ssize_t(strlen(key.input)));
    pollfd ready = {results[0], POLLIN, 0};
    int32_t report[2] = {-1, 0};
    if (poll(&ready, 1, 5000) == 1 && read(results[0], report, sizeof report) != sizeof report)
      report[0] = -1;
    EXPECT_EQ(report[0], key.code) << key.input + 1;
    EXPECT_EQ(report[1], 1) << "terminal settings not restored after " << key.input + 1;
    if (report[0] == -1) break;
  }
  kill(child, SIGKILL);  // a no-op unless the child is stuck
  waitpid(child, nullptr, 0);
  close(master);
  close(results[0]);
#endif
}

TEST(KeyCode, ToolPrintsCodesUntilQ) {
  auto result = fskit::test::runTool({"key"}, "a\x1b[A\x1b[15~\rqz");
  EXPECT_EQ(result.status, 0);
#if defined(_WIN32)
  // Piped input is no console: its bytes arrive as they are.
  EXPECT_EQ(result.out, "97\n27\n91\n65\n27\n91\n49\n53\n126\n13\n");
#else
  EXPECT_EQ(result.out, "97\n274\n285\n13\n");
#endif
  EXPECT_EQ(fskit::test::runTool({"key"}, "x").out, "120\n");  // ends with the input
}
