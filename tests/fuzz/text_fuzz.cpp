// Texts of numbers and cells: reading, printing and reading again gives the same, and every fast
// way agrees with the general one.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "arbor/csv/csv_cell.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/number_form.h"
#include "arbor/csv/shown_text.h"
#include "arbor/table/cells/float_merges.h"
#include "arbor/table/decimal_domain.h"
#include "arbor/table/value_text.h"
#include "arbor/utils/number_text.h"
#include "tests/fuzz/fuzz.h"
#include "tests/support/rows.h"

using namespace arbor::fuzz;
using namespace arbor::tree;
using strata::util::number_text;

template <class Number>
static bool same_bits(Number a, Number b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

static void check_number(const std::string& text) {
  double value = 77;
  strata::util::read_number(text.c_str(), value);
  const std::string printed = number_text(value);
  const auto number = static_cast<float>(value);
  check_same(number_text(std::strtod(printed.c_str(), nullptr)), printed, "a number printed again");
  const auto again = static_cast<float>(std::strtod(shortest_text(number).c_str(), nullptr));
  check(std::isnan(value) || same_bits(again, number), "the shortest text is exact");
}

static void check_plain(const std::string& text) {
  const std::string padded = text + '\0' + std::string(readable_after_cell, '7');
  const cell_text cell{padded.c_str(), text.size()};
  const plain_number number = read_plain_number(cell);
  int fast = 0;
  const bool is_short = read_plain_integer(cell, fast);
  check(!is_short || (is_plain_integer(number) && fast == plain_digits(number)),
        "a short integer has its value");
  if (number == no_plain_number) return;
  const double value = std::strtod(text.c_str(), nullptr);
  check_same(text_of(number), text, "the text of a plain number");
  check(same_bits(value_of(number), value) && value_of(shortened(number)) == value &&
            number_identity(number) == number_identity(text.c_str()),
        "a plain number has its value");
  check(
      may_merge_as_float(number) || !may_merge_as_float(text_of(shortened(number)).c_str(), value),
      "merges are foreseen");
}

// A scale of quarters and one of many decimals.
static void check_decimal(const std::string& text) {
  decimal_number exact;
  double value = 0;
  const bool is_number = read_known_number(text.c_str(), value);
  check(read_exactly(text.c_str(), exact) == is_number, "every number is read exactly");
  if (!is_number) return;
  for (const decimal_scale& scale : {decimal_scale{-500, 25, 2}, decimal_scale{7, 3, 30}}) {
    const double position = scale.position(exact);
    const auto step = static_cast<unsigned int>(std::min(std::max(position, 0.0), 4294967295.0));
    decimal_number low;
    check(read_decimal(scale.text_of(step).c_str(), low), "a step has a text");
    const int order = compare(exact, low);
    check(position < 0       ? order < 0
          : position == step ? order == 0
                             : order > 0,
          "a position is exact");
    const std::string padded = text + '\0' + std::string(readable_after_cell, '7');
    const plain_number plain = read_plain_number({padded.c_str(), text.size()});
    check(plain == no_plain_number || scale.position(plain) == position,
          "a plain number has its position");
  }
}

static void check_form(const std::string& text) {
  std::string storage;
  for (const number_form& form : {number_form{',', true, {"%"}}, number_form{'.', true, {}}}) {
    const char* const usual = usual_text(form, text.c_str(), storage);
    double value = 0;
    check(usual == nullptr || read_known_number(usual, value), "a number in a form is a number");
  }
}

static void check_cell(const std::string& text) {
  const memory_file file("x," + csv_cell(text) + "\n");
  arbor::tests::read_rows(file.path(),
                          [&](const csv_row& row) { check_same(row.text(1), text, "a cell"); });
  const std::string half = text.substr(text.size() / 2);
  check((half < text) == (to_domain_text(half) < to_domain_text(text)), "texts keep their order");
  check_same(to_cell_text(to_domain_text(text)), text, "a text in a domain");
  check_one_line(printable(text) + in_quotes(text) + did_you_mean(text, {"integer", half}));
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string text = std::string(data, data + size).c_str();
  check_number(text);
  check_plain(text);
  check_decimal(text);
  check_form(text);
  check_cell(text);
  return 0;
}
