#include "arbor/utils/number_text.h"

#include <array>
#include <cstdio>
#include <cstdlib>

namespace strata::util {

std::string number_text(int value) {
  return std::to_string(value);
}

std::string number_text(unsigned int value) {
  return std::to_string(value);
}

std::string number_text(double value) {
  // Sign, 309 integer digits of the largest double, a point of a few bytes, 30 decimals and the NUL.
  std::array<char, 352> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), "%.30f", value);
  std::string text(buffer.data(), static_cast<std::size_t>(length));
  while (text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text;
}

bool read_number(const char* text, double& value) {
  char* end = nullptr;
  const double parsed = std::strtod(text, &end);
  if (*text == '\0' || *end != '\0') return false;
  value = parsed;
  return true;
}

}  // namespace strata::util
