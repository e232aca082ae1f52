// Fixed lengths and fields: every byte written is checked against a sentinel.
#include <fskit/strings.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/strings/sentinel.h"

using fskit::test::Sentinel;
using namespace std::string_literals;

TEST(Fields, BoundedCopies) {
  struct Row {
    const char *src;
    int32_t n;
    std::string strncpyn, strncpyp;  // bytes written (pad '*')
  } rows[] = {
      {"abcdef", 4, "abc\0"s, "abcd"},   {"ab", 5, "ab\0\0\0"s, "ab***"},
      {"abcde", 5, "abcd\0"s, "abcde"}, {"ab", 1, "\0"s, "a"},
      {"", 3, "\0\0\0"s, "***"},         {"ab", 0, "", ""},
      {"ab", -1, "", ""},
  };
  for (const Row &row : rows) {
    Sentinel n, p;
    if (row.n >= 0) {
      EXPECT_EQ(strncpyn(n, row.src, uint32_t(row.n)), n.bytes);
    }
    EXPECT_EQ(strncpyp(p, row.src, row.n, '*'), p.bytes);
    EXPECT_EQ(n.written(), row.strncpyn) << row.src << " " << row.n;
    EXPECT_EQ(p.written(), row.strncpyp) << row.src << " " << row.n;
  }
}

TEST(Fields, StrncpybReadsFieldBack) {
  struct Row {
    std::string field;
    int32_t n;
    std::string written;
  } rows[] = {
      {"ab c  ", 6, "ab c\0"s},
      {"      ", 6, "\0"s},
      {"abcdef", 6, "abcdef"},             // last byte not blank: no NUL
      {"ab\0\0\0\0"s, 6, "ab\0"s},           // NUL counts as blank
      {"ab\0cd "s, 6, "ab\0"s},             // a NUL inside ends the copy
      {"ab\x01\x1f\xE4\x80"s, 6, "ab\0"s},  // controls and 0x80 up are blank
      {"ab!   ", 3, "ab!"},
      {"ab", 0, ""},
      {"ab", -2, ""},
  };
  for (const Row &row : rows) {
    Sentinel dst;
    EXPECT_EQ(strncpyb(dst, row.field.data(), row.n), dst.bytes);
    EXPECT_EQ(dst.written(), row.written) << row.field;
  }
}

TEST(Fields, PadAndCenter) {
  Sentinel s("ab");
  strnpad(s, 5, '*');
  EXPECT_EQ(s.written(), "ab***\0"s);
  Sentinel longer("abcdef");
  strnpad(longer, 5, '*');
  EXPECT_EQ(longer.written(), "abcdef\0"s);
  Sentinel exact("abcde");
  strnpad(exact, 5, '*');
  EXPECT_EQ(exact.written(), "abcde\0"s);

  struct Row {
    const char *src;
    uint32_t width;
    std::string written;
  } rows[] = {{"ab", 7, "  ab\0"s}, {"ab", 3, "ab\0"s}, {"ab", 2, "ab\0"s},
              {"ab", 0, "ab\0"s},   {"", 4, "  \0"s}};
  for (const Row &row : rows) {
    Sentinel dst;
    strcenter(dst, row.src, row.width);
    EXPECT_EQ(dst.written(), row.written) << row.src << " " << row.width;
  }
  Sentinel inPlace("ab");
  strcenter(inPlace, inPlace, 6);
  EXPECT_STREQ(inPlace.bytes, "  ab");
}

TEST(Fields, StrfcpyCleansField) {
  struct Row {
    std::string field;
    uint32_t dstSize;
    std::string written;
  } rows[] = {
      {"  ab   cd  ", 5, "ab c\0"s},
      {"NAME    ", 80, "NAME\0\0\0\0\0"s},  // srcLen + 1 bytes, no more
      {"ab\0 cd"s, 10, "ab\0\0\0\0\0"s},     // the field ends at its NUL
      {"  ", 1, "\0"s},
  };
  for (const Row &row : rows) {
    Sentinel dst;
    EXPECT_EQ(strfcpy(dst, row.dstSize, row.field.data(), uint32_t(row.field.size())), dst.bytes);
    EXPECT_EQ(dst.written(), row.written) << row.field;
  }
  Sentinel untouched;
  strfcpy(untouched, 0, "ab", 2);
  EXPECT_EQ(untouched.written(), "");
}
