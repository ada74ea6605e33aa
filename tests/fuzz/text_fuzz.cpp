// Texts of numbers and cells: what is read, printed and read again is the same, and every fast way agrees with the
// general one.
#include <cmath>
#include <cstring>

#include "arbor/tree/csv_cell.h"
#include "arbor/tree/csv_reader.h"
#include "arbor/tree/domain_text.h"
#include "arbor/tree/float_merges.h"
#include "arbor/tree/message_text.h"
#include "arbor/tree/shortest_text.h"
#include "arbor/tree/table.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/string_util.h"
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;
using namespace arbor::tree;
using arbor::impls::column;
using arbor::impls::o_set;

namespace {

template <class Number>
bool same_bits(Number a, Number b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

// By the digits alone: blanks, a sign, and a magnitude of at most `most`.
template <class Integer>
void check_integer(const std::string& text, bool may_be_negative, unsigned long long most) {
  const std::size_t sign = std::min(text.find_first_not_of(' '), text.size());
  const bool negative = text[sign] == '-', has_sign = negative || text[sign] == '+';
  const std::string digits = text.substr(sign + (has_sign ? 1 : 0));
  const bool proper = digits.find_first_not_of("0123456789") == std::string::npos && (has_sign || !digits.empty()) &&
                      (may_be_negative || !negative);
  const unsigned long long magnitude = std::strtoull(digits.c_str(), nullptr, 10);  // the greatest when too large
  Integer value = 77;
  const bool read = refusal([&] { strata::util::string_util::str2int(text.c_str(), value); }).empty();
  check(read == (proper && magnitude <= most), "what is digits in range is an integer");
  check(static_cast<long long>(value) == (!read ? 77 : static_cast<long long>(magnitude) * (negative ? -1 : 1)), "its value");
}

void check_number(const std::string& text) {
  char* end = nullptr;
  const double expected = std::strtod(text.c_str(), &end);
  double value = 77;
  const bool read = strata::util::read_number(text.c_str(), value);
  check(read == (!text.empty() && *end == '\0'), "a number is what strtod takes for one");
  check(same_bits(value, read ? expected : 77), "a number has the value that strtod finds");
  if (!read || std::isnan(value)) return;
  const std::string printed = strata::util::number_text(value);
  check_same(strata::util::number_text(std::strtod(printed.c_str(), nullptr)), printed, "a number printed again");
  const auto narrow = static_cast<float>(value);
  const std::string shortest = shortest_text(narrow);
  check(same_bits(static_cast<float>(std::strtod(shortest.c_str(), nullptr)), narrow), "the shortest text is exact");
}

void check_plain(const std::string& text) {
  const std::string padded = text + std::string(readable_behind_cell, '\xFF');
  const std::string cell = text + '\0' + padded;
  const plain_number number = read_plain_number({cell.c_str(), text.size()});
  int eight_digits = 0;
  int integer = 0;
  const bool is_short = read_plain_integer({cell.c_str(), text.size()}, eight_digits);
  const bool is_integer = number != no_plain_number && is_plain_integer(number, integer);
  const std::size_t digits = text.size() - (text[0] == '-' ? 1 : 0);
  check(is_short == (is_integer && digits <= 8), "a short integer is a plain one of eight digits");
  check(!is_short || eight_digits == integer, "a short integer has its value");
  if (number == no_plain_number) return;
  const double value = std::strtod(text.c_str(), nullptr);
  check_same(text_of(number), text, "the text of a plain number");
  check(same_bits(value_of(number), value), "a plain number has the value that strtod finds");
  check(value_of(shortened(number)) == value, "a shortened number has the same value");
  check(number_identity(number) == number_identity(text.c_str()), "a number is the same in both forms");
  check(may_merge_as_float(number) || !may_merge_as_float(text_of(shortened(number)).c_str(), value), "merges are foreseen");
}

// Whatever the data type, a text that is accepted can be found, printed and found again.
void check_domains(const std::string& text) {
  for (const char* type : {"integer", "uinteger", "float", "double", "string"}) {
    domain_pointer domain(o_set::NEW_O_SET(type, true, "?"));
    const std::string cell = type == std::string("string") ? to_domain_text(text) : text;
    const std::string refused = refusal([&] { domain->insert(cell.c_str()); });
    unsigned int code = 0;
    bool found = false;
    check_same(refusal([&] { found = domain->get_order(cell.c_str(), code); }), refused, "the complaint of a lookup");
    if (!refused.empty() || cell == "?") continue;
    const std::string printed = domain->get_value(1);
    const bool nan = printed.find("nan") != std::string::npos && type != std::string("string");
    check(found == !nan && code == (nan ? 0 : 1), "a value is found, unless it is not a number");
    if (nan) continue;
    std::string error;
    const column_pointer column(column::NEW_COLUMN(domain.release(), "x", "discrete", error));
    if (type == std::string("double")) continue;  // whose least ones are printed as 0
    const std::string shown = value_text(*column, 1);
    check(code_of_text(*column, shown.c_str(), code) && code == 1, shown + " is found again");
    if (type == std::string("string")) check_same(shown, text, "a text");
  }
}

void check_cell(const std::string& text) {
  const memory_file file("x," + csv_cell(text) + "\n");
  input_file csv(file.path());
  read_csv(csv, [&](const csv_row& row) { check_same(row.text(1), text, "a cell"); });
  check_same(to_cell_text(to_domain_text(text)), text, "a cell that was a text of a domain");
  const std::string half = text.substr(text.size() / 2);
  check((half < text) == (to_domain_text(half) < to_domain_text(text)), "texts keep their order");
}

void check_messages(const std::string& text) {
  for (const std::string& shown : {printable(text), in_quotes(text), did_you_mean(text, {"integer", "float", text.substr(text.size() / 2)})}) {
    for (const char c : shown) check(static_cast<unsigned char>(c) >= 0x20 && c != '\x7F', "a message is one line");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string text = input(data, size).text();
  check_integer<int>(text, true, 0x7FFFFFFF);
  check_integer<unsigned int>(text, false, 0xFFFFFFFF);
  check_number(text);
  check_plain(text);
  check_domains(text);
  check_cell(text);
  check_messages(text);
  return 0;
}
