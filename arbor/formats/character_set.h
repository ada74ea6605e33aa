// Some of the characters, to compare many others with.
//
//   constexpr character_set ends(",\t");
//   if (ends.has(c)) ...
#ifndef ARBOR_FORMATS_CHARACTER_SET_H
#define ARBOR_FORMATS_CHARACTER_SET_H

#include <array>
#include <string_view>

namespace arbor::tree {

class character_set {
 public:
  constexpr explicit character_set(std::string_view characters) {
    for (const char c : characters) in_set[static_cast<unsigned char>(c)] = true;
  }
  constexpr bool has(char c) const { return in_set[static_cast<unsigned char>(c)]; }

 private:
  std::array<bool, 256> in_set{};
};

}  // namespace arbor::tree

#endif
