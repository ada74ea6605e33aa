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

// Bit i is bit i & 31 of word i >> BASE_log. No index is checked.
//
// A copy shares the bits with its source, not the length: what is written through one is read
// through the other, until one of them has to grow; that one then has storage of its own. The last
// owner frees the bits.
class bitmap {
 public:
  static constexpr unsigned int BASE_log = 5;  // 32-bit words

  bitmap() = default;
  bitmap(const bitmap&) = default;
  bitmap& operator=(const bitmap&) = default;
  virtual ~bitmap() = default;

  // Makes room for `bits` bits in all, in whole words; the bits gained read as false. The largest
  // capacity is 4294967295. Throws no_storage, a std::runtime_error, "out of memory" when there is
  // none; nothing is changed then.
  virtual void reserve(unsigned int bits);

  // Lengthens to `bits` bits, reserving for them; bits that the storage already held keep their
  // value. A smaller length is taken and then refused: the bitmap is shortened and
  // std::runtime_error is thrown.
  virtual void resize(unsigned int bits);

  virtual unsigned int size() const { return length; }
  virtual unsigned int capacity() { return cap; }

  // Appends one bit, growing by half of the capacity, at least a word. A false bit is not written:
  // it is what the storage holds there, false unless the bitmap was shortened or shares its bits.
  // Throws std::runtime_error as `reserve` does, or when the largest capacity is used up.
  virtual void push_back(bool bit);

  virtual bool operator[](unsigned int i) const {
    return (words[i >> BASE_log] >> (i & 31U) & 1U) != 0;
  }
  virtual void set(unsigned int i) { words[i >> BASE_log] |= 1U << (i & 31U); }
  virtual bool get(unsigned int i) { return (*this)[i]; }

  // Clears the whole word that holds bit i, its 31 neighbours included.
  virtual void reset(unsigned int i) { words[i >> BASE_log] = 0; }

  // Combines every word in use with the other's. Returns false, and changes nothing, when the
  // lengths differ.
  virtual bool and_op(const bitmap& other);
  virtual bool or_op(const bitmap& other);

  // Makes all bits in use false; length and capacity stay.
  virtual void clear();

  // The storage, for loops over many bits; null before the first reservation, and stale once the
  // bitmap has grown.
  const unsigned int* data() const { return words.get(); }
  unsigned int* data() { return words.get(); }
  // How many words hold the bits in use.
  unsigned int word_count() const { return words_for(length); }

  // Makes the bits of the last word behind those in use false, so that false bits can be appended.
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
