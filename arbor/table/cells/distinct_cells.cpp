// bytes of distinct cells:  known | unknown | texts before zero + 1, or 0 | words of numbers |
//                           for each word: place | bits | texts | for each text: count | length |
//                           characters
// place: less that of the word before, rotated to the right by five bits
// bits: 0 to 7 | number of each, or 8 | eight bytes
//
// All but characters and the eight bytes are in groups of seven bits, the lowest first. All groups
// but the last one have the highest bit set. The rotation removes the five bits that say how many
// decimals there are, which is the same for most numbers of a column.

#include "arbor/table/cells/distinct_cells.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "arbor/table/cells/key_ranks.h"
#include "arbor/table/cells/secret_hash.h"

namespace arbor::tree {

namespace {

constexpr plain_number zeros_end = 32;  // zero with 0 to 31 decimals

bool is_plain_zero(plain_number number) {
  return number >= 0 && number < zeros_end;
}

// The distinct entries of a column, in the order in which they first come.
class distinct_entries {
 public:
  void add(plain_number entry) {
    std::size_t slot = first_slot(entry);
    while (const std::uint32_t number = slots[slot]) {
      if (entries[number - 1] == entry) return;
      slot = (slot + 1) & (slots.size() - 1);
    }
    entries.push_back(entry);
    slots[slot] = static_cast<std::uint32_t>(entries.size());
    if (2 * entries.size() >= slots.size()) grow();
  }

  const std::vector<plain_number>& all() const { return entries; }

 private:
  std::size_t first_slot(plain_number entry) const {
    return static_cast<std::size_t>(secret_hash()(static_cast<std::uint64_t>(entry)) >> slot_shift);
  }

  void grow() {
    --slot_shift;
    slots.assign(2 * slots.size(), 0);
    for (std::uint32_t number = 1; number <= entries.size(); ++number) {
      std::size_t slot = first_slot(entries[number - 1]);
      while (slots[slot] != 0) slot = (slot + 1) & (slots.size() - 1);
      slots[slot] = number;
    }
  }

  std::vector<plain_number> entries;
  std::vector<std::uint32_t> slots = std::vector<std::uint32_t>(8, 0);  // 0: free
  unsigned int slot_shift = 64 - 3;
};

number_set set_of(std::vector<plain_number> numbers) {
  std::sort(numbers.begin(), numbers.end(), [](plain_number a, plain_number b) {
    return number_set::place_of(a) < number_set::place_of(b);
  });
  number_set all;
  for (const plain_number number : numbers) all.add(number);
  return all;
}

void find_integers(column_cells& cells, distinct_cells& found) {
  for (const std::uint32_t key : distinct_keys(cells.keys())) {
    found.numbers.add(plain_integer(integer_of(key)));
    if (integer_of(key) == 0) found.texts_before_zero = 0;
  }
}

void find_numbers(column_cells& cells, distinct_cells& found) {
  distinct_entries entries;
  cells.numbers().for_each_block([&](const plain_number* of_rows, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      if (!column_cells::is_unknown(of_rows[i])) entries.add(of_rows[i]);
    }
  });
  std::vector<plain_number> numbers;
  std::uint32_t texts = 0;
  for (const plain_number entry : entries.all()) {
    if (column_cells::is_text(entry)) {
      ++texts;
      continue;
    }
    numbers.push_back(entry);
    if (is_plain_zero(entry)) found.texts_before_zero = std::min(found.texts_before_zero, texts);
  }
  found.numbers = set_of(std::move(numbers));
}

// Makes numbers of the texts that are plain ones.
void separate_numbers(const column_cells& cells, distinct_cells& found) {
  const text_dictionary texts = std::exchange(found.texts, {});
  const std::vector<std::size_t> counts = std::exchange(found.counts.texts, {});
  readable_copy copy;
  std::vector<plain_number> numbers;
  for (unsigned int code = 1; code <= texts.size(); ++code) {
    const cell_text text = copy.of(texts.view(code));
    const plain_number number = cells.number_to_keep(text);
    if (number == no_plain_number) {
      found.texts.code_of(text);
      found.counts.texts.resize(found.texts.size());
      found.counts.texts.push_back(counts[code]);
    } else {
      numbers.push_back(number);
      if (is_plain_zero(number))
        found.texts_before_zero = std::min(found.texts_before_zero, found.texts.size());
    }
  }
  found.numbers = set_of(std::move(numbers));
}

void append_number(std::uint64_t number, std::vector<char>& to) {
  for (; number >= 0x80; number >>= 7U) to.push_back(static_cast<char>(number | 0x80U));
  to.push_back(static_cast<char>(number));
}

std::uint64_t read_number(const char*& next) {
  std::uint64_t number = 0;
  for (unsigned int shift = 0;; shift += 7) {
    const auto group = static_cast<unsigned char>(*next++);
    number |= static_cast<std::uint64_t>(group & 0x7FU) << shift;
    if ((group & 0x80U) == 0) return number;
  }
}

// Of more bits than these all are written, and their number otherwise.
constexpr std::uint64_t few_bits = 8;

void append_words(const std::vector<number_set::word>& words, std::vector<char>& to) {
  append_number(words.size(), to);
  std::uint64_t last = 0;
  for (const number_set::word& word : words) {
    const std::uint64_t distance = word.place - std::exchange(last, word.place);
    append_number(distance >> 5U | distance << 59U, to);
    const auto count = static_cast<std::uint64_t>(__builtin_popcountll(word.bits));
    append_number(std::min(count, few_bits), to);
    if (count < few_bits) {
      for (std::uint64_t bits = word.bits; bits != 0; bits &= bits - 1)
        append_number(static_cast<std::uint64_t>(__builtin_ctzll(bits)), to);
    } else {
      const auto* const first = reinterpret_cast<const char*>(&word.bits);
      to.insert(to.end(), first, first + sizeof word.bits);
    }
  }
}

std::vector<number_set::word> read_words(const char*& next) {
  std::vector<number_set::word> words(read_number(next));
  std::uint64_t last = 0;
  for (number_set::word& word : words) {
    const std::uint64_t rotated = read_number(next);
    last += rotated << 5U | rotated >> 59U;
    word = {last, 0};
    std::uint64_t count = read_number(next);
    if (count == few_bits) {
      word.bits = eight_characters(next);
      next += sizeof word.bits;
      continue;
    }
    for (; count > 0; --count) word.bits |= 1ULL << read_number(next);
  }
  return words;
}

}  // namespace

