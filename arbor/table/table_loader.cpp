#include "arbor/table/table_loader.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "arbor/csv/csv_table.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/table/cell_blocks.h"
#include "arbor/table/column_loader.h"
#include "arbor/table/value_text.h"
#include "arbor/utils/no_storage.h"

namespace arbor::tree {

namespace {

void check_choices(const std::string& from, const std::map<std::string, std::string>& chosen,
                   const std::vector<std::string>& choices) {
  for (const auto& [column, choice] : chosen)
    check_choice(from + ": column " + in_quotes(column) + ": ", choice, choices);
}

// The text for the unknown value in a domain of texts: one that stands for it in the file, or, when
// that might be a known text too, one that to_domain_text makes of no cell.
std::string null_text(const std::vector<std::string>& unknown_texts) {
  for (const std::string& text : unknown_texts) {
    if (!unknown_texts::is_empty_cell(text)) return to_domain_text(text);
  }
  return "\x7F?";
}

// The choice for a column; empty if there is none.
const std::string& choice_for(const std::string& column,
                              const std::map<std::string, std::string>& chosen) {
  static const std::string none;
  const auto found = chosen.find(column);
  return found == chosen.end() ? none : found->second;
}

class loading {
 public:
  loading(const std::string& path, const load_options& chosen)
      : file(path, unknown_texts(chosen.unknown_texts)),
        options(chosen),
        null_value(null_text(file.unknowns().texts())) {
    check_choices(options.types_from, options.types,
                  {"integer", "uinteger", "float", "double", "string"});
    check_choices(options.kinds_from, options.kinds, {"discrete", "continuous", "ignore"});
  }

  table load() {
    file.read([&] { assign_columns(); }, [&](const csv_row& row) { take(row); });
    if (rows == 0)
      file.fail(rows_read == 0 ? "no rows below the column names" : "every row has the weight 0");
    table result;
    result.name = file.name();
    result.class_index = class_cell;
    make_class_column();
    for (std::size_t cell = 0; cell < loaders.size(); ++cell) {
      const std::unique_ptr<column_loader> loader = std::move(loaders[cell]);
      if (cell != class_cell) make_column(*loader);
      result.columns.push_back(loader->take(file.unknowns().texts(), result.remarks));
    }
    result.cases = weighted_cases();
    result.total_weight = total_weight(result.cases);
    check_total(result.total_weight);
    return result;
  }

 private:
  // Decides what each column is.
  void assign_columns() {
    const std::vector<std::string>& names = file.names();
    if (names.size() == 1) {
      file.fail_at(
          1, "only one column, " + in_quotes(names[0]) + "; a table has several, between commas");
    }
    find_weights_and_class();
    for (const auto& type : options.types) file.cell_named(type.first, options.types_from);
    for (const auto& kind : options.kinds) check_kind_is_free(kind.first);
    for (std::size_t cell = 0; cell < names.size(); ++cell) {
      loaders.push_back(std::make_unique<column_loader>(column_loader::settings{
          names[cell], kind_of(cell), choice_for(names[cell], options.types), null_value}));
    }
  }

  void find_weights_and_class() {
    const std::vector<std::string>& names = file.names();
    const std::size_t last = names.size() - 1;
    weights_cell = names.size();
    if (!options.weights_name.empty())
      weights_cell = file.cell_named(options.weights_name, options.weights_from);
    class_cell = weights_cell == last ? last - 1 : last;
    if (!options.class_name.empty())
      class_cell = file.cell_named(options.class_name, options.class_from);
    if (class_cell == weights_cell)
      file.fail(in_quotes(names[class_cell]) + " cannot be both the class and the weights");
    if (names.size() == 2 && weights_cell < 2)
      file.fail("no column besides the class and the weights");
  }

