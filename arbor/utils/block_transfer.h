// How the streams transfer an array: in one call of the device if that is less than 2^31 - 1 bytes.
// Internal to the streams.
#ifndef ARBOR_UTILS_BLOCK_TRANSFER_H
#define ARBOR_UTILS_BLOCK_TRANSFER_H

namespace strata::inpout {

// Calls `transfer(first, bytes)` once for all `count` elements, or once for each element in order
// when they have 2^31 - 1 bytes or more (rounded down to a multiple of the element's size).
template <class T, class Transfer>
void transfer_block(T* elements, unsigned int count, Transfer transfer) {
  constexpr unsigned int width = sizeof(T);
  static_assert(width == 1 || width == 2 || width == 4 || width == 8, "a primitive width");
  if (count < 0x7FFFFFFFU / width) {
    transfer(elements, count * width);
  } else {
    for (unsigned int i = 0; i < count; ++i) transfer(elements + i, width);
  }
}

}  // namespace strata::inpout

#endif
