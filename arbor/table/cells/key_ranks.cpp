#include "arbor/table/cells/key_ranks.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <utility>

namespace arbor::tree {

namespace {

using key = std::uint32_t;

// Adds up the bits in groups of two, four and eight: not every processor that the library is built
// for has an instruction that counts bits.
key bit_count(std::uint64_t bits) {
  bits -= bits >> 1U & 0x5555555555555555U;
  bits = (bits & 0x3333333333333333U) + (bits >> 2U & 0x3333333333333333U);
  return static_cast<key>(((bits + (bits >> 4U)) & 0x0F0F0F0F0F0F0F0FU) * 0x0101010101010101U >>
                          56U);
}

// For keys of a small range: a table of all ranks. It stays in the processor's nearest caches.
class rank_table {
 public:
  static constexpr key most_keys = 1U << 17U;

  rank_table(key least, key greatest) : first(least), ranks(greatest - least + 1, 0) {}

  void add(key k) { ranks[k - first] = 1; }

  std::vector<key> count() {
    std::vector<key> keys;
    for (std::size_t i = 0; i < ranks.size(); ++i) {
      if (ranks[i] == 0) continue;
      keys.push_back(first + static_cast<key>(i));
      ranks[i] = static_cast<key>(keys.size());
    }
    return keys;
  }

  key rank(key k) const { return ranks[k - first]; }

 private:
  key first;
  std::vector<key> ranks;
};

// For dense keys of any range. Each key from the least to the greatest has a bit, which is set if
// the key occurs; the rank of a key is the number of set bits up to its own. The words take at most
// four bytes a row, so that for most tables they stay in the processor's caches.
class presence_ranks {
 public:
  presence_ranks(key least, key greatest)
      : first(least), words((greatest - least) / 64 + 1, {0, 0}) {}

  void add(key k) { words[(k - first) / 64].bits |= 1ULL << (k - first) % 64; }

  std::vector<key> count() {
    key distinct = 0;
    for (word& w : words) {
      w.before = distinct;
      distinct += bit_count(w.bits);
    }
    std::vector<key> keys;
    keys.reserve(distinct);
    for (std::size_t i = 0; i < words.size(); ++i) {
      for (std::uint64_t bits = words[i].bits; bits != 0; bits &= bits - 1) {
        keys.push_back(first + static_cast<key>(64 * i) + static_cast<key>(__builtin_ctzll(bits)));
      }
    }
    return keys;
  }

  // Of a key that occurs.
  key rank(key k) const {
    const word& w = words[(k - first) / 64];
    return w.before + bit_count(w.bits << (63 - (k - first) % 64));
  }

 private:
  struct word {
    std::uint64_t bits;
    key before;  // how many keys there are in the words before this one
  };

  key first;
  std::vector<word> words;
};

struct row_key {
  key value;
  std::uint32_t row;
};

// A radix sort: one counting sort for each eleven bits of the keys, the lowest first.
void sort_by_key(std::vector<row_key>& rows) {
  constexpr unsigned int digit_bits = 11;
  std::vector<row_key> sorted(rows.size());
  for (unsigned int shift = 0; shift < 32; shift += digit_bits) {
    const auto digit = [shift](const row_key& r) {
      return r.value >> shift & ((1U << digit_bits) - 1);
    };
    std::array<std::size_t, 1U << digit_bits> place{};
    for (const row_key& r : rows) ++place[digit(r)];
    std::size_t before = 0;
    for (std::size_t& p : place) before += std::exchange(p, before);
    for (const row_key& r : rows) sorted[place[digit(r)]++] = r;
    rows.swap(sorted);
  }
}

// What the known keys of some rows range over.
struct key_range {
  key least = unknown_key;
  key greatest = unknown_key;

  bool is_empty() const { return greatest == unknown_key; }
  bool is_small() const { return greatest - least < rank_table::most_keys; }
  // With so many keys a row, the bits and counts of all keys still take less memory and time than
  // sorting the rows.
  bool is_dense(std::size_t rows) const {
    constexpr std::size_t keys_per_row = 16;
    return (greatest - least) / keys_per_row <= rows;
  }
};

key_range range_of(cell_blocks<key>& keys) {
  key least = std::numeric_limits<key>::max();
  key greatest = unknown_key;
  keys.for_each_block([&](const key* k, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      greatest = std::max(greatest, k[i]);
      least = std::min(least, k[i] - 1);  // less 1, the unknown key is the greatest number
    }
  });
  return {least + 1, greatest};
}

template <class Ranks>
void add_keys(cell_blocks<key>& keys, Ranks& ranks) {
  keys.for_each_block([&](const key* k, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (k[i] != unknown_key) ranks.add(k[i]);
    }
  });
}

template <class Ranks>
std::vector<key> rank_dense(cell_blocks<key>& keys, const key_range& range) {
  Ranks ranks(range.least, range.greatest);
  add_keys(keys, ranks);
  std::vector<key> distinct = ranks.count();
  keys.for_each_block([&](key* k, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (k[i] != unknown_key) k[i] = ranks.rank(k[i]);
    }
  });
  return distinct;
}

std::vector<key> rank_sparse(cell_blocks<key>& keys) {
  std::vector<row_key> rows;
  rows.reserve(keys.size());
  std::uint32_t row = 0;
  keys.for_each_block([&](const key* k, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, ++row) {
      if (k[i] != unknown_key) rows.push_back({k[i], row});
    }
  });
  sort_by_key(rows);
  std::size_t distinct = 0;
  for (std::size_t i = 0; i < rows.size(); ++i)
    distinct += i == 0 || rows[i].value != rows[i - 1].value ? 1 : 0;
  std::vector<key> sorted;
  sorted.reserve(distinct);
  std::vector<key> ranks(keys.size(), unknown_key);
  for (const row_key& r : rows) {
    if (sorted.empty() || sorted.back() != r.value) sorted.push_back(r.value);
    ranks[r.row] = static_cast<key>(sorted.size());
  }
  auto next = ranks.begin();
  keys.for_each_block([&](key* k, std::size_t count) {
    std::copy_n(next, count, k);
    next += static_cast<std::ptrdiff_t>(count);
  });
  return sorted;
}

}  // namespace

std::vector<std::uint32_t> rank_keys(cell_blocks<std::uint32_t>& keys) {
  const key_range range = range_of(keys);
  if (range.is_empty()) return {};
  if (!range.is_dense(keys.size())) return rank_sparse(keys);
  return range.is_small() ? rank_dense<rank_table>(keys, range)
                          : rank_dense<presence_ranks>(keys, range);
}

std::vector<std::uint32_t> distinct_keys(cell_blocks<std::uint32_t>& keys) {
  const key_range range = range_of(keys);
  if (range.is_empty()) return {};
  if (range.is_dense(keys.size())) {
    presence_ranks present(range.least, range.greatest);
    add_keys(keys, present);
    return present.count();
  }
  std::vector<key> sorted;
  sorted.reserve(keys.size());
  keys.for_each_block([&](const key* k, std::size_t count) {
    std::remove_copy(k, k + count, std::back_inserter(sorted), unknown_key);
  });
  std::sort(sorted.begin(), sorted.end());
  sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
  return sorted;
}

}  // namespace arbor::tree
