// A growable vector of bits, one bit per row of a two-valued column.
//
//   strata::adt::bitmap bits;
//   bits.push_back(true);
//   bits.push_back(false);
//   bool first = bits[0];
#ifndef ARBOR_UTILS_BITMAP_H
#define ARBOR_UTILS_BITMAP_H

#include <memory>

namespace strata::adt {

// Bit i is bit i & 31 of word i >> BASE_log. No index is checked: each must be less than `size`.
//
// A copy shares its bits with the source, but not the length: a bit that is changed in one changes
// in the other too, until one of them has to grow and gets storage of its own. The bits are
// released with the last bitmap that uses them.
class bitmap {
 public:
  static constexpr unsigned int BASE_log = 5;  // 32-bit words

  bitmap() = default;
  bitmap(const bitmap&) = default;
  bitmap& operator=(const bitmap&) = default;
  virtual ~bitmap() = default;

  // Makes room for `bits` bits in total, rounded up to whole words; the additional bits are false.
  // The largest capacity is 4294967295. Throws no_storage "out of memory", a std::runtime_error;
  // nothing is changed then.
  virtual void reserve(unsigned int bits);

  // Extends the bitmap to `bits` bits. Bits that there was room for already have the value that is
  // stored there, those that `reserve` adds are false. Throws what `reserve` throws. For a smaller
  // length it shortens the bitmap and then throws std::runtime_error "bitmap::resize cannot deal
  // with shortening of bitmaps".
  virtual void resize(unsigned int bits);

  virtual unsigned int size() const { return length; }  // in bits
  virtual unsigned int capacity() { return cap; }       // in bits

  // Appends one bit. A full bitmap grows by half of its capacity, at least by a word. A false bit
  // is not written: the new bit has the value stored there, which is false unless the bitmap was
  // shortened or shares its bits. Throws what `reserve` throws, and std::runtime_error "bitmap
  // maximum length exceeded." at the largest capacity; nothing is changed then.
  virtual void push_back(bool bit);

  virtual bool operator[](unsigned int i) const {
    return (words[i >> BASE_log] >> (i & 31U) & 1U) != 0;
  }
  virtual void set(unsigned int i) { words[i >> BASE_log] |= 1U << (i & 31U); }
  virtual bool get(unsigned int i) { return (*this)[i]; }

  // Clears the whole word that contains bit i, so up to 31 neighbours as well.
  virtual void reset(unsigned int i) { words[i >> BASE_log] = 0; }

  // Combines each bit with that of `other` by "and" or "or". Returns false, and changes nothing, if
  // the lengths differ.
  virtual bool and_op(const bitmap& other);
  virtual bool or_op(const bitmap& other);

  // Makes all bits false; length and capacity stay the same.
  virtual void clear();

  // The words of the bits, for loops over many of them. Null before the first reservation; no
  // longer valid once the bitmap has grown.
  const unsigned int* data() const { return words.get(); }
  unsigned int* data() { return words.get(); }
  // Returns how many words the bits take.
  unsigned int word_count() const { return words_for(length); }

  // Makes the unused bits of the last word false. Call it after writing whole words to data(), so
  // that false bits can be appended.
  void clear_behind();

 private:
  static unsigned int words_for(unsigned int bits) {
    return (bits >> BASE_log) + ((bits & 31U) != 0 ? 1 : 0);
  }

  std::shared_ptr<unsigned int[]> words;
  unsigned int length = 0;
  unsigned int cap = 0;
};

}  // namespace strata::adt

#endif
