#include "arbor/table/domain_text.h"

#include <algorithm>
#include <charconv>

namespace arbor::tree {

namespace {

constexpr char escape = '\x7F';
constexpr std::string_view digits = "0123456789ABCDEF";

}  // namespace

std::string to_domain_text(std::string_view cell) {
  const auto stays = [](char c) { return static_cast<unsigned char>(c) < 0x7F; };
  if (std::all_of(cell.begin(), cell.end(), stays)) return std::string(cell);
  std::string result;
  result.reserve(cell.size());
  for (const char c : cell) {
    const auto byte = static_cast<unsigned char>(c);
    if (stays(c)) {
      result += c;
    } else {
      result += {escape, digits[byte >> 4U], digits[byte & 0xFU]};
    }
  }
  return result;
}

std::string to_cell_text(std::string_view domain_text) {
  std::string result;
  result.reserve(domain_text.size());
  for (std::size_t i = 0; i < domain_text.size(); ++i) {
    unsigned int byte = 0;
    const char* hex = domain_text.data() + i + 1;
    if (domain_text[i] == escape && i + 2 < domain_text.size() &&
        std::from_chars(hex, hex + 2, byte, 16).ptr == hex + 2) {
      result += static_cast<char>(byte);
      i += 2;
    } else {
      result += domain_text[i];
    }
  }
  return result;
}

}  // namespace arbor::tree
