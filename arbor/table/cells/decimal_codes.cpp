#include "arbor/table/cells/decimal_codes.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "arbor/table/cells/key_ranks.h"

namespace arbor::tree {

namespace {

using step_value = strata::data_types::datatype<unsigned int>;

constexpr wide_integer number_end = wide_powers_of_ten[most_scale_digits];

// A plain number times 10^decimals, if that is an integer. A long long is large enough below
// narrow_end, and takes a fraction of the time.
template <class Integer>
Integer scaled(plain_number number, unsigned int decimals) {
  const std::int64_t digits = plain_digits(number);
  const unsigned int behind_point = plain_decimals(number);
  if (digits == 0) return 0;
  if (behind_point <= decimals)
    return digits * static_cast<Integer>(wide_powers_of_ten[decimals - behind_point]);
  return digits / static_cast<Integer>(wide_powers_of_ten[behind_point - decimals]);
}
constexpr wide_integer narrow_end = 1LL << 62U;

// Calls use(number) for each cell that is kept as a plain number, until it returns false.
template <class Use>
void for_each_plain(column_cells& cells, Use use) {
  bool goes_on = true;
  cells.numbers().for_each_block([&](const plain_number* entries, std::size_t count) {
    for (std::size_t i = 0; goes_on && i < count; ++i) {
      if (!column_cells::is_unknown(entries[i]) && !column_cells::is_text(entries[i]))
        goes_on = use(entries[i]);
    }
  });
}

// The same for each text of the dictionary.
template <class Use>
void for_each_decimal(const text_dictionary& texts, Use use) {
  decimal_number number;
  for (unsigned int code = 1; code <= texts.size(); ++code) {
    if (!use(read_decimal(texts.text(code), number) ? &number : nullptr)) return;
  }
}

class scale_search {
 public:
  explicit scale_search(column_cells& of_column) : cells(of_column) {}

  std::optional<decimal_scale> result() {
    find_decimals();
    if (fits) find_bounds_of_texts();
    if (!fits) return std::nullopt;
    const bool narrow = greatest_digits < narrow_end / wide_powers_of_ten[decimals] &&
                        least > -narrow_end && greatest < narrow_end;
    if (narrow) {
      search<long long>();
    } else {
      search<wide_integer>();
    }
    if (!fits) return std::nullopt;
    if (least > greatest) return decimal_scale();  // there are no numbers
    return decimal_scale{least, step == 0 ? 1 : step, decimals};
  }

 private:
  // How many decimals the numbers need.
  void find_decimals() {
    for_each_plain(cells, [&](plain_number number) {
      if (plain_decimals(number) > decimals)
        decimals = std::max(decimals, plain_decimals(shortened(number)));
      greatest_digits = std::max(greatest_digits, std::abs(plain_digits(number)));
      return true;
    });
    for_each_decimal(cells.texts(), [&](const decimal_number* number) {
      fits = number != nullptr && -number->exponent <= static_cast<long long>(most_scale_digits);
      if (fits && number->exponent < 0)
        decimals = std::max(decimals, static_cast<unsigned int>(-number->exponent));
      return fits;
    });
  }

  void find_bounds_of_texts() {
    for_each_decimal(cells.texts(), [&](const decimal_number* number) {
      return take(floor_at(*number, decimals).floor);
    });
  }

  bool take(wide_integer number) {
    fits = number > -number_end && number < number_end;
    least = std::min(least, number);
    greatest = std::max(greatest, number);
    return fits;
  }

  template <class Integer>
  void search() {
    find_bounds<Integer>();
    if (!fits || least >= greatest) return;
    step = greatest - least;
    const auto first = static_cast<Integer>(least);
    for_each_plain(cells, [&](plain_number number) {
      return divide_step<Integer>(scaled<Integer>(number, decimals) - first);
    });
    if (!fits) return;
    for_each_decimal(cells.texts(), [&](const decimal_number* number) {
      return divide_step<wide_integer>(floor_at(*number, decimals).floor - least);
    });
  }

  template <class Integer>
  void find_bounds() {
    constexpr bool is_wide = sizeof(Integer) > sizeof(plain_number);
    constexpr wide_integer end = is_wide ? number_end : narrow_end;
    auto low = static_cast<Integer>(std::min(least, end));
    auto high = static_cast<Integer>(std::max(greatest, -end));
    for_each_plain(cells, [&](plain_number number) {
      if constexpr (is_wide) fits = is_in_range(number);
      if (!fits) return false;
      const Integer value = scaled<Integer>(number, decimals);
      low = std::min(low, value);
      high = std::max(high, value);
      return true;
    });
    least = low;
    greatest = high;
  }

