// SPDX-License-Identifier: MIT
#include "tools/pattern_svg.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <string_view>

namespace fskit::tool {
namespace {

// The canvas and the frame of the plot in it (viewBox units).
constexpr double kWidth = 800, kHeight = 450;
constexpr double kLeft = 72, kRight = 776, kTop = 48, kBottom = 392;
// Where 100 % lies: below the frame's top, leaving room for the label of the
// largest peak.
constexpr double kFull = kTop + 24;
constexpr double kTitleSize = 16, kAxisTitleSize = 13, kTickSize = 12, kLabelSize = 11;
// A character's advance as a share of the font size, taken wide enough for
// the digits of common sans-serif faces (DejaVu Sans: 0.64), so that a box
// estimated from it holds the text drawn.
constexpr double kAdvance = 0.66;
// The narrowest m/z window drawn, the one around a single m/z, and the
// largest m/z drawn (its ticks still count in whole doubles).
constexpr double kNarrowest = 0.001, kAroundOne = 1.0, kLargest = 1e12;
constexpr const char *kInk = "#222";
constexpr const char *kStick = "#1f4e9a";

// `value` with `decimals` digits after the point, the same under every
// locale; never "-0".
std::string fixed(double value, int decimals) {
  char text[400];  // the digits of any finite double
  auto [end, error] =
      std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
  if (error != std::errc()) return "0";
  std::string out(text, end);
  if (out[0] == '-' && out.find_first_of("123456789") == std::string::npos) out.erase(0, 1);
  return out;
}

// A coordinate: at most two decimals, without trailing zeros.
std::string coordinate(double value) {
  std::string out = fixed(value, 2);
  out.erase(out.find_last_not_of('0') + 1);
  if (out.back() == '.') out.pop_back();
  return out;
}

// The length of the well-formed UTF-8 character at the start of `text`, 0
// when there is none.
size_t characterLength(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  unsigned char lead = byte(0);
  size_t length = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  if (length == 0 || length > text.size()) return 0;
  for (size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xC0) != 0x80) return 0;
  // No overlong form, no surrogate, nothing past U+10FFFF.
  if ((lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) >= 0xA0) ||
      (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) >= 0x90))
    return 0;
  return length;
}

// `text` as XML character data or attribute value: markup characters as
// references, control characters (which XML cannot carry) as spaces and
// bytes that are not UTF-8 as U+FFFD.
std::string escaped(std::string_view text) {
  std::string out;
  for (size_t at = 0; at < text.size();) {
    size_t length = characterLength(text.substr(at));
    char c = text[at];
    if (length == 0) out += "\xEF\xBF\xBD";
    else if (c == '&') out += "&amp;";
    else if (c == '<') out += "&lt;";
    else if (c == '>') out += "&gt;";
    else if (c == '"') out += "&quot;";
    else if (c == '\'') out += "&apos;";
    else if (length == 1 && static_cast<unsigned char>(c) < 0x20) out += ' ';
    else out.append(text, at, length);
    at += std::max<size_t>(length, 1);
  }
  return out;
}

