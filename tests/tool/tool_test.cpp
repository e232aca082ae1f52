// SPDX-License-Identifier: MIT
// The tool's help, version and usage errors; an isotope pattern's picture (tools/pattern_svg.h):
// well formed, uncluttered, locale-free; the file it goes to (tools/write_file.h), only whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <locale>
#include <regex>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>
#if !defined(_WIN32)
#include <sys/resource.h>

#include <csignal>
#endif

#include "tests/support/test_support.h"
#include "tools/pattern_svg.h"
#include "tools/write_file.h"

namespace {

using fskit::test::readFile;
using fskit::test::runTool;
using fskit::test::TempDir;
using fskit::tool::PatternPicture;
using fskit::tool::patternSvg;
using fskit::tool::writeWholeFile;

TEST(Tool, VersionPlatformAndUsageErrors) {
  const std::tuple<std::vector<std::string>, int, std::string, std::string> cases[] = {
      {{"version"}, 0, "fskit " FSKIT_PROJECT_VERSION "\n", ""},
      {{"--version"}, 0, "fskit " FSKIT_PROJECT_VERSION "\n", ""},
      {{"platform"}, 0, "property\tvalue\nos\twinnt\nbyte order\tlittle\nfloat format\tieee\n", ""},
      {{"platform", "--json"}, 0,
       "{\"property\":\"os\",\"value\":\"winnt\"}\n{\"property\":\"byte order\",\"value\":"
       "\"little\"}\n{\"property\":\"float format\",\"value\":\"ieee\"}\n", ""},
      {{}, 2, "", "fskit: no command given (try 'fskit --help')\n"},
      {{"no-such-command"}, 2, "",
       "fskit: unknown command 'no-such-command' (try 'fskit --help')\n"},
      {{"version", "x"}, 2, "", "fskit version: takes no arguments\n"},
  };
  for (const auto &[args, status, out, err] : cases) {
    auto result = runTool(args);
    EXPECT_EQ(result.status, status) << out << err;
    EXPECT_EQ(result.out, out);
    EXPECT_EQ(result.err, err);
  }
}

// Every listed command has a usage line and an example, and refuses an unknown option in one line.
TEST(Tool, EveryCommandHasHelpAndRefusesUnknownOptions) {
  auto listing = runTool({"--help"});
  EXPECT_EQ(listing.status, 0);
  const std::string &overview = listing.out;
  std::vector<std::string> names;
  for (size_t at = overview.find("\n  ", overview.find("commands:")); at != std::string::npos;
       at = overview.find("\n  ", at + 1)) {
    size_t end = overview.find(' ', at + 3);
    names.push_back(overview.substr(at + 3, end - at - 3));
    EXPECT_NE(overview.find_first_not_of(' ', end), overview.find('\n', end))
        << names.back() << " has no summary";
  }
  ASSERT_GE(names.size(), 9u);
  for (const std::string &name : names) {
    auto help = runTool({name, "--help"});
    EXPECT_EQ(help.status, 0) << name;
    EXPECT_EQ(help.out.rfind("usage: fskit " + name, 0), 0u) << help.out;
    EXPECT_NE(help.out.find("\nexample: fskit " + name), std::string::npos) << help.out;
    auto bad = runTool({name, "--no-such-option"});
    EXPECT_EQ(bad.status, 2) << name;
    EXPECT_EQ(bad.out, "") << name;
    EXPECT_EQ(bad.err.rfind("fskit " + name + ": ", 0), 0u) << bad.err;
    EXPECT_EQ(bad.err.find('\n'), bad.err.size() - 1) << bad.err;
  }
}

// A number as the document must write it: the whole text, a point for the decimal separator.
double number(const std::string &text) {
  double value = NAN;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  EXPECT_TRUE(error == std::errc() && end == text.data() + text.size()) << "not a number: " << text;
  return value;
}

// Fails unless the tags balance under one root, every < starts a tag and every & is predefined.
void expectWellFormed(const std::string &svg) {
  static const std::regex tag(R"(<(/?)([a-z]+)(?:\s+[A-Za-z0-9:-]+="[^"<]*")*\s*(/?)>)");
  EXPECT_EQ(svg.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg ", 0), 0u);
  EXPECT_FALSE(std::regex_search(svg, std::regex("&(?!(amp|lt|gt|quot|apos);)")));
  std::vector<std::string> open;
  size_t at = svg.find("?>") + 2, roots = 0;
  for (std::sregex_iterator it(svg.begin(), svg.end(), tag), end; it != end; ++it) {
    EXPECT_EQ(svg.substr(at, size_t(it->position()) - at).find('<'), std::string::npos) << it->str();
    at = size_t(it->position() + it->length());
    const std::smatch &m = *it;
    if (m[1].length() > 0) {
      EXPECT_EQ(open.empty() ? "" : open.back(), m[2].str());
      if (!open.empty()) open.pop_back();
    } else if (m[3].length() == 0) {
      roots += open.empty();
      open.push_back(m[2]);
    }
  }
  EXPECT_TRUE(open.empty() && roots == 1) << roots << " roots";
  EXPECT_EQ(svg.find_first_not_of('\n', at), std::string::npos) << "text after the root";
}

// The texts or lines in <g class="GROUP"> of `svg`: where each starts and what it says.
struct Mark {
  double x, y;
  std::string text;
};
std::vector<Mark> marks(const std::string &svg, const std::string &group) {
  static const std::regex mark(R"~(<(?:text|line) x1?="([^"]*)" y1?="([^"]*)"[^>]*>([^<]*))~");
  std::vector<Mark> found;
  size_t begin = svg.find("<g class=\"" + group + "\"");
  if (begin == std::string::npos) return found;
  std::string body = svg.substr(begin, svg.find("</g>", begin) - begin);
  for (std::sregex_iterator it(body.begin(), body.end(), mark), end; it != end; ++it)
    found.push_back({number((*it)[1]), number((*it)[2]), (*it)[3]});
  return found;
}

std::vector<std::string> textsOf(const std::vector<Mark> &marks) {
  std::vector<std::string> texts;
  for (const Mark &mark : marks) texts.push_back(mark.text);
  return texts;
}

// Label ink in DejaVu Sans (widest common digits): digits 0.636 em, a point 0.318, 0.73 high.
struct Ink {
  double left, right, top, bottom;
};
Ink inkOf(const Mark &text, double size) {
  double width = 0;
  for (char c : text.text) width += (c == '.' ? 0.318 : 0.636) * size;
  return {text.x - width / 2, text.x + width / 2, text.y - 0.73 * size, text.y};
}

// Fails the test when two of the texts overlap or one leaves `bounds`.
void expectApartWithin(const std::vector<Mark> &texts, double size, Ink bounds) {
  for (size_t i = 0; i < texts.size(); ++i) {
    Ink a = inkOf(texts[i], size);
    EXPECT_TRUE(a.left >= bounds.left && a.right <= bounds.right && a.top >= bounds.top &&
                a.bottom <= bounds.bottom) << texts[i].text << " out of place";
    for (size_t j = 0; j < i; ++j) {
      Ink b = inkOf(texts[j], size);
      EXPECT_FALSE(a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom)
          << texts[i].text << " overlaps " << texts[j].text;
    }
  }
}

PatternPicture crowded() {  // 60 peaks across 3 Da, a bell of intensities
  PatternPicture picture{"crowded", {}, {}};
  for (int i = 0; i < 60; ++i) {
    picture.mz.push_back(500 + i * 0.05);
    picture.relative.push_back(100 * std::exp(-(i - 30) * (i - 30) / 200.0));
  }
  return picture;
}

TEST(PatternSvg, EveryPictureIsWellFormedOnItsCanvasWithLabelsApart) {
  // What the row is, the picture, its sticks, and its title as written when not the picture's own.
  const std::tuple<const char *, PatternPicture, size_t, std::string> cases[] = {
      {"empty", {"C [M]", {}, {}}, 0, ""},
      {"one peak", {"P [M]+", {30.97376}, {100}}, 1, ""},
      {"nominal", {"C6H12O6 [M+H]+", {181.0707, 182.0741, 183.0749, 184.0777}, {100, 6.9, 1.3, 0.08}}, 4, ""},
      {"one m/z thrice", {"x", {200.5, 200.5, 200.5}, {100, 50, 100}}, 3, ""},
      {"fine structure", {"fine", {182.0741, 182.0745, 182.07505}, {100, 40, 10}}, 3, ""},
      {"3000 Da", {"wide", {100, 1500, 3100}, {20, 100, 50}}, 3, ""},
      {"crowded", crowded(), 60, ""},
      {"labels wider than the margin", {"h", {1e12 - 3, 1e12}, {100, 100}}, 2, ""},
      {"near 0, out of range", {"e", {0.0005, 0.3, 0.6}, {150, -5, 20}}, 3, ""},
      {"unequal, not finite, too large", {"n", {1, 2, NAN, 1e300, 4}, {100, INFINITY, 5, 50}}, 1, ""},
      {"markup", {"Na+ & <K> \"x\" 'y'", {23}, {100}}, 1, "Na+ &amp; &lt;K&gt; &quot;x&quot; &apos;y&apos;"},
      {"not UTF-8", {"a\xff\x01\xc3\xa9", {1}, {100}}, 1, "a\xEF\xBF\xBD \xC3\xA9"},
  };
  static const std::regex coordinate(R"~( (x|y|x1|y1|x2|y2|width|height)="([^"]*)")~");
  for (const auto &[what, picture, stickCount, written] : cases) {
    SCOPED_TRACE(what);
    const std::string svg = patternSvg(picture);
    expectWellFormed(svg);
    EXPECT_NE(svg.find(" viewBox=\"0 0 800 450\" font-family=\"sans-serif\">"), std::string::npos);
    EXPECT_EQ(svg.find("href"), std::string::npos) << "refers outside itself";
    const std::string title = written.empty() ? picture.title : written;
    for (const std::string &text : std::vector<std::string>{"<title>" + title + "</title>", ">" + title + "</text>",
                                                            ">m/z</text>", ">relative intensity (%)</text>"})
      EXPECT_NE(svg.find(text), std::string::npos) << text;
    for (std::sregex_iterator it(svg.begin(), svg.end(), coordinate), end; it != end; ++it) {
      double value = number((*it)[2]);
      EXPECT_TRUE(value >= 0 && value <= ((*it)[1].str()[0] == 'y' || (*it)[1] == "height" ? 450 : 800))
          << it->str();
    }
    std::vector<Mark> sticks = marks(svg, "peaks"), labels = marks(svg, "peak-labels");
    EXPECT_EQ(sticks.size(), stickCount);
    for (const Mark &stick : sticks) EXPECT_TRUE(stick.x > 73 && stick.x < 775) << "on the frame's side";
    EXPECT_EQ(labels.empty(), stickCount == 0);
    expectApartWithin(labels, 11, {72, 776, 48, 392});                       // in the frame
    expectApartWithin(marks(svg, "x-labels"), 12, {0, 800, 392, 450});  // under it
    EXPECT_EQ(textsOf(marks(svg, "y-labels")), (std::vector<std::string>{"0", "20", "40", "60", "80", "100"}));
  }
}

// From 0.001 Da to thousands: 3 to 12 ticks 1, 2 or 5 x 10^k apart, reaching both end peaks.
TEST(PatternSvg, MzTicksAreOneTwoFiveStepsSpanningThePeaks) {
  for (double at : {0.5, 181.07, 4999.9, 99999.9})
    for (double span : {0.0, 0.001, 0.0123, 0.7, 3.0, 42.0, 700.0, 3000.0}) {
      SCOPED_TRACE(std::to_string(at) + " + " + std::to_string(span));
      std::vector<std::string> ticks =
          textsOf(marks(patternSvg({"t", {at, at + span / 3, at + span}, {100, 50, 30}}), "x-labels"));
      ASSERT_GE(ticks.size(), 3u);
      EXPECT_LE(ticks.size(), 12u);
      double step = number(ticks[1]) - number(ticks[0]);
      EXPECT_LT(number(ticks.front()), at + step);
      EXPECT_GT(number(ticks.back()), at + span - step);
      double mantissa = step / std::pow(10, std::floor(std::log10(step) + 1e-9));
      EXPECT_TRUE(std::abs(mantissa - 1) < 1e-6 || std::abs(mantissa - 2) < 1e-6 ||
                  std::abs(mantissa - 5) < 1e-6) << step;
      size_t decimals = size_t(std::max(0.0, -std::floor(std::log10(step) + 1e-9)));
      for (size_t i = 0; i < ticks.size(); ++i) {
        size_t point = ticks[i].find('.');
        EXPECT_EQ(point == std::string::npos ? 0 : ticks[i].size() - point - 1, decimals);
        EXPECT_NEAR(number(ticks[i]) - number(ticks[0]), double(i) * step, step * 1e-6);
      }
      if (at < 1) {
        EXPECT_GE(number(ticks.front()), 0) << "no m/z below 0 for peaks above it";
      }
    }
}

// The largest of peaks too close for two labels gets one; a lone m/z sits mid-window.
TEST(PatternSvg, TheLargestPeakGetsTheLabel) {
  for (bool tallFirst : {true, false}) {
    PatternPicture picture{"close", {100.0, 100.01, 103.0}, {98, 98, 10}};
    picture.relative[tallFirst ? 0 : 1] = 100;
    EXPECT_EQ(textsOf(marks(patternSvg(picture), "peak-labels")),
              (std::vector<std::string>{tallFirst ? "100.0000" : "100.0100", "103.0000"}));
  }
  for (const PatternPicture &picture : {PatternPicture{"one", {30.97376}, {100}},
                                        PatternPicture{"same", {200.5, 200.5, 200.5}, {30, 100, 60}}}) {
    const std::string svg = patternSvg(picture);
    for (const Mark &stick : marks(svg, "peaks")) EXPECT_NEAR(stick.x, 424, 0.5);
    std::vector<Mark> labels = marks(svg, "peak-labels");
    ASSERT_EQ(labels.size(), 1u);
    EXPECT_EQ(labels[0].text, picture.title == "one" ? "30.9738" : "200.5000");
    EXPECT_NEAR(labels[0].y, 68, 0.5) << "above the 100 % stick";
  }
  std::vector<std::string> labels = textsOf(marks(patternSvg(crowded()), "peak-labels"));
  EXPECT_GT(labels.size(), 10u);
  EXPECT_LT(labels.size(), 60u);
  EXPECT_EQ(labels[0], "501.5000");
}

// A program that set a locale with a decimal comma (C and C++) gets the same document.
TEST(PatternSvg, TheDocumentIsTheSameUnderADecimalCommaLocale) {
  const std::string plain = patternSvg(crowded());
  const char *chosen =
      std::setlocale(LC_ALL, "ru_RU.UTF-8") != nullptr ? "ru_RU.UTF-8" : "de_DE.UTF-8";
  const bool found = std::setlocale(LC_ALL, chosen) != nullptr;
#if defined(_WIN32)
  if (!found) GTEST_SKIP() << "no locale with a decimal comma here";
#endif
  ASSERT_TRUE(found) << "no ru_RU.UTF-8 or de_DE.UTF-8: run tests/support/ensure_locales.sh";
  ASSERT_STREQ(std::localeconv()->decimal_point, ",");
  std::locale previous;
  try {
    previous = std::locale::global(std::locale(chosen));
  } catch (const std::runtime_error &) {  // a C++ library that knows only "C" (mingw)
  }
  std::string underComma = patternSvg(crowded());
  std::locale::global(previous);
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(underComma, plain);
}

std::vector<std::string> namesIn(const std::string &directory) {
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(directory))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

TEST(WriteWholeFile, ReplacesAFileWholeOrSaysWhyNot) {
  TempDir dir;
  const std::string path = dir.file("p.svg"), bytes("<svg>\r\n\0</svg>\n", 15);
  EXPECT_EQ(writeWholeFile(path, "an old picture, longer than the new one"), std::nullopt);
  EXPECT_EQ(writeWholeFile(path, bytes), std::nullopt);
  EXPECT_EQ(readFile(path), bytes) << "every byte as it is, on Windows too";
  EXPECT_EQ(namesIn(dir.path()), std::vector<std::string>{"p.svg"});
#if !defined(_WIN32)
  EXPECT_EQ(writeWholeFile(dir.path(), "x"),
            "cannot write " + dir.path() + ": " + std::strerror(EISDIR));
#endif
}

#if !defined(_WIN32)
// rsvg-convert (where installed) draws 800x450 PNGs: a pattern's beyond a frame's, beyond blank.
TEST(PatternSvg, ARendererDrawsIt) {
  if (std::system("command -v rsvg-convert >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "rsvg-convert is not installed (Debian: librsvg2-bin)";
  TempDir dir;
  const auto render = [&](const std::string &name, const std::string &svg) {
    fskit::test::writeFile(dir.file(name + ".svg"), svg);
    std::string command = "rsvg-convert -b white -o '" + dir.file(name + ".png") + "' '" +
                          dir.file(name + ".svg") + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << name;
    std::string png = readFile(dir.file(name + ".png"));
    // The signature, then the header chunk of an image 800 (0x320) wide, 450 (0x1c2) high.
    const std::string header("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\x03\x20\0\0\x01\xc2", 24);
    EXPECT_EQ(png.substr(0, 24), header) << name;
    return long(png.size());
  };
  long blank = render("blank", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"800\" height=\"450\"/>");
  long frame = render("frame", patternSvg({"C [M]", {}, {}}));
  long pattern = render("pattern", patternSvg(crowded()));
  EXPECT_GT(frame, 2 * blank);
  EXPECT_GT(pattern, frame + blank);
}

// A file size limit fails the write half-way (EFBIG): the old file stays, no temporary file left.
TEST(WriteWholeFile, AWriteFailingHalfWayLeavesTheOldFile) {
  TempDir dir;
  const std::string path = dir.file("p.svg");
  fskit::test::writeFile(path, "the old picture");
  rlimit saved{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
  const rlimit small{.rlim_cur = 4096, .rlim_max = saved.rlim_max};
  auto previous = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  std::optional<std::string> error = writeWholeFile(path, std::string(100000, 'x'));
  setrlimit(RLIMIT_FSIZE, &saved);
  std::signal(SIGXFSZ, previous);
  EXPECT_EQ(error, "cannot write " + path + ": " + std::strerror(EFBIG));
  EXPECT_EQ(readFile(path), "the old picture");
  EXPECT_EQ(namesIn(dir.path()), std::vector<std::string>{"p.svg"});
}
#endif

}  // namespace
