#include "arbor/csv/number_form.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace arbor::tree {

namespace {

// In UTF-8: also the blanks U+00A0 and U+202F, which do not break, and the apostrophe U+2019.
constexpr std::array<std::string_view, 3> number_blanks{" ", "\xC2\xA0", "\xE2\x80\xAF"};
constexpr std::array<std::string_view, 2> apostrophes{"'", "\xE2\x80\x99"};

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

// What is left of a text, from either side of which parts are taken.
struct rest_of_text {
  std::string_view rest;

  bool take(std::string_view part) {
    if (part.empty() || rest.substr(0, part.size()) != part) return false;
    rest.remove_prefix(part.size());
    return true;
  }
  bool take_from_end(std::string_view part) {
    if (part.empty() || rest.size() < part.size()) return false;
    if (rest.substr(rest.size() - part.size()) != part) return false;
    rest.remove_suffix(part.size());
    return true;
  }
  template <class Texts>
  bool take_any(const Texts& parts) {
    return std::any_of(parts.begin(), parts.end(), [&](const auto& part) { return take(part); });
  }
  template <class Texts>
  bool take_any_from_end(const Texts& parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [&](const auto& part) { return take_from_end(part); });
  }
  std::string_view take_digits() {
    const auto end = std::find_if_not(rest.begin(), rest.end(), is_digit);
    const std::string_view digits = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
    rest.remove_prefix(digits.size());
    return digits;
  }
};

// The text between two groups of digits at the beginning of a text; empty if there is none.
std::string_view group_mark(const number_form& form, std::string_view text) {
  rest_of_text after{text};
  const bool is_mark = after.take(form.decimal_mark == '.' ? "," : ".") ||
                       after.take_any(number_blanks) || after.take_any(apostrophes);
  return is_mark ? text.substr(0, text.size() - after.rest.size()) : std::string_view();
}

// Adds the digits before the decimal mark. Returns false if their groups are none.
bool take_integer(const number_form& form, rest_of_text& text, std::string& digits) {
  const std::size_t first = digits.size();
  digits += text.take_digits();
  if (!form.grouped || digits.size() == first) return true;
  const std::string_view mark = group_mark(form, text.rest);
  if (mark.empty()) return true;
  if (digits.size() - first > 3) return false;
  while (text.take(mark)) {
    const std::string_view group = text.take_digits();
    if (group.size() != 3) return false;
    digits += group;
  }
  return true;
}

// Removes blanks and the stripped texts from both ends, and takes the sign, which may stand before
// or behind a stripped text.
std::string_view take_sign_and_strip(const number_form& form, rest_of_text& text) {
  std::string_view sign;
  for (;;) {
    if (text.take_any(number_blanks) || text.take_any(form.stripped)) continue;
    if (!sign.empty() || !(text.rest.substr(0, 1) == "-" || text.rest.substr(0, 1) == "+")) break;
    sign = text.rest.substr(0, 1);
    text.rest.remove_prefix(1);
  }
  while (text.take_any_from_end(number_blanks) || text.take_any_from_end(form.stripped)) continue;
  return sign;
}

// Adds an exponent, if there is one. Returns false if it has no digits.
bool take_exponent(rest_of_text& text, std::string& number) {
  if (!text.take("e") && !text.take("E")) return true;
  number += 'e';
  if (text.take("-")) {
    number += '-';
  } else {
    text.take("+");
  }
  const std::string_view digits = text.take_digits();
  number += digits;
  return !digits.empty();
}

}  // namespace

const char* usual_text(const number_form& form, const char* text, std::string& storage) {
  if (form.is_usual()) return text;
  rest_of_text rest{text};
  storage = take_sign_and_strip(form, rest);
  const std::size_t sign = storage.size();
  if (!take_integer(form, rest, storage)) return nullptr;
  std::size_t digits = storage.size() - sign;
  if (rest.take(form.decimal_mark == '.' ? "." : ",")) {
    const std::string_view behind_mark = rest.take_digits();
    digits += behind_mark.size();
    storage += '.';
    storage += behind_mark;
  }
  if (digits == 0 || !take_exponent(rest, storage) || !rest.rest.empty()) return nullptr;
  return storage.c_str();
}

}  // namespace arbor::tree