// The characters (not bytes) of a UTF-8 text, for its drawn width.
size_t characters(std::string_view text) {
  return size_t(std::count_if(text.begin(), text.end(),
                              [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

double textWidth(std::string_view text, double size) { return double(characters(text)) * kAdvance * size; }

// The smallest 1, 2 or 5 x 10^k at or above `at least`.
double niceStep(double atLeast) {
  double power = std::pow(10.0, std::floor(std::log10(atLeast)));
  for (double multiple : {1.0, 2.0, 5.0})
    if (multiple * power >= atLeast * (1 - 1e-9)) return multiple * power;
  return 10 * power;
}

// The decimals that tell the multiples of `step` apart.
int decimalsOf(double step) { return std::max(0, int(-std::floor(std::log10(step) + 1e-9))); }

struct Peak {
  double mz, relative;
};

std::vector<Peak> drawablePeaks(const PatternPicture &picture) {
  std::vector<Peak> peaks;
  for (size_t i = 0; i < std::min(picture.mz.size(), picture.relative.size()); ++i)
    if (std::abs(picture.mz[i]) <= kLargest && std::isfinite(picture.relative[i]))
      peaks.push_back({picture.mz[i], std::clamp(picture.relative[i], 0.0, 100.0)});
  return peaks;
}

// The m/z range shown: the peaks with 8 % to spare on either side (for
// their labels), at least kNarrowest wide; below 0 only where a peak would
// otherwise touch the frame.
struct Window {
  double low = 0, high = 0;
  double x(double mz) const { return kLeft + (mz - low) / (high - low) * (kRight - kLeft); }
};

Window windowOf(const std::vector<Peak> &peaks) {
  auto [least, most] = std::minmax_element(
      peaks.begin(), peaks.end(), [](const Peak &a, const Peak &b) { return a.mz < b.mz; });
  double span = most->mz - least->mz, middle = least->mz + span / 2;
  double half = span == 0 ? kAroundOne : std::max(span * 1.16, kNarrowest) / 2;
  Window window{middle - half, middle + half};
  if (window.low < 0 && least->mz >= 0.04 * (window.high - window.low)) window.low = 0;
  return window;
}

// The tick step: the smallest 1-2-5 step whose labels stand apart.
double tickStep(const Window &window) {
  double range = window.high - window.low, step = niceStep(range / 8);
  for (;;) {
    int decimals = decimalsOf(step);
    double widest = std::max(textWidth(fixed(window.low, decimals), kTickSize),
                             textWidth(fixed(window.high, decimals), kTickSize));
    if (step / range * (kRight - kLeft) >= widest + 12) return step;
    step = niceStep(step * 1.5);
  }
}

// The decimals of the peaks' labels: 4 for a window of a few Da, more for
// fine structure, fewer for a wide one.
int labelDecimals(const Window &window) {
  return std::clamp(4 - int(std::floor(std::log10(window.high - window.low))), 2, 6);
}

struct Box {
  double left, right, top, bottom;
  bool overlaps(const Box &other) const {
    return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
  }
};

double heightOf(double relative) { return kBottom - relative / 100 * (kBottom - kFull); }

void appendText(std::string &svg, double x, double y, std::string_view text,
                std::string_view attributes = "") {
  svg += "<text x=\"" + coordinate(x) + "\" y=\"" + coordinate(y) + "\"";
  if (!attributes.empty()) (svg += ' ') += attributes;
  svg += ">" + escaped(text) + "</text>\n";
}

void appendLine(std::string &svg, double x1, double y1, double x2, double y2) {
  svg += "<line x1=\"" + coordinate(x1) + "\" y1=\"" + coordinate(y1) + "\" x2=\"" + coordinate(x2) +
         "\" y2=\"" + coordinate(y2) + "\"/>\n";
}

void appendFrame(std::string &svg, const std::string &title) {
  double titleSize = std::min(kTitleSize, (kWidth - 20) / std::max(1.0, textWidth(title, 1)));
  svg += "<rect width=\"" + coordinate(kWidth) + "\" height=\"" + coordinate(kHeight) +
         "\" fill=\"white\"/>\n";
  appendText(svg, kWidth / 2, 30, title,
             "class=\"title\" font-size=\"" + coordinate(titleSize) + "\" text-anchor=\"middle\"");
  svg += std::string("<rect x=\"") + coordinate(kLeft) + "\" y=\"" + coordinate(kTop) +
         "\" width=\"" + coordinate(kRight - kLeft) + "\" height=\"" + coordinate(kBottom - kTop) +
         "\" fill=\"none\" stroke=\"" + kInk + "\"/>\n";
  std::string size = "font-size=\"" + coordinate(kAxisTitleSize) + "\" text-anchor=\"middle\"";
  double middle = (kTop + kBottom) / 2;
  appendText(svg, (kLeft + kRight) / 2, kBottom + 44, "m/z", "class=\"axis-title\" " + size);
  appendText(svg, 22, middle, "relative intensity (%)",
             "class=\"axis-title\" " + size + " transform=\"rotate(-90 22 " + coordinate(middle) + ")\"");
}

// Ticks every 20 %, labelled at the frame's left.
void appendIntensityAxis(std::string &svg) {
  svg += std::string("<g class=\"y-ticks\" stroke=\"") + kInk + "\">\n";
  for (int percent = 0; percent <= 100; percent += 20)
    appendLine(svg, kLeft - 5, heightOf(percent), kLeft, heightOf(percent));
  svg += "</g>\n<g class=\"y-labels\" font-size=\"" + coordinate(kTickSize) +
         "\" text-anchor=\"end\">\n";
  for (int percent = 0; percent <= 100; percent += 20)
    appendText(svg, kLeft - 8, heightOf(percent) + 4, std::to_string(percent));
  svg += "</g>\n";
}

void appendMzAxis(std::string &svg, const Window &window) {
  double step = tickStep(window);
  int decimals = decimalsOf(step);
  std::vector<double> ticks;
  for (double k = std::ceil(window.low / step - 1e-9); k * step <= window.high + step * 1e-9; ++k)
    ticks.push_back(k * step);
  svg += std::string("<g class=\"x-ticks\" stroke=\"") + kInk + "\">\n";
  for (double tick : ticks) appendLine(svg, window.x(tick), kBottom, window.x(tick), kBottom + 5);
  svg += "</g>\n<g class=\"x-labels\" font-size=\"" + coordinate(kTickSize) +
         "\" text-anchor=\"middle\">\n";
  for (double tick : ticks) appendText(svg, window.x(tick), kBottom + 19, fixed(tick, decimals));
  svg += "</g>\n";
}

void appendSticks(std::string &svg, const std::vector<Peak> &peaks, const Window &window) {
  svg += std::string("<g class=\"peaks\" stroke=\"") + kStick + "\" stroke-width=\"1.5\">\n";
  for (const Peak &peak : peaks)
    appendLine(svg, window.x(peak.mz), kBottom, window.x(peak.mz), heightOf(peak.relative));
  svg += "</g>\n";
}

// Labels above the sticks, largest peak first (the lower m/z of two equal
// ones); a label that would overlap one placed before, or the stick under
// it, is left out (so no label sits on another labelled peak, nor labels an
// m/z twice); one near the frame's side is moved inside it.
void appendLabels(std::string &svg, const std::vector<Peak> &peaks, const Window &window) {
  std::vector<size_t> order(peaks.size());
  std::iota(order.begin(), order.end(), size_t(0));
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return peaks[a].relative > peaks[b].relative; });
  int decimals = labelDecimals(window);
  std::vector<Box> placed;
  // A white halo keeps a label legible where it crosses a neighbour's stick.
  svg += "<g class=\"peak-labels\" font-size=\"" + coordinate(kLabelSize) + "\" fill=\"" + kInk +
         "\" text-anchor=\"middle\" stroke=\"white\" stroke-width=\"3\" stroke-linejoin=\"round\" "
         "paint-order=\"stroke\">\n";
  for (size_t i : order) {
    std::string text = fixed(peaks[i].mz, decimals);
    double half = textWidth(text, kLabelSize) / 2, baseline = heightOf(peaks[i].relative) - 4;
    double x = std::clamp(window.x(peaks[i].mz), kLeft + half + 2, kRight - half - 2);
    Box box{x - half, x + half, baseline - kLabelSize, baseline + 2};
    if (std::any_of(placed.begin(), placed.end(), [&](const Box &other) { return box.overlaps(other); }))
      continue;
    double stick = window.x(peaks[i].mz);
    placed.push_back(box);
    placed.push_back({stick - 1, stick + 1, baseline, kBottom});
    appendText(svg, x, baseline, text);
  }
  svg += "</g>\n";
}

}  // namespace

std::string patternSvg(const PatternPicture &picture) {
  std::string svg =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + coordinate(kWidth) + "\" height=\"" +
      coordinate(kHeight) + "\" viewBox=\"0 0 " + coordinate(kWidth) + " " + coordinate(kHeight) +
      "\" font-family=\"sans-serif\">\n<title>" + escaped(picture.title) + "</title>\n";
  appendFrame(svg, picture.title);
  appendIntensityAxis(svg);
  std::vector<Peak> peaks = drawablePeaks(picture);
  if (!peaks.empty()) {
    Window window = windowOf(peaks);
    appendMzAxis(svg, window);
    appendSticks(svg, peaks, window);
    appendLabels(svg, peaks, window);
  }
  return svg + "</svg>\n";
}

}  // namespace fskit::tool
