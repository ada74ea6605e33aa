#include "arbor/table/column_loader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/unknown_texts.h"
#include "arbor/model/make_column.h"
#include "arbor/table/cells/decimal_codes.h"
#include "arbor/table/cells/float_merges.h"
#include "arbor/table/cells/number_codes.h"
#include "arbor/table/cells/text_codes.h"
#include "arbor/table/cells/unusual_numbers.h"
#include "arbor/utils/number_text.h"

namespace arbor::tree {

namespace {

column_cells::plain keepable_as(const std::string& chosen_type) {
  if (chosen_type.empty() || chosen_type == "float" || chosen_type == "decimal")
    return column_cells::plain::all;
  return chosen_type == "integer" ? column_cells::plain::integers : column_cells::plain::none;
}

// The first row with this text, which some row has, as a known value.
std::size_t first_row_of(std::string_view text, const csv_block& rows, std::size_t cell,
                         const unknown_texts& unknowns) {
  std::size_t i = 0;
  while (unknowns.is_unknown(rows.row(i), cell) || rows.row(i).text(cell) != text) ++i;
  return i;
}

// Numbers that are not written in the usual way are kept as their texts, so that these stay
// unchanged if another cell makes the column one of texts. So are declared values, to compare them.
column_cells::plain keepable_as(const column_loader::settings& chosen) {
  if (chosen.values != nullptr) return column_cells::plain::none;
  const column_cells::plain kept = keepable_as(chosen.data_type);
  return kept == column_cells::plain::all && !chosen.numbers.is_usual()
             ? column_cells::plain::integers
             : kept;
}

}  // namespace

column_loader::column_loader(const settings& of_column)
    : chosen(of_column), cells(keepable_as(chosen)) {
  survey.data_type = chosen.data_type;
  if (chosen.values != nullptr) add_declared_values();
}

// They become texts of the dictionary, which all become values of the domain.
void column_loader::add_declared_values() {
  declared_numbers = std::make_unique<std::unordered_set<std::uint64_t>>();
  for (const std::string& value : *chosen.values) {
    const unsigned int texts_before = cells.texts().size();
    std::string text = value;
    // A declared number has a decimal point, as everywhere but in the cells.
    if (chosen.data_type != "string")
      std::replace(text.begin(), text.end(), '.', chosen.numbers.decimal_mark);
    if (cells.declare(text) <= texts_before || chosen.data_type == "string") continue;
    if (!is_of_type(chosen.data_type, chosen.numbers, text.c_str())) {
      throw std::runtime_error("the declared value " + in_quotes(value) + " is not of the type " +
                               chosen.data_type);
    }
    declared_numbers->insert(identity_of(text.c_str()));
  }
}

std::size_t column_loader::add(const csv_block& rows, std::size_t cell,
                               const unknown_texts& unknowns) {
  const unsigned int texts_before = cells.texts().size();
  cells.add(rows, cell, unknowns);
  const unsigned int refused = refused_after(texts_before);
  return refused == 0 ? rows.rows()
                      : first_row_of(cells.texts().view(refused), rows, cell, unknowns);
}

std::optional<std::string> column_loader::add(memory_cells& source, std::size_t first,
                                              std::size_t end) {
  const unsigned int texts_before = cells.texts().size();
  source.add_to(cells, first, end);
  const unsigned int refused = refused_after(texts_before);
  if (refused == 0) return std::nullopt;
  return std::string(cells.texts().view(refused));
}

// The code of the first text after the first ones that the column may not have, 0 if there is none.
// Plain numbers are kept as such only if the column may have them, and any other text has to be
// read only once.
unsigned int column_loader::refused_after(unsigned int texts_before) const {
  if (chosen.data_type.empty() && chosen.kind != "continuous") return 0;
  for (unsigned int code = texts_before + 1; code <= cells.texts().size(); ++code) {
    if (!take_text(code)) return code;
  }
  return 0;
}

// Whether a new text of the dictionary is what the column may have.
bool column_loader::take_text(unsigned int code) const {
  const char* const text = cells.texts().text(code);
  if (chosen.data_type == "string") return chosen.values == nullptr;
  if (chosen.data_type.empty()) return is_of_type("float", chosen.numbers, text);
  if (!is_of_type(chosen.data_type, chosen.numbers, text)) return false;
  return chosen.values == nullptr || declared_numbers->count(identity_of(text)) > 0;
}

std::uint64_t column_loader::identity_of(const char* number) const {
  std::string storage;
  const char* const usual = usual_text(chosen.numbers, number, storage);
  if (chosen.data_type != "float") return number_identity(usual);
  // Numbers that are equal as float are the same value of the column.
  double value = 0;
  strata::util::read_number(usual, value);
  const float rounded = static_cast<float>(value) + 0.0F;  // -0 becomes 0
  std::uint32_t bits = 0;
  std::memcpy(&bits, &rounded, sizeof bits);
  return bits;
}

std::string column_loader::what_is_expected(const std::string& refused) const {
  if (chosen.data_type.empty()) return "no number, and the column is continuous";
  const bool is_proper =
      chosen.data_type == "string" || is_of_type(chosen.data_type, chosen.numbers, refused.c_str());
  if (!is_proper) return "not of the type " + chosen.data_type + " that was chosen for the column";
  return "none of the values that were declared for the column" +
         did_you_mean(refused, *chosen.values);
}

bool column_loader::has_numbers() const {
  return cells.kept_as() == column_cells::form::numbers ||
         (cells.kept_as() == column_cells::form::integers && cells.has_known());
}

void column_loader::take_whole(distinct_cells whole) {
  distinct_rows = whole.rows();
  whole_counts = std::make_unique<cell_counts>(whole.counts);
  cells =
      column_cells(std::move(whole), std::exchange(cells, column_cells(column_cells::plain::none)));
}

void column_loader::make_column() {
  if (cells.rows() > std::numeric_limits<unsigned int>::max()) {
    throw std::runtime_error(
        "its distinct values and the rows of a process are more than 4294967295 together");
  }
  if (chosen.data_type.empty()) {
    survey = surveyed(cells, whole_counts ? *whole_counts : cells.counts(), chosen.numbers);
  } else if (chosen.data_type != "string") {
    survey.text_numbers = usual_numbers(cells, chosen.numbers);
  }
  if (chosen.data_type == "decimal") survey.scale = scale_of_decimals();
  find_near_numbers();
  if (chosen.data_type.empty() && survey.data_type == "float")
    rounded_numbers = tree::rounded_cells(cells, survey.text_numbers, distinct_rows);
  std::unique_ptr<impls::o_set> domain = make_domain();
  std::string error;
  made.reset(impls::column::NEW_COLUMN(domain.get(), chosen.name, kind(), error));
  if (made == nullptr) throw std::runtime_error(error + advice());
  domain.release();  // the column has adopted it
  const std::size_t rows = cells.keys().size();
  known_cells = whole_counts ? whole_counts->known : rows - cells.unknown_cells();
  made->reserve(static_cast<unsigned int>(rows - distinct_rows));
  std::size_t skipped = distinct_rows;
  cells.keys().consume([&](const std::uint32_t* codes, std::size_t count) {
    const std::size_t first = std::min(count, skipped);
    skipped -= first;
    made->append_codes(codes + first, static_cast<unsigned int>(count - first));
  });
  cells = column_cells(column_cells::plain::none);
  whole_counts.reset();
  survey.text_numbers = {};
}

std::unique_ptr<decimal_scale> column_loader::scale_of_decimals() {
  if (const std::optional<decimal_scale> scale = common_scale(cells))
    return std::make_unique<decimal_scale>(*scale);
  throw std::runtime_error(
      "its numbers are no multiples of a common step with at most 4294967295 steps between the "
      "least and the greatest, which the type decimal needs; the type float rounds them");
}

// A domain without values.
std::unique_ptr<impls::o_set> column_loader::new_domain(const std::string& null_text) const {
  if (survey.scale) return std::make_unique<decimal_domain>(*survey.scale, true, null_text);
  return impls::make_domain(survey.data_type, true, null_text);
}

// The domain of the cells, whose keys become codes.
std::unique_ptr<impls::o_set> column_loader::make_domain() {
  const bool is_text = survey.data_type == "string";
  // Among numbers the unknown value needs a text that no number is printed as.
  const std::string null_text = is_text ? chosen.null_text : "?";
  std::unique_ptr<impls::o_set> domain(new_domain(null_text));
  if (cells.unknown_cells() > 0) domain->insert(null_text.c_str());
  if (is_text) {
    code_texts(cells, *domain);
  } else if (survey.data_type != "null") {
    lost_numbers = code_numbers(cells, survey.text_numbers, *domain);
  }
  return domain;
}

std::string column_loader::kind() const {
  const bool is_declared =
      chosen.kind_is_declared && chosen.kind != "class" && chosen.kind != "weights";
  if (survey.data_type == "null" && (chosen.kind.empty() || is_declared)) return "ignore";
  if (!chosen.kind.empty()) return chosen.kind;
  return survey.data_type == "string" ? "discrete" : "continuous";
}

// What would be accepted instead of a refused kind.
std::string column_loader::advice() const {
  if (survey.data_type == "null") return "; it has no known value, and can only be ignored";
  if (survey.data_type == "double")
    return "; the numeric data types are integer, uinteger, decimal and float";
  return "";
}

void column_loader::find_near_numbers() {
  if (survey.others.empty() || kind() == "class" || kind() == "ignore") return;
  const std::string& sample = survey.others.front().text;
  std::vector<number_form> forms = unusual_forms(cells, sample, chosen.numbers);
  std::size_t other_cells = 0;
  for (const auto& other : survey.others) other_cells += other.cells;
  if (!forms.empty()) {
    near = std::make_unique<near_numbers>(near_numbers{chosen.name, {}, sample, std::move(forms)});
  } else if (survey.others.size() < other_texts_end && other_cells < survey.number_cells) {
    near = std::make_unique<near_numbers>(near_numbers{chosen.name, survey.others, "", {}});
  }
}

void column_loader::add_near_numbers(std::vector<near_numbers>& columns) const {
  if (near) columns.push_back(*near);
}

// On columns whose number of values makes poor trees.
std::vector<table_remark> column_loader::remarks_on_values() const {
  // Of fewer rows the values of any column may be different.
  constexpr std::size_t least_rows = 20;
  constexpr std::size_t most_numeric_classes = 100;
  std::vector<table_remark> remarks;
  if (made->is_discrete() && known_cells >= least_rows && 2 * values() > known_cells) {
    table_remark& remark = remarks.emplace_back();
    remark.text = fmt::format(
        "has {} different values in {} rows, and a split by them says little about other rows",
        values(), known_cells);
    remark.column = chosen.name;
  }
  if (made->is_class() && survey.data_type != "string" && values() > most_numeric_classes) {
    remarks.emplace_back().text = fmt::format(
        "is the class and has {} different numbers: each is a class of its own, since there is no "
        "regression; divide them into a few ranges first",
        values());
  }
  if (made->is_class() && values() == 1)
    remarks.emplace_back().text = "is the class and has a single value: nothing can be gained";
  return remarks;
}

std::unique_ptr<impls::column> column_loader::take(std::vector<table_remark>& remarks) {
  const auto add = [&](table_remark remark) {
    remark.text = "column " + in_quotes(chosen.name) + " " + remark.text;
    remarks.push_back(std::move(remark));
  };
  if (lost_numbers > 0) {
    table_remark lost;
    lost.text =
        fmt::format("loses {}: as float {}", counted(lost_numbers, "distinct number"),
                    lost_numbers == 1 ? "it is equal to another one" : "they are equal to others");
    lost.column = chosen.name;
    lost.loses_numbers = true;
    impls::column::get_type(made->get_type(), lost.kind);
    add(std::move(lost));
  }
  table_remark unknown;
  unknown.text = "has no known value and is ignored";
  if (survey.data_type == "null") add(std::move(unknown));
  for (table_remark& remark : remarks_on_values()) add(std::move(remark));
  return std::move(made);
}

}  // namespace arbor::tree
