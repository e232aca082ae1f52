// SPDX-License-Identifier: MIT
// The picture of an isotope pattern: a stick spectrum in an 800x450 SVG with
// the title on top, an m/z axis with 1-2-5 ticks and a 0-100 % axis. Peaks are
// labelled with their m/z, largest first, skipping any label that would
// overlap one already placed or its stick.
#pragma once

#include <string>
#include <vector>

namespace fskit::tool {

struct PatternPicture {
  std::string title;             // e.g. "C6H12O6 [M+H]+" (UTF-8; escaped when drawn)
  std::vector<double> mz;        // the peaks' m/z, increasing
  std::vector<double> relative;  // their intensity in percent of the largest (0..100)
};

// The self-contained SVG document of `picture`. Peaks past the shorter of the
// two vectors, with a value that is not finite or an m/z beyond 1e12, are
// left out; one peak (or several at one m/z) gets a window of 1 Da on either
// side; no peaks, an empty frame. Numbers are written the same under every
// locale.
std::string patternSvg(const PatternPicture &picture);

}  // namespace fskit::tool
