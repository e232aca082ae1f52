// SPDX-License-Identifier: MIT
// Byte swaps of one 2-, 4- or 8-byte value per call, with the converters'
// calling shape (source, destination): the least a one-value-per-call
// interface can cost.
#pragma once

extern "C" {
void floorSwap16(void *source, void *destination);
void floorSwap32(void *source, void *destination);
void floorSwap64(void *source, void *destination);
}
