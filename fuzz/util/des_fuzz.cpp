// SPDX-License-Identifier: MIT
// desDecrypt on any text into a buffer of the documented size; a round trip keeps x up to a blank.
#include <fskit/util.h>

#include "fuzz/support/fuzz_support.h"

constexpr size_t kMaxGroups = 128;  // groups of 8 digits that desDecrypt takes

FUZZ_TARGET(bytes) {
  const Text text(bytes);
  const size_t groups = (text.str().size() + 7) / 8;
  Text out(groups > kMaxGroups ? 1 : 8 * (groups / 2) + 1, '~');
  if (groups > kMaxGroups) {
    FUZZ_CHECK(desDecrypt(text.get(), out.get()) == 0 && out.get()[0] == '~');
  } else {
    FUZZ_CHECK(desDecrypt(text.get(), out.get()) == 1);
    FUZZ_CHECK(out.str().size() < out.size() && out.str().find(' ') == std::string_view::npos);
  }

  const size_t blocks = text.str().empty() ? 1 : (text.str().size() + 7) / 8;
  Text hex(16 * blocks + 1, '~');
  desEncrypt(text.get(), hex.get());
  FUZZ_CHECK(hex.str().size() == 16 * blocks);
  for (char c : hex.str()) FUZZ_CHECK((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'));
  Text plain(8 * blocks + 1, '~');
  const int32_t decrypted = desDecrypt(hex.get(), plain.get());
  FUZZ_CHECK(decrypted == (2 * blocks > kMaxGroups ? 0 : 1));
  FUZZ_CHECK(decrypted == 0 || plain.str() == text.str().substr(0, text.str().find(' ')));
}
