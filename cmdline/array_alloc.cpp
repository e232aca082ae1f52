// SPDX-License-Identifier: MIT
// kwaArrayAlloc: sizing a caller's growable array record.
#include <cstdlib>

#include <fskit/cmdline.h>

extern "C" {

FSKIT_API int32_t kwaArrayAlloc(KwaArray *array, int32_t n, uint32_t elemSize) {
  if (array == nullptr) return 0;
  if (n == 0) return 1;
  // Capacity is counted in elements; a smaller request (a negative one too)
  // never frees and only sets the count.
  if (n > array->capacity) {
    std::free(array->data);
    array->capacity = n;
    array->elemSize = elemSize;
    // Where size_t is 32 bits the product can wrap: a buffer smaller than
    // the capacity claims would be worse than none.
    size_t bytes = 0;
    array->data = __builtin_mul_overflow(size_t(n), size_t(elemSize), &bytes)
                      ? nullptr
                      : std::malloc(bytes);
  }
  array->count = n;
  return array->data != nullptr ? 1 : 0;
}

}  // extern "C"
