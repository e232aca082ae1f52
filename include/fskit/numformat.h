/* SPDX-License-Identifier: MIT */
/* fskit numformat: single values between the host's IEEE numbers and the
 * formats of older computers and instruments (DEC VAX F and D, HP and Data
 * General Nova words, Nova floating point, the INCOS mass word and the Quor
 * intensity word, mass word and six-byte record).
 *
 * Each call converts one value from `source` to `destination` and returns
 * nothing. Unless a function says otherwise, a null destination means "in
 * place": the result is written over the source, and source and destination
 * may be the same address. A null source does nothing. The functions keep no
 * state, allocate nothing and report nothing; any thread may call them. The
 * VAX conversions are integer bit work and do not depend on the floating-point
 * rounding mode or exception masks. Names on one line are one function. */
#ifndef FSKIT_NUMFORMAT_H
#define FSKIT_NUMFORMAT_H

#include <stdint.h>
#include <fskit/export.h>

FSKIT_BEGIN_DECLS

/* IEEE single (4 bytes) to VAX F. Exponents 254 and 255 (2^127 and more,
 * infinities, NaNs) give the largest VAX magnitude; values below 2^-128 give
 * zero; denormals from 2^-128 up keep every bit. The sign is always kept. */
FSKIT_API void encodeVaxFloat(void *source, void *destination);
/* VAX F to IEEE single. Exponent 0 gives zero, exponents 1 and 2 denormals
 * (the one or two lowest fraction bits dropped), the largest VAX magnitude
 * infinity; everything else is exact. */
FSKIT_API void decodeVaxFloat(void *source, void *destination);

/* IEEE double (8 bytes) to VAX D, exact for 2^-128 <= |x| < 2^127. Outside
 * that range the value saturates as encodeVaxFloat() does: |x| >= 2^127,
 * infinities and NaNs give the largest VAX magnitude, smaller values and
 * denormals give zero (with the sign bit kept). */
FSKIT_API void encodeVaxDouble(void *source, void *destination);
/* VAX D to IEEE double: the three lowest VAX fraction bits are dropped; the
 * largest VAX magnitude gives infinity, a word whose bits are all zero but the
 * sign gives +-0.0, exponent 0 with a non-zero fraction a tiny double. */
FSKIT_API void decodeVaxDouble(void *source, void *destination);

/* Copies 4 (8) bytes. A null destination does nothing. */
FSKIT_API void decodeIeeeFloat(const void *source, void *destination);
FSKIT_API void encodeIeeeFloat(const void *source, void *destination);
FSKIT_API void decodeIeeeDouble(const void *source, void *destination);
FSKIT_API void encodeIeeeDouble(const void *source, void *destination);

/* Big-endian 16-bit (32-bit) word to the host's order and back: on this
 * little-endian host the bytes are swapped (reversed). */
FSKIT_API void decodeHpShort(void *source, void *destination);
FSKIT_API void encodeHpShort(void *source, void *destination);
FSKIT_API void decodeNovaUshort(void *source, void *destination);
FSKIT_API void decodeHpLong(void *source, void *destination);
FSKIT_API void encodeHpLong(void *source, void *destination);
FSKIT_API void decodeNovaUlong(void *source, void *destination);

/* An HP 64-bit word as two big-endian 32-bit halves, each turned to the host's
 * order in place, the halves keeping their order. decodeHpDouble() has no in-place
 * form: with a null destination it does nothing. */
FSKIT_API void decodeHpDouble(const void *source, void *destination);
FSKIT_API void encodeHpDouble(void *source, void *destination);

/* Never look at the value (which may be null): every pattern is valid; 1. */
FSKIT_API int validFloat(const void *value);
FSKIT_API int validDouble(const void *value);

/* Nova single (4 bytes) to IEEE single: (-1)^s x f / 2^24 x 16^(e-64),
 * rounded to the nearest single (beyond the range: infinity). The Nova
 * conversions round in the caller's floating-point rounding mode, which is
 * to nearest unless the caller changed it. */
FSKIT_API void decodeNovaFloat(void *source, void *destination);
/* Nova double (8 bytes) to IEEE double: the 56-bit fraction rounded to the
 * nearest double, ties to even; never overflows. */
FSKIT_API void decodeNovaDouble(void *source, void *destination);

/* INCOS mass word (2 bytes, host order) to an IEEE single. With a null
 * destination it does nothing (the result does not fit over the source). */
FSKIT_API void decodeIncosMagMass(const void *source, void *destination);

/* Quor intensity word (2 bytes, host order) to an IEEE single; in place the
 * source must have room for the 4 bytes of the result. */
FSKIT_API void decodeQuorInty(void *source, void *destination);
/* IEEE single to a Quor intensity word (2 bytes written; in place over the
 * first two bytes of the source). The sign is ignored and the twelve lowest
 * fraction bits are dropped. Out of range the word saturates: magnitudes below
 * 0.5 (zero among them) give the smallest word (0.5), 2^31 and above,
 * infinities and NaNs the largest (2,146,959,360). */
FSKIT_API void encodeQuorInty(void *source, void *destination);

/* Decodes the six-byte record (intensity word, then mass word at offset 2,
 * any alignment) into *mass, *intensity and *flags (0 to 3). A null
 * `intensity` or `flags` is skipped; so is a null `mass` (the other two are
 * still filled). A null record does nothing. */
FSKIT_API void decodeQuorMassInty(const void *record, double *mass, float *intensity,
                                  uint8_t *flags);
/* Encodes mass, intensity and the two low bits of *flags (0 when null) into
 * the six-byte record, mass word first. The mass keeps 23 fraction bits
 * (truncated, sign ignored) and saturates as the intensity does: below 0.5
 * gives 0.5, 2^31 and above, infinities and NaNs the largest mass word. A null
 * mass, intensity or record writes nothing. */
FSKIT_API void encodeQuorMassInty(const double *mass, const float *intensity,
                                  const uint8_t *flags, void *record);

FSKIT_END_DECLS

#endif
