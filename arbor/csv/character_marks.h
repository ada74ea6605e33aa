// Finds the characters of a text that mean something in comma-separated values, 64 at a time.
#ifndef ARBOR_CSV_CHARACTER_MARKS_H
#define ARBOR_CSV_CHARACTER_MARKS_H

#include <cstddef>
#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace arbor::tree {

constexpr std::size_t marked_at_once = 64;

// Bit i is set if character i of `text` is a comma, a quote, CR, LF or NUL. 64 characters must be
// readable.
inline std::uint64_t separator_marks(const char* text) {
  std::uint64_t marks = 0;
#ifdef __SSE2__
  for (unsigned int i = 0; i < marked_at_once; i += sizeof(__m128i)) {
    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
    const auto are = [&](char c) { return _mm_cmpeq_epi8(characters, _mm_set1_epi8(c)); };
    const __m128i ends = _mm_or_si128(_mm_or_si128(are('\n'), are('\r')), are('\0'));
    const __m128i all = _mm_or_si128(ends, _mm_or_si128(are(','), are('"')));
    marks |= static_cast<std::uint64_t>(_mm_movemask_epi8(all)) << i;
  }
#else
  for (unsigned int i = 0; i < marked_at_once; ++i) {
    const char c = text[i];
    const bool is_marked = c == ',' || c == '"' || c == '\r' || c == '\n' || c == '\0';
    marks |= static_cast<std::uint64_t>(is_marked) << i;
  }
#endif
  return marks;
}

// The number of the lowest bit that is set.
inline std::size_t first_mark(std::uint64_t marks) {
  return static_cast<std::size_t>(__builtin_ctzll(marks));
}

}  // namespace arbor::tree

#endif
