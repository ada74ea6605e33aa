#include "arbor/table/column_loader.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/unknown_texts.h"
#include "arbor/table/float_merges.h"
#include "arbor/table/number_codes.h"
#include "arbor/table/text_codes.h"

namespace arbor::tree {

namespace {

column_cells::plain keepable_as(const std::string& chosen_type) {
  if (chosen_type.empty() || chosen_type == "float") return column_cells::plain::all;
  return chosen_type == "integer" ? column_cells::plain::integers : column_cells::plain::none;
}

// The first row with this text, which some row has, as a known value.
std::size_t first_row_of(std::string_view text, const csv_block& rows, std::size_t cell,
                         const unknown_texts& unknowns) {
  std::size_t i = 0;
  while (unknowns.is_unknown(rows.row(i), cell) || rows.row(i).text(cell) != text) ++i;
  return i;
}

// Whether a message shows the text as it is, so that a person can copy it from there.
bool is_shown_whole(const std::string& text) {
  return printable(text) == text && text.size() < 60;
}

}  // namespace

column_loader::column_loader(const settings& of_column)
    : chosen(of_column),
      cells(chosen.values != nullptr ? column_cells::plain::none : keepable_as(chosen.data_type)) {
  survey.data_type = chosen.data_type;
  if (chosen.values != nullptr) add_declared_values();
}

// They become texts of the dictionary, which all become values of the domain.
void column_loader::add_declared_values() {
  for (const std::string& value : *chosen.values) {
    const unsigned int texts_before = cells.texts().size();
    if (cells.declare(value) <= texts_before || chosen.data_type == "string") continue;
    if (!read_as(chosen.data_type, value.c_str(), survey.text_numbers.emplace_back())) {
      throw std::runtime_error("the declared value " + in_quotes(value) + " is not of the type " +
                               chosen.data_type);
    }
    declared_numbers.insert(number_identity(value.c_str()));
  }
}

std::size_t column_loader::add(const csv_block& rows, std::size_t cell,
                               const unknown_texts& unknowns) {
  const unsigned int texts_before = cells.texts().size();
  cells.add(rows, cell, unknowns);
  if (chosen.data_type.empty()) return rows.rows();
  // Plain numbers are kept as such only if they are of the chosen data type, and any other text has
  // to be read only once.
  for (unsigned int code = texts_before + 1; code <= cells.texts().size(); ++code) {
    if (!take_text(code)) return first_row_of(cells.texts().view(code), rows, cell, unknowns);
  }
  return rows.rows();
}

// Whether a new text of the dictionary is what the column may have.
bool column_loader::take_text(unsigned int code) {
  const char* const text = cells.texts().text(code);
  if (chosen.data_type == "string") return chosen.values == nullptr;
  if (!read_as(chosen.data_type, text, survey.text_numbers.emplace_back())) return false;
  return chosen.values == nullptr || declared_numbers.count(number_identity(text)) > 0;
}

std::string column_loader::what_is_expected(const std::string& refused) const {
  double number = 0;
  const bool is_of_type =
      chosen.data_type == "string" || read_as(chosen.data_type, refused.c_str(), number);
  if (!is_of_type) return "not of the type " + chosen.data_type + " that was chosen for the column";
  return "none of the values that were declared for the column" +
         did_you_mean(refused, *chosen.values);
}

void column_loader::make_column() {
  if (chosen.data_type.empty()) survey = surveyed(cells);
  std::unique_ptr<impls::o_set> domain = make_domain();
  std::string error;
  made.reset(impls::column::NEW_COLUMN(domain.get(), chosen.name, kind(), error));
  if (made == nullptr) throw std::runtime_error(error + advice());
  domain.release();  // the column has adopted it
  known_cells = cells.keys().size() - cells.unknown_cells();
  made->reserve(static_cast<unsigned int>(cells.keys().size()));
  cells.keys().consume([&](const std::uint32_t* codes, std::size_t count) {
    made->append_codes(codes, static_cast<unsigned int>(count));
  });
  cells = column_cells(column_cells::plain::none);
  survey.text_numbers = {};
}

// The domain of the cells, whose keys become codes.
std::unique_ptr<impls::o_set> column_loader::make_domain() {
  const bool is_text = survey.data_type == "string";
  // Among numbers the unknown value needs a text that no number is printed as.
  const std::string null_text = is_text ? chosen.null_text : "?";
  std::unique_ptr<impls::o_set> domain(impls::o_set::NEW_O_SET(survey.data_type, true, null_text));
  if (cells.unknown_cells() > 0) domain->insert(null_text.c_str());
  if (is_text) {
    code_texts(cells, *domain);
  } else if (survey.data_type != "null") {
    lost_numbers = code_numbers(cells, survey.text_numbers, *domain);
  }
  return domain;
}

std::string column_loader::kind() const {
  if (!chosen.kind.empty()) return chosen.kind;
  if (survey.data_type == "null") return "ignore";
  return survey.data_type == "string" ? "discrete" : "continuous";
}

// What would be accepted instead of a refused kind.
std::string column_loader::advice() const {
  if (survey.data_type == "null") return "; it has no known value, and can only be ignored";
  if (survey.data_type == "double")
    return "; the numeric data types are integer, uinteger and float";
  if (kind() == "continuous" && !survey.others.empty())
    return "; " + in_quotes(survey.others.front().text) + " is no number";
  return "";
}

// If most cells of a column of texts are numbers, which texts are not; else nothing.
table_remark column_loader::remark_on_other_texts(
    const std::vector<std::string>& unknown_texts) const {
  std::size_t other_cells = 0;
  for (const auto& other : survey.others) other_cells += other.cells;
  const bool are_few = survey.others.size() < other_texts_end && other_cells < survey.number_cells;
  if (survey.others.empty() || !are_few || made->is_class() || made->is_ignore()) return {};
  table_remark remark{"is of texts, but all its values are numbers except ", unknown_texts, {}};
  bool can_be_declared = true;
  for (const auto& other : survey.others) {
    const char* const between = &other == &survey.others.front() ? "" : ", ";
    remark.text += between + in_quotes(other.text) + " in " + counted(other.cells, "cell");
    remark.to_declare.push_back(unknown_texts::declared(other.text));
    can_be_declared = can_be_declared && is_shown_whole(other.text);
  }
  if (!can_be_declared) remark.to_declare.clear();
  return remark;
}

// On columns whose number of values makes poor trees.
std::vector<table_remark> column_loader::remarks_on_values() const {
  // Of fewer rows the values of any column may be different.
  constexpr std::size_t least_rows = 20;
  constexpr std::size_t most_numeric_classes = 100;
  std::vector<table_remark> remarks;
  if (made->is_discrete() && known_cells >= least_rows && 2 * values() > known_cells) {
    remarks.push_back({fmt::format("has {} different values in {} rows, and a split by them says "
                                   "little about other rows",
                                   values(), known_cells),
                       {},
                       chosen.name});
  }
  if (made->is_class() && survey.data_type != "string" && values() > most_numeric_classes) {
    remarks.push_back({fmt::format("is the class and has {} different numbers: each is a class of "
                                   "its own, since there is no regression; divide them into a few "
                                   "ranges first",
                                   values()),
                       {},
                       {}});
  }
  if (made->is_class() && values() == 1)
    remarks.push_back({"is the class and has a single value: nothing can be gained", {}, {}});
  return remarks;
}

std::unique_ptr<impls::column> column_loader::take(const std::vector<std::string>& unknown_texts,
                                                   std::vector<table_remark>& remarks) {
  const auto add = [&](table_remark remark) {
    remark.text = "column " + in_quotes(chosen.name) + " " + remark.text;
    remarks.push_back(std::move(remark));
  };
  table_remark other_texts = remark_on_other_texts(unknown_texts);
  if (!other_texts.text.empty()) add(std::move(other_texts));
  if (lost_numbers > 0) {
    const char* const are_equal =
        lost_numbers == 1 ? "it is equal to another one" : "they are equal to others";
    add({fmt::format("loses {}: as float {}", counted(lost_numbers, "distinct number"), are_equal),
         {},
         {}});
  }
  if (survey.data_type == "null") add({"has no known value and is ignored", {}, {}});
  for (table_remark& remark : remarks_on_values()) add(std::move(remark));
  return std::move(made);
}

}  // namespace arbor::tree
