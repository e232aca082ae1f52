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
    array->data = std::malloc(size_t(n) * elemSize);
  }
  array->count = n;
  return array->data != nullptr ? 1 : 0;
}

}  // extern "C"
