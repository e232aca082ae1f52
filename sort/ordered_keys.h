// SPDX-License-Identifier: MIT
// Numeric keys read as unsigned integers of the key's width whose plain order
// is the key order, the direction included. The sorts are instantiated per
// reader, not per sort type: the eight integer types come down to one reader
// per width, whose flip carries signedness and direction, and the two float
// types to one reader each.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "sort/sorting.h"

namespace fskit::sort {

// A reader gives each key as bits(p), whose xor with `flip` orders as the
// keys do. The radix sort counts and moves by bits(p) alone and applies
// `flip` to the order of its buckets, so the direction and, for integers,
// the signedness cost nothing per key.
template <class Reader> inline typename Reader::Key orderedKey(const Reader &keys, const unsigned char *p) {
  return typename Reader::Key(keys.bits(p) ^ keys.flip);
}

// Integers: the stored bits; `flip` has the sign bit for signed keys and
// every bit for descending ones.
template <class U> struct IntegerKeys {
  using Key = U;
  U flip;
  static Key bits(const unsigned char *p) { return loadKey<U>(p); }
};

// Floats: negative numbers have all bits flipped, the others the sign bit;
// -0 counts as +0 and every NaN as the largest value (the comparators order
// them the same way). `flip` is all ones for a descending sort.
template <class F> struct FloatKeys {
  using Key = std::conditional_t<sizeof(F) == 4, uint32_t, uint64_t>;
  Key flip;
  static Key bits(const unsigned char *p) {
    constexpr Key sign = Key(1) << (8 * sizeof(Key) - 1);
    F value = loadKey<F>(p);
    Key bits;
    if (std::isnan(value)) {
      bits = Key(~Key(0));
    } else {
      if (value == 0) value = 0;
      std::memcpy(&bits, &value, sizeof bits);
      bits = (bits & sign) ? Key(~bits) : Key(bits | sign);
    }
    return bits;
  }
};

// Calls job with the key reader of numeric sort type `type`.
template <class Job> decltype(auto) withOrderedKeys(int type, Job &&job) {
  // Every bit of a width-W mask is set by W-wide all-ones; a truncated sign
  // bit lands where W's sign bit is.
  const uint32_t down = descending(type) ? ~0u : 0u;
  switch (keyKind(type)) {
    case KeyKind::Int8: return job(IntegerKeys<uint8_t>{uint8_t(down ^ 0x80u)});
    case KeyKind::Uint8: return job(IntegerKeys<uint8_t>{uint8_t(down)});
    case KeyKind::Int16: return job(IntegerKeys<uint16_t>{uint16_t(down ^ 0x8000u)});
    case KeyKind::Uint16: return job(IntegerKeys<uint16_t>{uint16_t(down)});
    case KeyKind::Int32: return job(IntegerKeys<uint32_t>{down ^ 0x80000000u});
    case KeyKind::Uint32: return job(IntegerKeys<uint32_t>{down});
    case KeyKind::Float: return job(FloatKeys<float>{down});
    default: return job(FloatKeys<double>{descending(type) ? ~uint64_t(0) : 0});
  }
}

}  // namespace fskit::sort
