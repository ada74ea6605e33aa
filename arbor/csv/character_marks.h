// Finds the characters of a text that mean something in separated values, 64 at a time.
#ifndef ARBOR_CSV_CHARACTER_MARKS_H
#define ARBOR_CSV_CHARACTER_MARKS_H

#include <cstddef>
#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "arbor/csv/csv_form.h"

namespace arbor::tree {

constexpr std::size_t marked_at_once = 64;

// Which of 64 characters mean something: bit i stands for character i.
struct character_marks {
  std::uint64_t separators;  // delimiters, quotes, CR, LF and NUL
  std::uint64_t blanks;
};

// The characters that differ from file to file.
struct marked_characters {
  explicit marked_characters(const csv_form& form)
      : delimiter(form.delimiter),
        // Where there is no blank, a NUL in its place is no mark that is not there already.
        space(form.is_blank(' ') ? ' ' : '\0'),
        tab(form.is_blank('\t') ? '\t' : '\0') {}

  char delimiter;
  char space;
  char tab;
};

// 64 characters must be readable.
inline character_marks marks_in(const char* text, const marked_characters& marked) {
  character_marks marks{0, 0};
#ifdef __SSE2__
  for (unsigned int i = 0; i < marked_at_once; i += sizeof(__m128i)) {
    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
    const auto are = [&](char c) { return _mm_cmpeq_epi8(characters, _mm_set1_epi8(c)); };
    const auto bits = [&](__m128i found) {
      return static_cast<std::uint64_t>(_mm_movemask_epi8(found)) << i;
    };
    const __m128i ends = _mm_or_si128(_mm_or_si128(are('\n'), are('\r')), are('\0'));
    marks.separators |= bits(_mm_or_si128(ends, _mm_or_si128(are(marked.delimiter), are('"'))));
    marks.blanks |= bits(_mm_or_si128(are(marked.space), are(marked.tab)));
  }
#else
  for (unsigned int i = 0; i < marked_at_once; ++i) {
    const char c = text[i];
    const bool separates = c == marked.delimiter || c == '"' || c == '\r' || c == '\n' || c == '\0';
    const bool is_blank = c == marked.space || c == marked.tab;
    marks.separators |= static_cast<std::uint64_t>(separates) << i;
    marks.blanks |= static_cast<std::uint64_t>(is_blank) << i;
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
