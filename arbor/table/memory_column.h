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
#include <cstring>
#include <optional>
#include <string>
#include <utility>
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

template <class Number>
constexpr number_span::type type_of_number();

template <class Number>
number_span numbers_of(const std::vector<Number>& numbers) {
  return {type_of_number<Number>(), numbers.data(), numbers.size(), sizeof(Number)};
}

// Calls use(read) with a function that returns the number of a row, in the type that it has.
template <class Use>
decltype(auto) with_numbers(const number_span& numbers, Use use);

// -- Implementation --

template <>
constexpr number_span::type type_of_number<std::int8_t>() {
  return number_span::type::int8;
}
template <>
constexpr number_span::type type_of_number<std::int32_t>() {
  return number_span::type::int32;
}
template <>
constexpr number_span::type type_of_number<std::int64_t>() {
  return number_span::type::int64;
}
template <>
constexpr number_span::type type_of_number<float>() {
  return number_span::type::float32;
}
template <>
constexpr number_span::type type_of_number<double>() {
  return number_span::type::float64;
}

template <class Number>
class number_reading {
 public:
  explicit number_reading(const number_span& numbers)
      : first(static_cast<const char*>(numbers.first)), stride(numbers.stride) {}

  Number operator()(std::size_t row) const {
    Number number;
    std::memcpy(&number, first + static_cast<std::ptrdiff_t>(row) * stride, sizeof number);
    return number;
  }

 private:
  const char* first;
  std::ptrdiff_t stride;
};

template <class Use>
decltype(auto) with_numbers(const number_span& numbers, Use use) {
  using type = number_span::type;
  switch (numbers.of) {
    case type::int8:
      return use(number_reading<std::int8_t>(numbers));
    case type::int16:
      return use(number_reading<std::int16_t>(numbers));
    case type::int32:
      return use(number_reading<std::int32_t>(numbers));
    case type::int64:
      return use(number_reading<std::int64_t>(numbers));
    case type::uint8:
      return use(number_reading<std::uint8_t>(numbers));
    case type::uint16:
      return use(number_reading<std::uint16_t>(numbers));
    case type::uint32:
      return use(number_reading<std::uint32_t>(numbers));
    case type::uint64:
      return use(number_reading<std::uint64_t>(numbers));
    case type::float32:
      return use(number_reading<float>(numbers));
    case type::float64:
      break;
  }
  return use(number_reading<double>(numbers));
}

}  // namespace arbor::tree

#endif
