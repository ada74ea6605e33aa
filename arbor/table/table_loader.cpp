#include "arbor/table/table_loader.h"

#include <cmath>
#include <limits>
#include <new>
#include <utility>

#include "arbor/csv/csv_table.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/table/cell_blocks.h"
#include "arbor/table/column_loader.h"
#include "arbor/utils/no_storage.h"

namespace arbor::tree {

namespace {

class loading {
 public:
  loading(const std::string& path, const load_options& chosen)
      : file(path, unknown_texts(chosen.unknown_texts)), options(chosen) {
    for (const auto& [name, type] : options.types) {
      check_choice("--type: column " + in_quotes(name) + ": ", type,
                   {"integer", "uinteger", "float", "double", "string"});
    }
    for (const auto& [name, kind] : options.kinds) {
      check_choice("--kind: column " + in_quotes(name) + ": ", kind,
                   {"discrete", "continuous", "ignore"});
    }
  }

  table load() {
    table result;
    result.name = file.name();
    file.read([&] { assign_columns(); }, [&](const csv_row& row) { take(row); });
    if (rows == 0)
      file.fail(rows_read == 0 ? "no rows below the column names" : "every row has the weight 0");
    for (column_loader& loader : loaders) {
      try {
        loader.make_column();
      } catch (const strata::util::no_storage&) {
        throw std::bad_alloc();  // no fault of the table
      } catch (const std::runtime_error& refusal) {
        file.fail("column " + in_quotes(loader.name()) + ": " + refusal.what());
      }
    }
    result.cases = weighted_cases();
    result.total_weight = total_weight(result.cases);
    if (!std::isfinite(result.total_weight))
      file.fail("the weights add up to more than a float can hold");
    result.class_index = class_cell;
    for (column_loader& loader : loaders) {
      result.columns.push_back(loader.take(file.unknowns().texts(), result.remarks));
    }
    return result;
  }

 private:
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
    const unknown_texts& unknowns = file.unknowns();
    if (unknowns.is_unknown(row, class_cell)) {
      file.fail(row, class_cell,
                "the unknown value; the class of every row must be known, or the row be left out");
    }
    for (std::size_t cell = 0; cell < loaders.size(); ++cell) {
      if (unknowns.is_unknown(row, cell)) {
        loaders[cell].add_unknown();
      } else if (!loaders[cell].add(row.cell(cell))) {
        file.fail(row, cell,
                  "not of the type " + options.types[file.names()[cell]] +
                      " that was chosen for the column");
      }
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

  // Decides what each column is.
  void assign_columns() {
    const std::vector<std::string>& names = file.names();
    if (names.size() == 1) {
      file.fail_at(
          1, "only one column, " + in_quotes(names[0]) + "; a table has several, between commas");
    }
    weights_cell = options.weights_name.empty()
                       ? names.size()
                       : file.cell_named(options.weights_name, "--weights");
    const std::size_t last_cell = names.size() - (weights_cell + 1 == names.size() ? 2 : 1);
    class_cell =
        options.class_name.empty() ? last_cell : file.cell_named(options.class_name, "--class");
    if (class_cell == weights_cell) {
      file.fail(in_quotes(names[class_cell]) + " cannot be both the class and the weights");
    }
    if (names.size() == 2 && weights_cell < 2)
      file.fail("no column beside the class and the weights");
    for (const auto& type : options.types) file.cell_named(type.first, options.types_from);
    for (const auto& kind : options.kinds) {
      const std::size_t cell = file.cell_named(kind.first, "--kind");
      if (cell != class_cell && cell != weights_cell) continue;
      file.fail("column " + in_quotes(kind.first) + " is the " +
                (cell == class_cell ? "class" : "weights") +
                ", which is its kind; --kind is for attributes");
    }
    for (std::size_t cell = 0; cell < names.size(); ++cell) {
      const std::string& name = names[cell];
      const std::string kind = cell == class_cell     ? "class"
                               : cell == weights_cell ? "weights"
                                                      : options.kinds[name];
      loaders.emplace_back(
          column_loader::settings{name, kind, options.types[name], file.unknowns().domain_text()});
    }
  }

  csv_table file;
  load_options options;
  std::vector<column_loader> loaders;  // by cell
  std::size_t class_cell = 0;
  std::size_t weights_cell =
      std::numeric_limits<std::size_t>::max();  // beyond the last when every case weighs 1
  cell_blocks<float> weights;                   // of the rows, if there is such a column
  unsigned int rows = 0;                        // that weigh something
  std::size_t rows_read = 0;
};

}  // namespace

table load_table(const std::string& path, const load_options& options) {
  return loading(path, options).load();
}

}  // namespace arbor::tree
