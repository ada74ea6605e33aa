#include "arbor/table/cells/float_merges.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <unordered_set>

#include "arbor/table/cells/secret_hash.h"
#include "arbor/table/decimal.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

// Identities of what is not a plain number. Plain ones are their own identity, and none of them is
// one of these, which would have decimals but no digits.
constexpr std::uint64_t infinite_identity = 2;
constexpr std::uint64_t negative_infinite_identity = 4;
constexpr std::uint64_t zero_identity = 6;

std::uint64_t identity_of(const decimal_number& number) {
  if (number.digits.empty()) return zero_identity;
  if (is_infinite(number)) return number.negative ? negative_infinite_identity : infinite_identity;
  const plain_number plain = plain_number_of(number.negative, number.digits, number.exponent);
  if (plain != no_plain_number) return static_cast<std::uint64_t>(plain);
  std::string text =
      fmt::format("{}{}e{}", number.digits, number.negative ? "-" : "", number.exponent);
  const std::size_t length = text.size();
  text.append(readable_after_cell, '\0');
  const std::uint64_t hash = secret_hash()(cell_text{text.data(), length});
  return hash | 1U;  // odd, unlike the identities above and 0
}

class merge_counter {
 public:
  // For codes up to `distinct`.
  explicit merge_counter(std::size_t distinct) : first_seen(distinct + 1, 0) {}

  // Takes the identity of a number and the code that the number got.
  void add(unsigned int code, std::uint64_t number) {
    if (first_seen[code] == number) return;
    if (first_seen[code] == 0) {
      first_seen[code] = number;
    } else {
      others.insert(number);
    }
  }

  // How many distinct numbers there are beyond one for each code.
  std::size_t count() const { return others.size(); }

 private:
  std::vector<std::uint64_t> first_seen;  // by code; 0 before any
  std::unordered_set<std::uint64_t, secret_hash> others;
};

bool may_merge(const text_dictionary& texts, const std::vector<double>& text_numbers) {
  for (unsigned int code = 1; code <= texts.size(); ++code) {
    if (may_merge_as_float(texts.text(code), text_numbers[code - 1])) return true;
  }
  return false;
}

bool may_merge(cell_blocks<plain_number>& entries) {
  const auto may_merge_entry = [](plain_number entry) {
    return !column_cells::is_unknown(entry) && !column_cells::is_text(entry) &&
           may_merge_as_float(entry);
  };
  bool may = false;
  entries.for_each_block([&](const plain_number* block, std::size_t count) {
    may = may || std::any_of(block, block + count, may_merge_entry);
  });
  return may;
}

bool is_rounded(const char* text, double value) {
  if (!may_merge_as_float(text, value)) return false;
  decimal_number number;
  decimal_number rounded;
  read_exactly(text, number);
  read_exactly(shortest_text(static_cast<float>(value)).c_str(), rounded);
  return compare(number, rounded) != 0;
}

bool is_rounded(plain_number number) {
  if (!may_merge_as_float(number)) return false;
  const plain_number shortest = shortened(number);
  // No float is shown with more digits, unless it is an integer.
  if (plain_decimals(shortest) > 0 &&
      has_more_digits_than(std::numeric_limits<float>::max_digits10, shortest)) {
    return true;
  }
  return is_rounded(text_of(shortest).c_str(), value_of(shortest));
}

std::vector<std::uint64_t> identities_of(const text_dictionary& texts) {
  std::vector<std::uint64_t> identities{0};
  for (unsigned int code = 1; code <= texts.size(); ++code)
    identities.push_back(number_identity(texts.text(code)));
  return identities;
}

}  // namespace

std::size_t lost_numbers(column_cells& cells, const std::vector<double>& text_numbers,
                         std::size_t distinct) {
  if (!may_merge(cells.texts(), text_numbers) && !may_merge(cells.numbers())) return 0;
  merge_counter merges(distinct);
  const std::vector<std::uint64_t> of_texts = identities_of(cells.texts());
  const auto identity = [&](plain_number entry) {
    return column_cells::is_text(entry) ? of_texts[column_cells::text_code(entry)]
                                        : number_identity(entry);
  };
  cells.numbers().for_each_block_with(
      cells.keys(),
      [&](const plain_number* entries, const std::uint32_t* codes, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
          if (!column_cells::is_unknown(entries[i])) merges.add(codes[i], identity(entries[i]));
        }
      });
  return merges.count();
}

std::size_t lost_texts(const text_dictionary& texts, const std::vector<double>& text_numbers,
                       const std::vector<unsigned int>& codes) {
  if (!may_merge(texts, text_numbers)) return 0;
  merge_counter merges(codes.size());
  for (unsigned int text = 1; text <= texts.size(); ++text)
    merges.add(codes[text], number_identity(texts.text(text)));
  return merges.count();
}

std::size_t rounded_cells(column_cells& cells, const std::vector<double>& text_numbers,
                          std::size_t distinct_rows) {
  std::size_t count = 0;
  const std::size_t before = distinct_rows > 0 ? 1 : 0;  // cells of each text
  const std::vector<std::size_t> of_texts = cells.counts().texts;
  for (unsigned int code = 1; code <= cells.texts().size(); ++code) {
    if (is_rounded(cells.texts().text(code), text_numbers[code - 1]))
      count += of_texts[code] - before;
  }
  cells.numbers().for_each_block([&](const plain_number* entries, std::size_t entry_count) {
    const std::size_t first = std::min(entry_count, distinct_rows);
    distinct_rows -= first;
    for (std::size_t i = first; i < entry_count; ++i) {
      const bool is_number =
          !column_cells::is_unknown(entries[i]) && !column_cells::is_text(entries[i]);
      if (is_number && is_rounded(entries[i])) ++count;
    }
  });
  return count;
}

std::uint64_t number_identity(plain_number number) {
  const plain_number shortest = shortened(number);
  return shortest == 0 ? zero_identity : static_cast<std::uint64_t>(shortest);
}

std::uint64_t number_identity(const char* text) {
  decimal_number number;
  read_exactly(text, number);
  return identity_of(number);
}

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

bool may_merge_as_float(plain_number number) {
  // No plain number is out of range.
  return has_more_digits_than(std::numeric_limits<float>::digits10, number);
}

}  // namespace arbor::tree
