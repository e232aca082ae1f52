// SPDX-License-Identifier: MIT
// fsDateTime from every input layout into every output layout: results fit 60 characters, the
// messages are the documented ones, and outputs 4 and 6 read back to the same text.
#include <fskit/datetime.h>

#include "fuzz/support/fuzz_support.h"

namespace {

constexpr size_t kOutput = 61;  // enough for any input, as the header promises

// The output is "~" when not written at all.
struct Converted { int32_t result; std::string output, err; };

Converted convert(int32_t inLayout, const char *input, int32_t outLayout,
                  const char *separators, int32_t useNow) {
  Text output(kOutput, '~');
  Converted out;
  out.err = caughtStream(::stderr,
      [&] { out.result = fsDateTime(inLayout, input, outLayout, output.get(), separators, useNow); });
  const bool untouched = std::string_view(output.get(), kOutput) == std::string(kOutput, '~');
  FUZZ_CHECK(untouched || std::memchr(output.get(), '\0', kOutput) != nullptr);
  out.output = untouched ? "~" : output.str();
  return out;
}

}  // namespace

FUZZ_TARGET(input) {
  // In and out layouts, options (bit 0: useNow; 1-2: separators null, "", "NONE" or up to a
  // NUL; 3: a null input), then the text.
  const int32_t inLayout = takeByte(input) % 14;  // 13: unsupported
  const int32_t outLayout = takeByte(input) % 12;  // 11: unsupported
  const uint8_t options = takeByte(input);
  const int32_t useNow = options & 1;
  std::string_view separatorBytes;
  if ((options >> 1 & 3) == 3) std::tie(separatorBytes, input) = splitAtNul(input, "");
  const Text separatorText(separatorBytes), text(input);
  const char *separators[] = {nullptr, "", "NONE", separatorText.get()};
  const char *separator = separators[options >> 1 & 3];
  const char *given = options & 8 ? nullptr : text.get();

  const Converted first = convert(inLayout, given, outLayout, separator, useNow);
  const std::string unreadable = "Unable to generate valid input date from: " + std::string(text.str()) + "\n";
  if (first.err.ends_with(unreadable)) {
    FUZZ_CHECK(first.result == 0 && first.output == "~" && useNow == 0);
    return;
  }
  if (outLayout == 11) {
    FUZZ_CHECK(first.result == 0 && first.output.empty() &&
               first.err.ends_with("Unsupported date/time output format 11"));
    return;
  }
  FUZZ_CHECK(first.result == 1 && first.output != "~" && first.output.size() <= kOutput - 1);
  FUZZ_CHECK(first.err.empty() || first.err == "Unsupported date/time input format 13\n");

  const Converted asc = convert(inLayout, given, 4, separator, useNow);
  const Converted ascAgain = convert(4, asc.output.c_str(), 4, nullptr, 0);
  FUZZ_CHECK(ascAgain.result == 1 && ascAgain.output == asc.output);
  const Converted stamp = convert(inLayout, given, 6, separator, useNow);
  if (stamp.output.size() == 19) {  // every field in its width
    const Converted stampAgain = convert(6, stamp.output.c_str(), 6, nullptr, 0);
    FUZZ_CHECK(stampAgain.result == 1 && stampAgain.output == stamp.output);
  }
}
