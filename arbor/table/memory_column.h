// A column of a table in memory, which stays the caller's: numbers, or texts by their numbers.
//
//   const std::vector<double> prices{1.5, 2.25};
//   memory_column column{"price", numbers_of(prices)};
//   const std::vector<std::int8_t> codes{0, 1, -1, 0};
//   memory_column colour{"colour", numbers_of(codes)};
//   colour.texts = {"red", "blue"};   // red, blue, unknown, red
#ifndef ARBOR_TABLE_MEMORY_COLUMN_H
#define ARBOR_TABLE_MEMORY_COLUMN_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace arbor::tree {

// Numbers of one type at equal distances.
struct number_span {
  enum class type { int8, int16, int32, int64, uint8, uint16, uint32, uint64, float32, float64 };

  type of;
  const void* first = nullptr;  // need not be aligned
  std::size_t count = 0;
  std::ptrdiff_t stride = 0;  // in bytes, from one number to the next
};

struct memory_column {
  std::string name;
  // One for each row. Not a number, among floats, is the unknown value.
  number_span numbers;
  // If there are texts, the numbers are integers and say which of them the row has, from 0 on; any
  // other number is the unknown value. A text means what it means as a cell of a CSV file: it may
  // be a number, or stand for the unknown value, and blanks around it are no part of it.
  std::optional<std::vector<std::string>> texts;
  // Bytes, one for each row: where one is not 0, the value is unknown. Null if none is.
  const unsigned char* unknown = nullptr;
  std::ptrdiff_t unknown_stride = 1;

  bool is_unknown(std::size_t row) const {
    return unknown != nullptr && unknown[static_cast<std::ptrdiff_t>(row) * unknown_stride] != 0;
  }
};

// The type of an integer of up to eight bytes, a float or a double.
template <class Number>
constexpr number_span::type type_of_number() {
  using type = number_span::type;
  static_assert(std::is_arithmetic_v<Number> && sizeof(Number) <= 8);
  constexpr std::size_t size = sizeof(Number);
  if constexpr (std::is_floating_point_v<Number>) return size == 4 ? type::float32 : type::float64;
  if constexpr (std::is_signed_v<Number>) {
    return size == 1 ? type::int8 : size == 2 ? type::int16 : size == 4 ? type::int32 : type::int64;
  }
  return size == 1   ? type::uint8
         : size == 2 ? type::uint16
         : size == 4 ? type::uint32
                     : type::uint64;
}

// The vector must neither change nor go away while the span is used.
template <class Number>
number_span numbers_of(const std::vector<Number>& numbers) {
  return {type_of_number<Number>(), numbers.data(), numbers.size(), sizeof(Number)};
}

}  // namespace arbor::tree

#endif
