#include "arbor/table/column_loader.h"

#include <fmt/format.h>

#include <cmath>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "arbor/csv/message_text.h"
#include "arbor/table/cell_codes.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/string_util.h"

namespace arbor::tree {

namespace {

// Whether a column of numbers can hold the text and find it again; what is "not a number" equals
// nothing.
bool is_number(const char* text, double& value) {
  return strata::util::read_number(text, value) && !std::isnan(value);
}

template <class Integer>
bool can_be_read(const char* text) {
  try {
    Integer ignored = 0;
    strata::util::string_util::str2int(text, ignored);
    return true;
  } catch (const std::runtime_error&) {
    return false;
  }
}

// Whether a number is written as an integer and is in the range of one.
bool is_integer(const char* text) {
  const char last = text[std::strlen(text) - 1];
  return last >= '0' && last <= '9' && can_be_read<int>(text);
}

column_cells::plain keepable_as(const std::string& chosen_type) {
  if (chosen_type.empty() || chosen_type == "float") return column_cells::plain::all;
  return chosen_type == "integer" ? column_cells::plain::integers : column_cells::plain::none;
}

}  // namespace

column_loader::column_loader(settings of_column)
    : chosen(std::move(of_column)), cells(keepable_as(chosen.data_type)) {}

bool column_loader::accepts(const char* text) const {
  if (chosen.data_type == "string") return true;
  double value = 0;
  if (!is_number(text, value)) return false;
  if (chosen.data_type == "integer") return can_be_read<int>(text);
  return chosen.data_type != "uinteger" || can_be_read<unsigned int>(text);
}

// A few texts among the numbers may be there by mistake, and are kept to be told.
std::string column_loader::narrowest_type() {
  constexpr std::size_t most_odd_texts = 3;
  const text_dictionary& texts = cells.texts();
  number_cells = cells.plain_numbers();
  if (number_cells == 0 && texts.size() == 0) return "null";
  if (texts.size() == 0) return cells.has_fractions() ? "float" : "integer";
  const std::vector<std::size_t> counts = cells.text_counts();
  bool all_integers = !cells.has_fractions();
  for (unsigned int code = 1; code <= texts.size() && may_be_numbers; ++code) {
    const char* text = texts.text(code);
    double value = 0;
    if (is_number(text, value)) {
      number_cells += counts[code];
      all_integers = all_integers && is_integer(text);
    } else if (odd_texts.size() < most_odd_texts) {
      odd_texts.push_back({text, counts[code]});
    } else {
      may_be_numbers = false;
    }
  }
  if (!odd_texts.empty()) return "string";
  return all_integers ? "integer" : "float";
}

void column_loader::make_column() {
  data_type = chosen.data_type.empty() ? narrowest_type() : chosen.data_type;
  const bool is_text = data_type == "string";
  // Among numbers the unknown value needs a text that no number is printed as.
  const std::string null_text = is_text ? chosen.null_text : "?";
  std::unique_ptr<impls::o_set> domain(impls::o_set::NEW_O_SET(data_type, true, null_text));
  if (cells.unknown_cells() > 0) domain->insert(null_text.c_str());
  const bool plain = cells.kept_as() != column_cells::form::texts;
  bool coded = true;
  if (is_text) {
    code_texts(cells, *domain);
  } else if (plain && data_type == "integer") {
    code_integers(cells, *domain);
  } else if (plain && data_type == "float") {
    lost_numbers = code_floats(cells, *domain);
  } else {
    coded = false;
    insert_texts(cells, *domain);
  }
  std::string kind = chosen.kind;
  if (kind.empty()) kind = data_type == "null" ? "ignore" : is_text ? "discrete" : "continuous";
  std::string error;
  made.reset(impls::column::NEW_COLUMN(domain.get(), chosen.name, kind, error));
  if (made == nullptr) throw std::runtime_error(error + advice(kind));
  domain.release();  // the column has adopted it
  if (!coded) {
    impls::o_set& values = *made->get_o_set();
    if (data_type == "float") lost_numbers = lost_as_float(cells, values);
    look_up_codes(cells, values);
  }
  made->reserve(static_cast<unsigned int>(cells.keys().size()));
  cells.keys().consume([&](const std::uint32_t* codes, std::size_t count) {
    made->append_codes(codes, static_cast<unsigned int>(count));
  });
  cells = column_cells(column_cells::plain::none);
}

// What would do instead of a refused kind.
std::string column_loader::advice(const std::string& kind) const {
  if (data_type == "null") return "; it has no known value, and can only be ignored";
  if (data_type == "double") return "; the numeric data types are integer, uinteger and float";
  if (kind == "continuous" && !odd_texts.empty())
    return "; " + in_quotes(odd_texts.front().text) + " is no number";
  return "";
}

// What would make numbers of a column of texts, if little is in the way; else nothing.
std::string column_loader::remark_on_odd_texts(
    const std::vector<std::string>& unknown_texts) const {
  std::size_t odd_cells = 0;
  for (const odd_text& odd : odd_texts) odd_cells += odd.cells;
  const bool odd_few = may_be_numbers && odd_cells > 0 && odd_cells < number_cells;
  if (!odd_few || made->is_class() || made->is_ignore()) return "";
  std::string found;
  std::vector<std::string> declared = unknown_texts;
  bool sayable = true;
  for (const odd_text& odd : odd_texts) {
    found += fmt::format("{}{} in {}", found.empty() ? "" : ", ", in_quotes(odd.text),
                         counted(odd.cells, "cell"));
    declared.push_back(odd.text.empty() ? "\"\"" : odd.text);
    sayable = sayable && printable(odd.text) == odd.text && odd.text.size() < 60;
  }
  std::string remark = "is of texts, but all its values are numbers except " + found;
  if (!sayable) return remark;
  remark += "; if that means unknown, say";
  for (const std::string& text : declared) remark += " --unknown " + shell_word(text);
  return remark;
}

std::unique_ptr<impls::column> column_loader::take(const std::vector<std::string>& unknown_texts,
                                                   std::vector<std::string>& remarks) {
  const auto remark = [&](const std::string& what) {
    if (!what.empty()) remarks.push_back("column " + in_quotes(chosen.name) + " " + what);
  };
  remark(remark_on_odd_texts(unknown_texts));
  if (lost_numbers > 0) {
    remark(
        fmt::format("loses {}: as float {}", counted(lost_numbers, "distinct number"),
                    lost_numbers == 1 ? "it is equal to another one" : "they are equal to others"));
  }
  if (data_type == "null") remark("has no known value and is ignored");
  if (made->is_class() && made->get_distinct() == 2)
    remark("is the class and has a single value: nothing can be gained");
  return std::move(made);
}

}  // namespace arbor::tree
