// Reads the numbers of a column in memory.
//
//   with_numbers(column.numbers, [&](auto number_of) {
//     for (std::size_t row = 0; row < column.numbers.count; ++row) use(number_of(row));
//   });
#ifndef ARBOR_TABLE_CELLS_NUMBER_READING_H
#define ARBOR_TABLE_CELLS_NUMBER_READING_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "arbor/table/memory_column.h"

namespace arbor::tree {

// Returns the number of a row, which need not be aligned.
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

// Calls use(read) with a function that returns the number of a row, in the type that it has.
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
