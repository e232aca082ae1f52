// SPDX-License-Identifier: MIT
// Whole arrays of foreign numbers, for fskit's Python package (internal: not
// exported from the shared library). Each converter runs the kernel of the
// one-value C function over the array, four values at a time where the host
// allows, so the results are those of the C functions bit for bit. Input and
// output may have any alignment; they must not overlap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace fskit::numformat {

// What one foreign value becomes on the host.
enum class HostType { kFloat32, kFloat64, kUint16, kUint32, kQuorRecord };

// A decoded Quor record as the arrays hold it: 13 bytes, no padding.
#pragma pack(push, 1)
struct QuorRecord {
  double mass;
  float intensity;
  uint8_t flags;
};
#pragma pack(pop)
static_assert(sizeof(QuorRecord) == 13);

using ArrayDecoder = void (*)(const unsigned char *in, void *out, size_t count);
using ArrayEncoder = void (*)(const void *in, unsigned char *out, size_t count);

struct ArrayFormat {
  std::string_view name;  // as `fskit convert` names it
  size_t size;            // bytes of one foreign value
  HostType type;
  ArrayDecoder decode;
  ArrayEncoder encode;    // null: the library only decodes this format
};

// Every format, in the order `fskit convert` lists them, then the names of
// the byte-order helpers that the C functions also give.
std::span<const ArrayFormat> arrayFormats();
// The format of that name, or null.
const ArrayFormat *findArrayFormat(std::string_view name);

}  // namespace fskit::numformat
