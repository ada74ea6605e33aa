#include "arbor/tree/shortest_text.h"

#include <array>
#include <charconv>

#include "arbor/utils/number_text.h"

namespace arbor::tree {

std::string shortest_text(float value) {
  std::array<char, 32> buffer{};
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
}

std::string shortest_threshold(const impls::column& column, const std::string& threshold) {
  double value = 0;
  if (column.get_o_set()->get_datatype() != "float" || !strata::util::read_number(threshold.c_str(), value)) {
    return threshold;
  }
  return shortest_text(static_cast<float>(value));
}

}  // namespace arbor::tree
