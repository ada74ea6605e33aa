// Hashes with a secret that each process draws for itself. Whoever writes a table cannot choose
// numbers or texts that collide, and loading takes the same time for any of them. No result may
// depend on a hash.
//
//   std::unordered_set<std::uint64_t, secret_hash> numbers;
//   std::uint64_t hash = secret_hash()(text);
#ifndef ARBOR_TABLE_CELLS_SECRET_HASH_H
#define ARBOR_TABLE_CELLS_SECRET_HASH_H

#include <cstdint>

#include "arbor/csv/cell_text.h"

namespace arbor::tree {

// Drawn before main begins, so that no hash has to ask whether that has been done.
struct hash_secret {
  std::uint64_t low_factor;
  std::uint64_t high_factor;
  std::uint64_t text_start;
};
extern const hash_secret process_secret;

struct secret_hash {
  // The upper half of a x modulo 2^128, for a secret factor a of 128 bits. The highest bits of any
  // two numbers, however they are chosen, are equal with at most twice the chance of random ones:
  // M. Dietzfelbinger et al., "A reliable randomized algorithm for the closest-pair problem",
  // Journal of Algorithms 25 (1997), 19-51.
  std::uint64_t operator()(std::uint64_t number) const {
    return upper_half(product(number, process_secret.low_factor)) +
           number * process_secret.high_factor;
  }

  // Takes in eight characters at a time. The upper half of a product depends on the secret in each
  // bit, so nobody can choose two differences that cancel each other out.
  std::uint64_t operator()(cell_text text) const {
    std::uint64_t hash = process_secret.text_start ^ text.length;
    std::size_t i = 0;
    for (; i + 8 < text.length; i += 8) hash = folded(hash ^ eight_characters(text.begin + i));
    if (i == text.length) return hash;
    return folded(hash ^
                  first_characters_at_end(eight_characters(text.begin + i), text.length - i));
  }

 private:
  __extension__ using whole_product = unsigned __int128;

  static whole_product product(std::uint64_t a, std::uint64_t b) {
    return static_cast<whole_product>(a) * b;
  }
  static std::uint64_t upper_half(whole_product p) { return static_cast<std::uint64_t>(p >> 64U); }
  static std::uint64_t folded(std::uint64_t number) {
    const whole_product p = product(number, process_secret.low_factor);
    return upper_half(p) ^ static_cast<std::uint64_t>(p);
  }
};

}  // namespace arbor::tree

#endif
