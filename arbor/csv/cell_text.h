// The text of a cell as the CSV reader hands it out, and ways to read eight of its characters at a
// time.
#ifndef ARBOR_CSV_CELL_TEXT_H
#define ARBOR_CSV_CELL_TEXT_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace arbor::tree {

// NUL-terminated, without other zero bytes. Eight bytes can be read from each of its characters on,
// and from its end on, so that a loop over eight characters at a time needs no special case there.
struct cell_text {
  const char* begin;
  std::size_t length;
};

constexpr std::size_t readable_after_cell = 8;

// Stands for an unknown value where one may be.
constexpr cell_text unknown_cell{nullptr, 0};

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "the first of eight characters is the lowest byte");

// The eight characters from `text` on.
inline std::uint64_t eight_characters(const char* text) {
  std::uint64_t characters = 0;
  std::memcpy(&characters, text, sizeof characters);
  return characters;
}

// Eight characters that end with the first `length` ones, 1 to 8, of `characters`, after zero
// bytes.
inline std::uint64_t first_characters_at_end(std::uint64_t characters, std::size_t length) {
  return characters << (64 - 8 * length);
}

}  // namespace arbor::tree

#endif
