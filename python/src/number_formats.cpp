// SPDX-License-Identifier: MIT
#include "python/src/number_formats.h"

#include "python/src/errors.h"

namespace py = pybind11;
using fskit::numformat::ArrayFormat;
using fskit::numformat::HostType;

namespace fskit::python {
namespace {

std::string joinedNames() {
  std::string names;
  for (const ArrayFormat &format : numformat::arrayFormats())
    names += (names.empty() ? "" : ", ") + std::string(format.name);
  return names;
}

// What each special pattern gives, as the library's one-value converters do.
constexpr const char *kPatterns = R"(
Formats (bytes per value -> numpy dtype; special patterns):
  vaxf      4 -> float32. VAX F_floating. Exponent 0 gives +-0.0 whatever the
            fraction holds (a dirty zero) and also with the sign bit set (the
            reserved operand gives -0.0); exponents 1 and 2 give denormals
            with the one or two lowest fraction bits dropped; the largest
            magnitude (0x7FFFFFFF as a word, stored FF FF FF 7F) gives +-inf.
            Encoding: |x| >= 2^127, inf and NaN give the largest magnitude,
            |x| < 2^-128 gives zero (sign kept).
  vaxd      8 -> float64. VAX D_floating: the three lowest fraction bits are
            dropped; magnitude 0 gives +-0.0, the largest +-inf, exponent 0
            with a non-zero fraction a tiny double (not zero). Encoding is
            exact for 2^-128 <= |x| < 2^127 and saturates as vaxf does.
  hpshort   2 -> uint16. Big-endian 16-bit word.
  hplong    4 -> uint32. Big-endian 32-bit word.
  hpdouble  8 -> float64. Two big-endian 32-bit halves, each to host order.
  novaf     4 -> float32. Data General Nova single: f/2^24 x 16^(e-64),
            rounded once to the nearest single; beyond the range +-inf,
            below it denormals and +-0.0 (decode only).
  novad     8 -> float64. Nova double: the 56-bit fraction rounded to the
            nearest double, ties to even; never overflows (decode only).
  incos     2 -> float32. INCOS mass word, every value exact (decode only).
  quorinty  2 -> float32. Quor intensity word, 0.5 to 2,146,959,360.
            Encoding drops the sign and twelve lowest fraction bits; below
            0.5 (zero too) gives 0.5, 2^31 and up, inf, NaN the largest.
  quorrec   6 -> record (mass float64, intensity float32, flags uint8),
            packed. Encoding keeps 23 mass fraction bits and flags 0-3.
  novaushort, novaulong: the Nova words, as hpshort and hplong (decode only).
  ieeef, ieeed: the host's own IEEE numbers, copied.)";

}  // namespace

const ArrayFormat &formatNamed(const std::string &name) {
  if (const ArrayFormat *format = numformat::findArrayFormat(name)) return *format;
  raiseBuiltin(PyExc_ValueError, "unknown format '" + name + "' (" + joinedNames() + ")");
}

py::dtype hostDtype(const ArrayFormat &format) {
  switch (format.type) {
    case HostType::kFloat32: return py::dtype("float32");
    case HostType::kFloat64: return py::dtype("float64");
    case HostType::kUint16: return py::dtype("uint16");
    case HostType::kUint32: return py::dtype("uint32");
    case HostType::kQuorRecord: break;
  }
  py::list fields;  // packed: numformat::QuorRecord
  fields.append(py::make_tuple("mass", "<f8"));
  fields.append(py::make_tuple("intensity", "<f4"));
  fields.append(py::make_tuple("flags", "u1"));
  return py::dtype::from_args(fields);
}

py::dict formatInfo(const std::string &name) {
  const ArrayFormat &format = formatNamed(name);
  py::dict info;
  info["size"] = format.size;
  info["dtype"] = hostDtype(format);
  info["encode"] = format.encode != nullptr;
  return info;
}

py::tuple formatNames() {
  py::list names;
  for (const ArrayFormat &format : numformat::arrayFormats()) names.append(std::string(format.name));
  return py::tuple(names);
}

const char *decodeDoc() {
  static const std::string text = std::string(R"(decode(data, format, *, offset=0, count=None, out=None)

Decodes foreign numbers from any buffer (bytes, bytearray, memoryview, a
numpy array, np.memmap of a file) into a new numpy array, or into `out` (a
C-contiguous array of the format's dtype holding exactly the values
decoded). `offset` is in bytes; `count` values are decoded, or all that
follow the offset, which must then be a whole number of values. The work runs
without the interpreter lock, as one loop over the array; every result is
the one the library's one-value converter gives, bit for bit.
ValueError for an unknown format or sizes that do not fit.
)") + kPatterns;
  return text.c_str();
}

const char *encodeDoc() {
  static const std::string text = std::string(R"(encode(values, format, *, out=None)

Encodes an array of values (converted to the format's dtype first) into the
foreign format: a new numpy uint8 array, or `out` (any writable buffer of
exactly the bytes needed). Without the interpreter lock, bit for bit the
library's one-value converters. ValueError for a format the library only
decodes.
)") + kPatterns;
  return text.c_str();
}

}  // namespace fskit::python
