// Finds the characters of a text that mean something in comma-separated values, sixteen at a time.
#ifndef ARBOR_CSV_CHARACTER_MARKS_H
#define ARBOR_CSV_CHARACTER_MARKS_H

#include <cstddef>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace arbor::tree {

constexpr std::size_t marked_at_once = 16;

// Bit i is set if character i of `text` is a comma, a quote, CR, LF or NUL. Sixteen characters must
// be readable.
inline unsigned int separator_marks(const char* text) {
#ifdef __SSE2__
  const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
  const auto are = [&](char c) { return _mm_cmpeq_epi8(characters, _mm_set1_epi8(c)); };
  const __m128i ends = _mm_or_si128(_mm_or_si128(are('\n'), are('\r')), are('\0'));
  const __m128i all = _mm_or_si128(ends, _mm_or_si128(are(','), are('"')));
  return static_cast<unsigned int>(_mm_movemask_epi8(all));
#else
  unsigned int marks = 0;
  for (unsigned int i = 0; i < marked_at_once; ++i) {
    const char c = text[i];
    if (c == ',' || c == '"' || c == '\r' || c == '\n' || c == '\0') marks |= 1U << i;
  }
  return marks;
#endif
}

// The number of the lowest bit that is set.
inline std::size_t first_mark(unsigned int marks) {
  return static_cast<std::size_t>(__builtin_ctz(marks));
}

}  // namespace arbor::tree

#endif