distinct_cells distinct_ones(column_cells& cells, bool with_numbers) {
  distinct_cells found;
  found.counts = cells.counts();
  found.texts = cells.texts();
  switch (cells.kept_as()) {
    case column_cells::form::integers:
      find_integers(cells, found);
      break;
    case column_cells::form::numbers:
      find_numbers(cells, found);
      break;
    case column_cells::form::texts:
      if (with_numbers) separate_numbers(cells, found);
      break;
  }
  return found;
}

void add_later(distinct_cells& cells, const distinct_cells& later) {
  cells.numbers.unite(later.numbers);

  const bool has_zero = cells.texts_before_zero != distinct_cells::no_zero;
  readable_copy copy;
  for (unsigned int i = 0;; ++i) {
    if (!has_zero && i == later.texts_before_zero) cells.texts_before_zero = cells.texts.size();
    if (i == later.texts.size()) break;
    const unsigned int code = cells.texts.code_of(copy.of(later.texts.view(i + 1)));
    cells.counts.texts.resize(cells.texts.size() + 1ULL, 0);
    cells.counts.texts[code] += later.counts.texts[i + 1];
  }
  cells.counts.known += later.counts.known;
  cells.counts.unknown += later.counts.unknown;
}

void append_bytes(const distinct_cells& cells, std::vector<char>& to) {
  append_number(cells.counts.known, to);
  append_number(cells.counts.unknown, to);
  append_number(static_cast<std::uint32_t>(cells.texts_before_zero + 1), to);
  append_words(cells.numbers.words(), to);
  append_number(cells.texts.size(), to);
  for (unsigned int code = 1; code <= cells.texts.size(); ++code) {
    const std::string_view text = cells.texts.view(code);
    append_number(cells.counts.texts[code], to);
    append_number(text.size(), to);
    to.insert(to.end(), text.begin(), text.end());
  }
}

distinct_cells read_distinct_cells(const char*& next) {
  distinct_cells cells;
  cells.counts.known = read_number(next);
  cells.counts.unknown = read_number(next);
  cells.texts_before_zero = static_cast<std::uint32_t>(read_number(next)) - 1;
  cells.numbers = number_set(read_words(next));
  const std::uint64_t texts = read_number(next);
  if (texts > 0) cells.counts.texts.push_back(0);
  for (std::uint64_t i = 0; i < texts; ++i) {
    cells.counts.texts.push_back(read_number(next));
    const std::uint64_t length = read_number(next);
    cells.texts.code_of(cell_text{next, length});
    next += length;
  }
  return cells;
}

}  // namespace arbor::tree