  // Whether its product with a power of ten is in range.
  bool is_in_range(plain_number number) const {
    const unsigned int behind_point = plain_decimals(number);
    return behind_point >= decimals ||
           std::abs(plain_digits(number)) <
               wide_powers_of_ten[most_scale_digits - (decimals - behind_point)];
  }

  // Makes the step divide a distance, too. Returns whether it has to be divided on.
  template <class Integer>
  bool divide_step(Integer distance) {
    const Integer rest = distance % static_cast<Integer>(step);
    if (rest == 0) return true;
    step = greatest_common_divisor<Integer>(static_cast<Integer>(step), rest);
    fits = (greatest - least) / step <= last_step;
    return fits && step != 1;
  }

  template <class Integer>
  static Integer greatest_common_divisor(Integer a, Integer b) {
    while (b != 0) a = std::exchange(b, a % b);
    return a;
  }

  column_cells& cells;
  bool fits = true;
  unsigned int decimals = 0;
  std::int64_t greatest_digits = 0;
  wide_integer least = number_end;  // above the greatest one, before there is any
  wide_integer greatest = -number_end;
  wide_integer step = 0;
};

void insert_steps(std::vector<step_value> steps, impls::o_set& domain) {
  static_cast<impls::o_set_typed<step_value>&>(domain).insert_values(std::move(steps));
}

// Of a number that is on the scale.
unsigned int step_of(const char* text, const decimal_scale& scale) {
  double position = 0;
  scale.position(text, position);
  return static_cast<unsigned int>(position);
}

void code_step_texts(column_cells& cells, const decimal_scale& scale, impls::o_set& domain) {
  struct text_step {
    unsigned int step;
    unsigned int text;
  };
  std::vector<text_step> sorted;
  sorted.reserve(cells.texts().size());
  for (unsigned int text = 1; text <= cells.texts().size(); ++text)
    sorted.push_back({step_of(cells.texts().text(text), scale), text});
  std::sort(sorted.begin(), sorted.end(),
            [](const text_step& a, const text_step& b) { return a.step < b.step; });
  std::vector<unsigned int> codes(sorted.size() + 1, 0);
  std::vector<step_value> distinct;
  for (const auto& [step, text] : sorted) {
    if (distinct.empty() || distinct.back().value < step) distinct.emplace_back(step);
    codes[text] = static_cast<unsigned int>(distinct.size());
  }
  insert_steps(std::move(distinct), domain);
  cells.recode_texts(codes);
}

// Goes from cells that are kept as numbers to keys, each a step and 1. Returns false if a step is
// too great for that.
template <class Integer>
bool make_step_keys(column_cells& cells, const decimal_scale& scale) {
  std::vector<std::uint32_t> text_keys{unknown_key};
  for (unsigned int text = 1; text <= cells.texts().size(); ++text)
    text_keys.push_back(step_of(cells.texts().text(text), scale) + 1);
  const auto least = static_cast<Integer>(scale.least);
  const auto step = static_cast<Integer>(scale.step);
  bool fits = std::find(text_keys.begin() + 1, text_keys.end(), 0U) == text_keys.end();
  cells.numbers().for_each_block([&](const plain_number* entries, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const plain_number entry = entries[i];
      std::uint32_t key = unknown_key;
      if (column_cells::is_text(entry)) {
        key = text_keys[column_cells::text_code(entry)];
      } else if (!column_cells::is_unknown(entry)) {
        const Integer distance = scaled<Integer>(entry, scale.decimals) - least;
        key = static_cast<std::uint32_t>(step == 1 ? distance : distance / step) + 1;
        fits = fits && key != unknown_key;
      }
      cells.keys().push_back(key);
    }
  });
  return fits;
}

}  // namespace

std::optional<decimal_scale> common_scale(column_cells& cells) {
  cells.keep_as_numbers();
  return scale_search(cells).result();
}

void code_steps(column_cells& cells, const decimal_scale& scale, impls::o_set& domain) {
  cells.keep_as_numbers();
  if (cells.kept_as() == column_cells::form::texts) return code_step_texts(cells, scale, domain);
  const bool narrow = scale.least > -narrow_end && scale.least < narrow_end &&
                      scale.step <= (narrow_end - scale.least) / last_step;
  if (!(narrow ? make_step_keys<long long>(cells, scale)
               : make_step_keys<wide_integer>(cells, scale))) {
    // One step more than there are keys: as texts the cells need none.
    cells.keys() = {};
    cells.keep_as_texts();
    return code_step_texts(cells, scale, domain);
  }
  cells.numbers() = {};
  std::vector<step_value> steps;
  for (const std::uint32_t key : rank_keys(cells.keys())) steps.emplace_back(key - 1);
  insert_steps(std::move(steps), domain);
}

}  // namespace arbor::tree
