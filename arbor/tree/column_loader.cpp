#include "arbor/tree/column_loader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "arbor/tree/domain_text.h"
#include "arbor/tree/message_text.h"
#include "arbor/tree/text_table.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/string_util.h"

namespace arbor::tree {

namespace {

// Whether a column of numbers can hold the text and find it again; what is "not a number" equals nothing.
bool is_number(const char* text, double& value) {
  return strata::util::read_number(text, value) && !std::isnan(value);
}

// Whether a number is written as an integer and is in the range of one.
bool is_integer(const char* text) {
  const char last = text[std::strlen(text) - 1];
  if (last < '0' || last > '9') return false;
  try {
    int ignored = 0;
    strata::util::string_util::str2int(text, ignored);
    return true;
  } catch (const std::runtime_error&) {
    return false;
  }
}

}  // namespace

column_loader::column_loader(settings of_column) : chosen(std::move(of_column)), data_type(chosen.data_type) {
  start_domain(data_type.empty() ? "integer" : data_type.c_str());
}

void column_loader::start_domain(const char* type) {
  data_type = type;
  // Among numbers the unknown value needs a text that no number is printed as.
  null_text = is_text() ? chosen.null_text : "?";
  domain.reset(impls::o_set::NEW_O_SET(data_type, true, null_text));
}

void column_loader::insert(const char* text) {
  if (is_text()) {
    domain->insert(to_domain_text(text).c_str());
    return;
  }
  domain->insert(text);
  double value = 0;
  if (data_type == "float" && !may_merge && is_number(text, value)) may_merge = may_merge_as_float(text, value);
}

bool column_loader::accepts(const char* text) const {
  if (is_text()) return true;
  double value = 0;
  if (!is_number(text, value)) return false;
  try {
    domain->leq(text, text);  // reads the text as the domain does, and adds nothing
    return true;
  } catch (const std::runtime_error&) {
    return false;
  }
}

bool column_loader::survey(const char* text) {
  if (text == nullptr) {
    ++unknown_cells;
    return true;
  }
  if (chosen.data_type.empty()) {
    widen_to_fit(text);
  } else if (!accepts(text)) {
    return false;
  }
  if (complete) insert(text);
  return true;
}

void column_loader::widen_to_fit(const char* text) {
  if (!may_be_numbers) return;
  double value = 0;
  const bool number = is_number(text, value);
  const bool fits = is_text() || (number && (data_type == "float" || is_integer(text)));
  if (!fits) {
    complete = number_cells == 0;
    start_domain(number ? "float" : "string");
  }
  if (number) {
    ++number_cells;
  } else {
    note_odd(text);
  }
}

void column_loader::note_odd(const char* text) {
  constexpr std::size_t most_odd_texts = 3;
  const auto known =
      std::find_if(odd_texts.begin(), odd_texts.end(), [&](const odd_text& o) { return o.text == text; });
  if (known != odd_texts.end()) {
    ++known->cells;
  } else if (odd_texts.size() < most_odd_texts) {
    odd_texts.push_back({text, 1});
  } else {
    may_be_numbers = false;
  }
}

void column_loader::refill(const char* text) {
  if (text != nullptr) insert(text);
}

void column_loader::make_column(unsigned int rows) {
  const bool no_values = chosen.data_type.empty() && number_cells == 0 && odd_texts.empty();
  if (no_values) start_domain("null");
  if (unknown_cells > 0) domain->insert(null_text.c_str());
  std::string kind = chosen.kind;
  if (kind.empty()) kind = no_values ? "ignore" : is_text() ? "discrete" : "continuous";
  std::string error;
  made.reset(impls::column::NEW_COLUMN(domain.get(), chosen.name, kind, error));
  if (made == nullptr) throw std::runtime_error(error + advice(kind));
  const unsigned int known_values = domain.release()->size_of_known();
  made->reserve(rows);
  if (may_merge && data_type == "float") merges = std::make_unique<float_merges>(known_values);
}

// What would do instead of a refused kind.
std::string column_loader::advice(const std::string& kind) const {
  if (data_type == "null") return "; it has no known value, and can only be ignored";
  if (data_type == "double") return "; the numeric data types are integer, uinteger and float";
  if (kind == "continuous" && !odd_texts.empty()) return "; " + in_quotes(odd_texts.front().text) + " is no number";
  return "";
}

void column_loader::append(const char* text) {
  if (text == nullptr) {
    made->push_back(null_text.c_str());
  } else if (is_text()) {
    made->push_back(to_domain_text(text).c_str());
  } else {
    made->push_back(text);
  }
  if (merges && text != nullptr) merges->add(made->get_row_index(made->size() - 1), text);
}

// What would make numbers of a column of texts, if little is in the way; else nothing.
std::string column_loader::remark_on_odd_texts(const std::vector<std::string>& unknown_texts) const {
  std::size_t odd_cells = 0;
  for (const odd_text& odd : odd_texts) odd_cells += odd.cells;
  const bool odd_few = may_be_numbers && odd_cells > 0 && odd_cells < number_cells;
  if (!odd_few || made->is_class() || made->is_ignore()) return "";
  std::string found;
  std::vector<std::string> declared = unknown_texts;
  bool sayable = true;
  for (const odd_text& odd : odd_texts) {
    found += fmt::format("{}{} in {}", found.empty() ? "" : ", ", in_quotes(odd.text), counted(odd.cells, "cell"));
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
  const std::size_t merged = merges ? merges->count() : 0;
  if (merged > 0) {
    remark(fmt::format("loses {}: as float {}", counted(merged, "distinct number"),
                       merged == 1 ? "it is equal to another one" : "they are equal to others"));
  }
  if (data_type == "null") remark("has no known value and is ignored");
  if (made->is_class() && made->get_distinct() == 2)
    remark("is the class and has a single value: nothing can be gained");
  return std::move(made);
}

}  // namespace arbor::tree
