#include "arbor/tree/float_merges.h"

#include <cmath>

namespace arbor::tree {

bool may_merge_as_float(const char* text, double value) {
  const double magnitude = std::fabs(value);
  if (magnitude > std::numeric_limits<float>::max()) return true;
  if (value != 0 && magnitude < std::numeric_limits<float>::min()) return true;
  int significant = 0;
  for (const char* c = text; *c != '\0' && *c != 'e' && *c != 'E'; ++c) {
    if (*c == 'x' || *c == 'X') return true;  // hexadecimal
    if (*c >= '0' && *c <= '9' && (significant > 0 || *c != '0')) ++significant;
  }
  return significant > std::numeric_limits<float>::digits10;
}

void float_merges::add(unsigned int code, double value) {
  double& first = first_seen[code];
  if (std::isnan(first)) {
    first = value;
  } else if (value != first) {
    others.insert(value);
  }
}

std::size_t float_merges::count() {
  const std::unique_ptr<std::vector<strata::data_types::datatype<double>>> distinct(others.get());
  return distinct->size();
}

}  // namespace arbor::tree