  // Throws unless the column is an attribute, whose kind may be chosen.
  void check_kind_is_free(const std::string& column) const {
    const std::size_t cell = file.cell_named(column, options.kinds_from);
    if (cell != class_cell && cell != weights_cell) return;
    file.fail(options.kinds_from + ": column " + in_quotes(column) +
              (cell == class_cell ? " is the class" : " holds the weights") + ", not an attribute");
  }

  const std::string& kind_of(std::size_t cell) const {
    static const std::string of_class = "class";
    static const std::string of_weights = "weights";
    if (cell == class_cell) return of_class;
    return cell == weights_cell ? of_weights : choice_for(file.names()[cell], options.kinds);
  }

  // A row that weighs nothing is left out.
  void take(const csv_row& row) {
    ++rows_read;
    if (options.progress) options.progress(rows_read);
    const bool weighted = weights_cell < row.size();
    const float weight = weighted ? file.weight(row, weights_cell) : 1;
    if (!(weight > 0)) return;
    if (rows == std::numeric_limits<unsigned int>::max()) file.fail("more than 4294967295 rows");
    ++rows;
    if (weighted) weights.push_back(weight);
    if (file.unknowns().is_unknown(row, class_cell)) {
      file.fail(row, class_cell,
                "the unknown value; the class of every row must be known, or the row be left out");
    }
    for (std::size_t cell = 0; cell < loaders.size(); ++cell) take_cell(row, cell);
  }

  void take_cell(const csv_row& row, std::size_t cell) {
    if (file.unknowns().is_unknown(row, cell)) {
      loaders[cell]->add_unknown();
    } else if (!loaders[cell]->add(row.cell(cell))) {
      file.fail(row, cell,
                "not of the type " + choice_for(file.names()[cell], options.types) +
                    " that was chosen for the column");
    }
  }

  // Gain and split information are made of float sums of w log2 w. For weights that add up to S no
  // such sum exceeds S log2 S, which for 2^120 is less than half of the greatest float.
  void check_total(float total) const {
    constexpr float most_total_weight = 0x1p120F;
    if (total <= most_total_weight) return;
    file.fail(
        fmt::format("column {}: the weights add up to {}, and above {} the sums that make up a "
                    "gain do not fit a float; divide all weights by the same number",
                    in_quotes(options.weights_name),
                    std::isfinite(total) ? shortest_text(total) : "more than a float can hold",
                    shortest_text(most_total_weight)));
  }

  // Before the others are made, as it may have too many values.
  void make_class_column() {
    column_loader& loader = *loaders[class_cell];
    make_column(loader);
    if (loader.values() <= options.most_classes) return;
    file.fail(fmt::format("column {} is the class and has {} values, more than {}{}",
                          in_quotes(loader.name()), loader.values(), options.most_classes,
                          options.most_classes_advice));
  }

  void make_column(column_loader& loader) const {
    try {
      loader.make_column();
    } catch (const strata::util::no_storage&) {
      throw std::bad_alloc();  // the table is not to blame
    } catch (const std::runtime_error& refusal) {
      file.fail("column " + in_quotes(loader.name()) + ": " + refusal.what());
    }
  }

  impls::w_sequence weighted_cases() {
    impls::w_sequence cases;
    cases.reserve(rows);
    for (unsigned int row = 0; row < rows; ++row) cases.push_back({row, 1.0F});
    auto next = cases.begin();
    weights.consume([&](const float* first, std::size_t count) {
      for (std::size_t i = 0; i < count; ++i, ++next) next->second = first[i];
    });
    return cases;
  }

  csv_table file;
  const load_options& options;
  std::string null_value;
  std::vector<std::unique_ptr<column_loader>> loaders;  // by cell; freed one by one
  std::size_t class_cell = 0;
  std::size_t weights_cell = 0;  // one past the last cell when every case weighs 1
  cell_blocks<float> weights;    // of the rows, if there is such a column
  unsigned int rows = 0;         // that weigh something
  std::size_t rows_read = 0;
};

}  // namespace

table load_table(const std::string& path, const load_options& options) {
  return loading(path, options).load();
}

}  // namespace arbor::tree
