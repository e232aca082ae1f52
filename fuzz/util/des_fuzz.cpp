// SPDX-License-Identifier: MIT
// desDecrypt on any text, into a buffer of exactly the documented size, and
// desDecrypt(desEncrypt(x)) giving x up to its first blank.
#include <fskit/util.h>

#include "fuzz/support/fuzz_support.h"

namespace {

constexpr size_t kMaxGroups = 128;  // groups of 8 digits that desDecrypt takes

void checkDecrypt(const Text &hex) {
  const size_t groups = (hex.str().size() + 7) / 8;
  if (groups > kMaxGroups) {
    Text out(1, '~');
    FUZZ_CHECK(desDecrypt(hex.get(), out.get()) == 0 && out.get()[0] == '~');
    return;
  }
  Text out(8 * (groups / 2) + 1, '~');
  FUZZ_CHECK(desDecrypt(hex.get(), out.get()) == 1);
  FUZZ_CHECK(out.str().size() < out.size() && out.str().find(' ') == std::string_view::npos);
}

void checkRoundTrip(const Text &text) {
  const size_t blocks = text.str().empty() ? 1 : (text.str().size() + 7) / 8;
  Text hex(16 * blocks + 1, '~');
  desEncrypt(text.get(), hex.get());
  FUZZ_CHECK(hex.str().size() == 16 * blocks);
  for (char c : hex.str()) FUZZ_CHECK((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'));
  Text plain(8 * blocks + 1, '~');
  if (2 * blocks > kMaxGroups) {
    FUZZ_CHECK(desDecrypt(hex.get(), plain.get()) == 0);
    return;
  }
  FUZZ_CHECK(desDecrypt(hex.get(), plain.get()) == 1);
  FUZZ_CHECK(plain.str() == text.str().substr(0, text.str().find(' ')));
}

}  // namespace

FUZZ_TARGET(bytes) {
  const Text text(bytes);
  checkDecrypt(text);
  checkRoundTrip(text);
}
