// SPDX-License-Identifier: MIT
// The picture of an isotope pattern (tools/pattern_svg.h): well-formed,
// self-contained SVG whose ticks, sticks and labels stay on the canvas and
// never collide, written the same under every locale.
#include <gtest/gtest.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <locale>
#include <map>
#include <stdexcept>
#include <regex>
#include <string>
#include <vector>

#include "tests/support/test_support.h"
#include "tools/pattern_svg.h"

namespace {

using fskit::tool::PatternPicture;
using fskit::tool::patternSvg;

struct Element {
  std::string name, group, text;  // group: the class of the <g> around it
  std::map<std::string, std::string> attributes;
};

// A number as the document must write it: the whole text, a point for the
// decimal separator.
double number(const std::string &text) {
  double value = NAN;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  EXPECT_TRUE(error == std::errc() && end == text.data() + text.size()) << "not a number: " << text;
  return value;
}

std::string unescaped(std::string text) {
  for (auto [reference, character] : std::map<std::string, std::string>{
           {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}})
    for (size_t at; (at = text.find(reference)) != std::string::npos;)
      text.replace(at, reference.size(), character);
  return text;
}

// The elements of `svg` in document order. Fails the test unless the tags
// balance under one <svg> root and no text or value holds a bare < or &.
std::vector<Element> elementsOf(const std::string &svg) {
  static const std::regex tag(R"(<(/?)([a-z]+)((?:\s+[A-Za-z0-9:-]+="[^"<]*")*)\s*(/?)>)");
  static const std::regex attribute(R"(([A-Za-z0-9:-]+)="([^"]*)\")");
  static const std::regex bareAmpersand("&(?!(amp|lt|gt|quot|apos);)");
  const std::string prolog = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  EXPECT_EQ(svg.compare(0, prolog.size(), prolog), 0);
  std::vector<Element> elements;
  std::vector<size_t> open;
  size_t at = prolog.size(), roots = 0;
  for (std::sregex_iterator it(svg.begin() + long(at), svg.end(), tag), end; it != end; ++it) {
    std::string between = svg.substr(at, size_t(it->position()) + prolog.size() - at);
    EXPECT_EQ(between.find('<'), std::string::npos) << "not a tag: " << between;
    EXPECT_FALSE(std::regex_search(between, bareAmpersand)) << between;
    if (!open.empty()) elements[open.back()].text += unescaped(between);
    at = size_t(it->position() + it->length()) + prolog.size();
    const std::smatch &m = *it;
    if (m[1].length() > 0) {
      EXPECT_FALSE(open.empty() || elements[open.back()].name != m[2]) << "unbalanced " << m[0];
      if (!open.empty()) open.pop_back();
      continue;
    }
    roots += open.empty();
    Element element{m[2], "", "", {}};
    if (!open.empty() && elements[open.back()].name == "g")
      element.group = elements[open.back()].attributes["class"];
    std::string list = m[3];
    for (std::sregex_iterator a(list.begin(), list.end(), attribute), none; a != none; ++a) {
      EXPECT_FALSE(std::regex_search((*a)[2].str(), bareAmpersand)) << (*a)[0];
      element.attributes[(*a)[1]] = unescaped((*a)[2]);
    }
    elements.push_back(element);
    if (m[4].length() == 0) open.push_back(elements.size() - 1);
  }
  EXPECT_TRUE(open.empty()) << open.size() << " elements left open";
  EXPECT_EQ(roots, 1u);
  EXPECT_EQ(svg.find_first_not_of(" \n", at), std::string::npos) << "text after the root";
  EXPECT_EQ(elements.at(0).name, "svg");
  return elements;
}

std::vector<Element> inGroup(const std::vector<Element> &elements, const std::string &group) {
  std::vector<Element> found;
  for (const Element &element : elements)
    if (element.group == group) found.push_back(element);
  return found;
}

// A label's ink as DejaVu Sans (the widest common sans-serif digits) draws
// it: digits 0.636 em wide, a point 0.318 em, 0.73 em high.
struct Ink {
  double left, right, top, bottom;
};
Ink inkOf(const Element &text, double size) {
  double width = 0;
  for (char c : text.text) width += (c == '.' ? 0.318 : 0.636) * size;
  double x = number(text.attributes.at("x")), y = number(text.attributes.at("y"));
  return {x - width / 2, x + width / 2, y - 0.73 * size, y};
}

// Fails the test when two of the texts overlap or one leaves `bounds`.
void expectApartWithin(const std::vector<Element> &texts, double size, Ink bounds) {
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
  struct Case {
    const char *what;
    PatternPicture picture;
    size_t sticks;
    std::string title;  // as drawn, when not the picture's own
  };
  const Case cases[] = {
      {"empty", {"C [M]", {}, {}}, 0, ""},
      {"one peak", {"P [M]+", {30.97376}, {100}}, 1, ""},
      {"nominal", {"C6H12O6 [M+H]+", {181.0707, 182.0741, 183.0749, 184.0777}, {100, 6.9, 1.3, 0.08}}, 4, ""},
      {"one m/z thrice", {"x", {200.5, 200.5, 200.5}, {100, 50, 100}}, 3, ""},
      {"fine structure", {"fine", {182.0741, 182.0745, 182.07505}, {100, 40, 10}}, 3, ""},
      {"3000 Da", {"wide", {100, 1500, 3100}, {20, 100, 50}}, 3, ""},
      {"crowded", crowded(), 60, ""},
      {"near 0, out of range", {"e", {0.0005, 0.3, 0.6}, {150, -5, 20}}, 3, ""},
      {"unequal and not finite", {"n", {1, 2, NAN, 4}, {100, INFINITY, 5}}, 1, ""},
      {"markup", {"Na+ & <K> \"x\" 'y'", {23}, {100}}, 1, ""},
      {"not UTF-8", {"a\xff\x01\xc3\xa9", {1}, {100}}, 1, "a\xEF\xBF\xBD \xC3\xA9"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.what);
    std::string svg = patternSvg(c.picture);
    std::vector<Element> elements = elementsOf(svg);
    ASSERT_FALSE(HasFailure());
    EXPECT_EQ(elements[0].attributes["viewBox"], "0 0 800 450");
    EXPECT_EQ(elements[0].attributes["font-family"], "sans-serif");
    EXPECT_EQ(svg.find("href"), std::string::npos) << "refers outside itself";
    std::string title = c.title.empty() ? c.picture.title : c.title;
    std::vector<std::string> texts;
    for (const Element &element : elements) {
      if (element.name == "text" || element.name == "title") texts.push_back(element.text);
      for (const char *name : {"x", "y", "x1", "x2", "y1", "y2", "width", "height"})
        if (element.attributes.count(name)) {
          double value = number(element.attributes.at(name));
          EXPECT_TRUE(value >= 0 && value <= (name[0] == 'x' || name[0] == 'w' ? 800 : 450))
              << element.name << " " << name << "=" << value;
        }
    }
    for (const std::string &wanted : {title, std::string("m/z"), std::string("relative intensity (%)")})
      EXPECT_EQ(std::count(texts.begin(), texts.end(), wanted), wanted == title ? 2 : 1) << wanted;
    EXPECT_EQ(inGroup(elements, "peaks").size(), c.sticks);
    for (const Element &stick : inGroup(elements, "peaks"))
      EXPECT_TRUE(number(stick.attributes.at("x1")) > 73 && number(stick.attributes.at("x1")) < 775)
          << "on the frame's side";
    std::vector<Element> labels = inGroup(elements, "peak-labels");
    EXPECT_EQ(labels.empty(), c.sticks == 0);
    expectApartWithin(labels, 11, {72, 776, 48, 392});                  // in the frame
    expectApartWithin(inGroup(elements, "x-labels"), 12, {0, 800, 392, 450});  // under it
    std::vector<std::string> percent;
    for (const Element &label : inGroup(elements, "y-labels")) percent.push_back(label.text);
    EXPECT_EQ(percent, (std::vector<std::string>{"0", "20", "40", "60", "80", "100"}));
  }
}

// Tick labels for windows from 0.001 Da to thousands: a 1, 2 or 5 x 10^k
// step, three to twelve ticks, the step's decimals, within a step of the
// peaks at either end.
TEST(PatternSvg, MzTicksAreOneTwoFiveStepsSpanningThePeaks) {
  for (double at : {0.5, 181.07, 4999.9, 99999.9})
    for (double span : {0.0, 0.001, 0.0123, 0.7, 3.0, 42.0, 700.0, 3000.0}) {
      SCOPED_TRACE(std::to_string(at) + " + " + std::to_string(span));
      std::vector<Element> ticks =
          inGroup(elementsOf(patternSvg({"t", {at, at + span / 3, at + span}, {100, 50, 30}})), "x-labels");
      ASSERT_GE(ticks.size(), 3u);
      EXPECT_LE(ticks.size(), 12u);
      double step = number(ticks[1].text) - number(ticks[0].text);
      EXPECT_LT(number(ticks.front().text), at + step);
      EXPECT_GT(number(ticks.back().text), at + span - step);
      double mantissa = step / std::pow(10, std::floor(std::log10(step) + 1e-9));
      EXPECT_TRUE(std::abs(mantissa - 1) < 1e-6 || std::abs(mantissa - 2) < 1e-6 ||
                  std::abs(mantissa - 5) < 1e-6) << step;
      size_t decimals = size_t(std::max(0.0, -std::floor(std::log10(step) + 1e-9)));
      for (size_t i = 0; i < ticks.size(); ++i) {
        size_t point = ticks[i].text.find('.');
        EXPECT_EQ(point == std::string::npos ? 0 : ticks[i].text.size() - point - 1, decimals);
        if (i > 0) {
          EXPECT_NEAR(number(ticks[i].text) - number(ticks[i - 1].text), step, step * 1e-6);
        }
      }
      if (at < 1) {
        EXPECT_GE(number(ticks.front().text), 0) << "no m/z below 0 for peaks above it";
      }
    }
}

// A label goes to the largest of peaks too close for two, whichever comes
// first; one m/z (or one peak) sits in the middle of its window.
TEST(PatternSvg, TheLargestPeakGetsTheLabel) {
  for (bool tallFirst : {true, false}) {
    PatternPicture picture{"close", {100.0, 100.01, 103.0}, {98, 98, 10}};
    picture.relative[tallFirst ? 0 : 1] = 100;
    std::vector<std::string> labels;
    for (const Element &label : inGroup(elementsOf(patternSvg(picture)), "peak-labels"))
      labels.push_back(label.text);
    EXPECT_EQ(labels, (std::vector<std::string>{tallFirst ? "100.0000" : "100.0100", "103.0000"}));
  }
  for (const PatternPicture &picture : {PatternPicture{"one", {30.97376}, {100}},
                                        PatternPicture{"same", {200.5, 200.5, 200.5}, {30, 100, 60}}}) {
    std::vector<Element> elements = elementsOf(patternSvg(picture));
    for (const Element &stick : inGroup(elements, "peaks")) EXPECT_NEAR(number(stick.attributes.at("x1")), 424, 0.5);
    std::vector<Element> labels = inGroup(elements, "peak-labels");
    ASSERT_EQ(labels.size(), 1u);
    EXPECT_EQ(labels[0].text, picture.title == "one" ? "30.9738" : "200.5000");
    EXPECT_NEAR(number(labels[0].attributes.at("y")), 68, 0.5) << "above the 100 % stick";
  }
  std::vector<Element> labels = inGroup(elementsOf(patternSvg(crowded())), "peak-labels");
  EXPECT_GT(labels.size(), 10u);
  EXPECT_LT(labels.size(), 60u);
  EXPECT_EQ(labels[0].text, "501.5000");
}

// A program that set a locale with a decimal comma (C and C++) gets the
// same document, points and all.
TEST(PatternSvg, TheDocumentIsTheSameUnderADecimalCommaLocale) {
  const std::string plain = patternSvg(crowded());
  const char *chosen = nullptr;
  for (const char *name : {"ru_RU.UTF-8", "de_DE.UTF-8"})
    if (std::setlocale(LC_ALL, name) != nullptr) {
      chosen = name;
      break;
    }
#if defined(_WIN32)
  if (chosen == nullptr) GTEST_SKIP() << "no locale with a decimal comma here";
#endif
  ASSERT_NE(chosen, nullptr) << "no ru_RU.UTF-8 or de_DE.UTF-8: run tests/support/ensure_locales.sh";
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

#if !defined(_WIN32)
// The bytes of the image data of an 800x450 PNG, or -1 when it is not one.
long imageDataBytes(const std::string &png) {
  const auto word = [&](size_t at) {
    uint32_t value = 0;
    for (size_t i = at; i < at + 4; ++i) value = value << 8 | uint8_t(png[i]);
    return value;
  };
  if (png.size() < 33 || png.compare(0, 8, "\x89PNG\r\n\x1a\n") != 0 ||
      png.compare(12, 4, "IHDR") != 0 || word(16) != 800 || word(20) != 450)
    return -1;
  long bytes = 0;
  for (size_t at = 8; at + 12 <= png.size(); at += 12 + word(at))
    if (png.compare(at + 4, 4, "IDAT") == 0) bytes += long(word(at));
  return bytes;
}

// Drawn by a real SVG renderer (librsvg's rsvg-convert, where installed):
// the documents parse, and a pattern's picture holds more than an empty
// frame, which holds more than a blank page.
TEST(PatternSvg, ARendererDrawsIt) {
  if (std::system("command -v rsvg-convert >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "rsvg-convert is not installed (Debian: librsvg2-bin)";
  fskit::test::TempDir dir;
  const auto render = [&](const std::string &name, const std::string &svg) {
    fskit::test::writeFile(dir.file(name + ".svg"), svg);
    std::string command = "rsvg-convert -b white -o '" + dir.file(name + ".png") + "' '" +
                          dir.file(name + ".svg") + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << name;
    return imageDataBytes(fskit::test::readFile(dir.file(name + ".png")));
  };
  long blank = render("blank", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"800\" height=\"450\"/>");
  long frame = render("frame", patternSvg({"C [M]", {}, {}}));
  long pattern = render("pattern", patternSvg(crowded()));
  EXPECT_GT(blank, 0);
  EXPECT_GT(frame, 2 * blank);
  EXPECT_GT(pattern, frame + blank);
}
#endif

}  // namespace
