// Words of a format are the same in any case.
//
//   if (lower_case(word) == "@data") ...
#ifndef ARBOR_FORMATS_LOWER_CASE_H
#define ARBOR_FORMATS_LOWER_CASE_H

#include <algorithm>
#include <string>

namespace arbor::tree {

// The text with the letters of ASCII in lower case.
inline std::string lower_case(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return text;
}

}  // namespace arbor::tree

#endif
