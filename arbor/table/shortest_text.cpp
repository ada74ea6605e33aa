#include "arbor/table/shortest_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "arbor/utils/number_text.h"

namespace arbor::tree {

namespace {

using impls::column;

// The floats from -infinity to infinity are numbered by their bits: negative ones downwards from
// -1, the others upwards.
float numbered_float(int number) {
  const unsigned int pattern = number < 0 ? 0x80000000U | static_cast<unsigned int>(-1 - number)  //
                                          : static_cast<unsigned int>(number);
  float value = 0;
  std::memcpy(&value, &pattern, sizeof value);
  return value;
}

// The float of a code, found by comparing: that is exact where printing is not.
float float_of(impls::o_set& domain, unsigned int code) {
  constexpr int infinity = 0x7F800000;
  int low = -infinity - 1;  // -infinity is above it or at it
  int high = infinity;
  while (low < high) {
    const int middle = static_cast<int>(low + (0LL + high - low) / 2);
    if (domain.leq(code, shortest_text(numbered_float(middle))) == 1) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return numbered_float(low);
}

}  // namespace

std::string shortest_text(float value) {
  std::array<char, 32> buffer{};
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
}

std::string shortest_value(const column& column, unsigned int code) {
  impls::o_set& domain = *column.get_o_set();
  std::string printed = column.get_value(code);
  double value = 0;
  if (domain.get_datatype() != "float" || code == 0 || code > domain.size_of_known())
    return printed;
  if (!strata::util::read_number(printed.c_str(), value) || std::isnan(value)) return printed;
  std::string shortest = shortest_text(static_cast<float>(value));
  return column.get_index(shortest.c_str()) == code ? shortest
                                                    : shortest_text(float_of(domain, code));
}

std::string cut_threshold(const column& column, const column::splitting_desc& split) {
  std::string threshold = column.find_threshold(split.low_code, split.high_code);
  const unsigned int code = column.get_index(threshold.c_str());
  const bool separates = split.low_code <= code && code < split.high_code;
  return separates ? threshold : shortest_value(column, split.low_code);
}

}  // namespace arbor::tree
