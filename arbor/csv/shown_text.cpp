#include "arbor/csv/shown_text.h"

#include <fmt/format.h>
#include <utf8proc.h>

#include <algorithm>
#include <vector>

namespace arbor::tree {

namespace {

// A character as it is shown.
struct glyph {
  std::string text;
  std::size_t width;
};

std::string escaped(const utf8_character& character, char first_byte) {
  if (character.point == '\n') return "\\n";
  if (character.point == '\r') return "\\r";
  if (character.point == '\t') return "\\t";
  if (character.point >= 0x80)
    return fmt::format("\\u{:04X}", static_cast<unsigned int>(character.point));
  return fmt::format("\\x{:02X}", static_cast<unsigned char>(first_byte));
}

// Removes the first character of a text.
glyph take_glyph(std::string_view& text) {
  const utf8_character first = first_character(text);
  glyph result;
  if (first.is_printable()) {
    result.text = text.substr(0, first.length);
    result.width = static_cast<std::size_t>(
        std::max(0, utf8proc_charwidth(static_cast<utf8proc_int32_t>(first.point))));
  } else {
    result.text = escaped(first, text.front());
    result.width = result.text.size();
  }
  text.remove_prefix(first.length);
  return result;
}

// Takes glyphs as long as they fit into `width` columns. An accent stays with its character.
template <class Iterator>
std::string fitting(Iterator glyph, Iterator end, std::size_t width) {
  std::string result;
  for (; glyph != end && glyph->width <= width; ++glyph) {
    width -= glyph->width;
    result += glyph->text;
  }
  return result;
}

std::vector<glyph> glyphs_of(std::string_view text) {
  std::vector<glyph> glyphs;
  while (!text.empty()) glyphs.push_back(take_glyph(text));
  return glyphs;
}

bool continues_character(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

// How many of the first bytes of a text continue a character before them; 0 if there are more than
// a character has.
std::size_t continuing_bytes(std::string_view text) {
  constexpr std::size_t most = 3;
  std::size_t count = 0;
  while (count < text.size() && continues_character(text[count])) {
    if (++count > most) return 0;
  }
  return count;
}

// The first `length` bytes and the rest of the character that they divide.
std::string_view first_bytes(std::string_view text, std::size_t length) {
  if (length >= text.size()) return text;
  return text.substr(0, length + continuing_bytes(text.substr(length)));
}

// The last `length` bytes of a longer text, less those that continue a character before them.
std::string_view last_bytes(std::string_view text, std::size_t length) {
  text.remove_prefix(text.size() - length);
  text.remove_prefix(continuing_bytes(text));
  return text;
}

std::size_t width_of(const std::vector<glyph>& glyphs) {
  std::size_t width = 0;
  for (const glyph& g : glyphs) width += g.width;
  return width;
}

// The glyphs at the end of a text that fit into `width` columns.
std::string fitting_end(const std::vector<glyph>& glyphs, std::size_t width) {
  auto first = glyphs.end();
  while (first != glyphs.begin() && (first - 1)->width <= width) width -= (--first)->width;
  while (first != glyphs.end() && first->width == 0) ++first;  // accents of a character before
  std::string result;
  for (; first != glyphs.end(); ++first) result += first->text;
  return result;
}

// Most texts are: each of their bytes is a character and takes a column.
bool is_printable_ascii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

// No more bytes are looked at for each column. Characters without a width could fill any number.
constexpr std::size_t bytes_per_column = 8;
constexpr std::string_view ellipsis = "...";

}  // namespace

bool utf8_character::is_printable() const {
  if (!valid || point < 0x20 || (point >= 0x7F && point < 0xA0)) return false;
  const bool turns_direction = point == 0x061C || point == 0x200E || point == 0x200F ||
                               (point >= 0x202A && point <= 0x202E) ||
                               (point >= 0x2066 && point <= 0x2069);
  const bool separates_lines = point == 0x2028 || point == 0x2029;
  return !turns_direction && !separates_lines;
}

utf8_character first_character(std::string_view text) {
  utf8proc_int32_t point = 0;
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  const utf8proc_ssize_t length = utf8proc_iterate(
      bytes, static_cast<utf8proc_ssize_t>(std::min<std::size_t>(text.size(), 4)), &point);
  if (length <= 0) return {};
  return {static_cast<char32_t>(point), static_cast<std::size_t>(length), true};
}

std::string printable(std::string_view text) {
  if (is_printable_ascii(text)) return std::string(text);
  std::string result;
  while (!text.empty()) result += take_glyph(text).text;
  return result;
}

std::string shown(std::string_view text, std::size_t width) {
  if (text.size() <= width && is_printable_ascii(text)) return std::string(text);
  const std::size_t most_bytes = bytes_per_column * width;
  const bool is_long = text.size() > most_bytes;
  const std::vector<glyph> head = glyphs_of(first_bytes(text, most_bytes));
  if (!is_long && width_of(head) <= width) return fitting(head.begin(), head.end(), width);
  const std::vector<glyph> tail = is_long ? glyphs_of(last_bytes(text, most_bytes)) : head;
  const std::size_t at_end = (width - ellipsis.size()) / 2;
  const std::size_t at_begin = width - ellipsis.size() - at_end;
  return fitting(head.begin(), head.end(), at_begin).append(ellipsis) + fitting_end(tail, at_end);
}

std::string in_quotes(std::string_view text, std::size_t width) {
  const std::vector<glyph> glyphs = glyphs_of(first_bytes(text, bytes_per_column * width));
  const bool is_cut = text.size() > bytes_per_column * width || width_of(glyphs) > width;
  std::string result = "\"";
  for (const char c : fitting(glyphs.begin(), glyphs.end(), width)) {
    if (c == '"') result += '\\';
    result += c;
  }
  return result.append(is_cut ? ellipsis : "") + '"';
}

std::size_t display_width(std::string_view text) {
  if (is_printable_ascii(text)) return text.size();
  std::size_t width = 0;
  while (!text.empty()) width += take_glyph(text).width;
  return width;
}

}  // namespace arbor::tree
