#include "arbor/tree/table_loader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <set>
#include <utility>

#include "arbor/tree/column_loader.h"
#include "arbor/tree/csv_reader.h"
#include "arbor/tree/message_text.h"
#include "arbor/tree/table_error.h"
#include "arbor/tree/text_table.h"
#include "arbor/tree/unknown_texts.h"
#include "arbor/utils/number_text.h"

namespace arbor::tree {

namespace {

class loading {
 public:
  loading(const std::string& path, const load_options& chosen)
      : file(path), options(chosen), unknown(chosen.unknown_texts) {
    for (const auto& [name, type] : options.types) {
      check_choice("--type: column " + in_quotes(name) + ": ", type,
                   {"integer", "uinteger", "float", "double", "string"});
    }
    for (const auto& [name, kind] : options.kinds) {
      check_choice("--kind: column " + in_quotes(name) + ": ", kind, {"discrete", "continuous", "ignore"});
    }
  }

  table load() {
    table result;
    result.name = file.name();
    survey(result.cases);
    refill();
    append(static_cast<unsigned int>(result.cases.size()));
    result.total_weight = total_weight(result.cases);
    if (!std::isfinite(result.total_weight)) fail("the weights add up to more than a float can hold");
    result.class_index = class_cell;
    for (column_loader& loader : loaders) result.columns.push_back(loader.take(unknown.texts(), result.remarks));
    return result;
  }

 private:
  using use_row = std::function<void(const csv_row& row, float weight)>;

  // The passes over the file.

  void survey(impls::w_sequence& cases) {
    for_each_row([&](const csv_row& row, float weight) {
      if (cases.size() == std::numeric_limits<unsigned int>::max()) fail("more than 4294967295 rows");
      if (unknown.known_text(row, class_cell) == nullptr) {
        fail(row, class_cell, "the unknown value; the class of every row must be known, or the row be left out");
      }
      for (std::size_t cell = 0; cell < loaders.size(); ++cell) {
        if (loaders[cell].survey(unknown.known_text(row, cell))) continue;
        fail(row, cell, "not of the type " + options.types[names[cell]] + " that was chosen for the column");
      }
      cases.push_back({static_cast<unsigned int>(cases.size()), weight});
    });
    if (names.empty()) fail("empty; a table begins with a row of column names");
    if (cases.empty()) fail(rows_read == 0 ? "no rows below the column names" : "every row has the weight 0");
    cases.shrink_to_fit();
  }

  void refill() {
    const auto needs_refill = [](const column_loader& loader) { return loader.needs_refill(); };
    if (std::none_of(loaders.begin(), loaders.end(), needs_refill)) return;
    for_each_row([&](const csv_row& row, float /*weight*/) {
      for (std::size_t cell = 0; cell < loaders.size(); ++cell) {
        if (loaders[cell].needs_refill()) loaders[cell].refill(unknown.known_text(row, cell));
      }
    });
  }

  void append(unsigned int rows) {
    for (column_loader& loader : loaders) {
      try {
        loader.make_column(rows);
      } catch (const std::runtime_error& refusal) {
        fail("column " + in_quotes(loader.name()) + ": " + refusal.what());
      }
    }
    constexpr const char* changed = "changed while it was being read; read it again";
    unsigned int appended = 0;
    try {
      for_each_row([&](const csv_row& row, float /*weight*/) {
        for (std::size_t cell = 0; cell < loaders.size(); ++cell) loaders[cell].append(unknown.known_text(row, cell));
        ++appended;
      });
    } catch (const table_error&) {
      throw;
    } catch (const std::runtime_error&) {
      fail(changed);  // it holds a text that it did not hold before
    }
    if (appended != rows) fail(changed);
  }

  // Hands out the rows that weigh something. The first pass also reads the column names.
  void for_each_row(const use_row& use) {
    file.rewind();
    bool in_header = true;
    rows_read = 0;
    read_csv(file, [&](const csv_row& row) {
      if (in_header) {
        in_header = false;
        if (names.empty()) read_header(row);
        return;
      }
      ++rows_read;
      if (options.progress) options.progress(rows_read);
      if (row.size() != names.size()) {
        fail_at(row.line(), fmt::format("{}, but the first row names {}{}", counted(row.size(), "cell"),
                                        counted(names.size(), "column"),
                                        row.size() > names.size() ? "; a cell with a comma in it needs quotes" : ""));
      }
      const float weight = weight_of(row);
      if (weight > 0) use(row, weight);
    });
  }

  void read_header(const csv_row& row) {
    std::set<std::string> seen;
    for (std::size_t cell = 0; cell < row.size(); ++cell) {
      const std::string name = row.text(cell);
      if (name.empty()) fail_at(row.line_of(cell), fmt::format("column {} has no name", cell + 1));
      if (!seen.insert(name).second) {
        fail_at(row.line_of(cell), "two columns have the name " + in_quotes(name));
      }
      names.push_back(name);
    }
    class_cell = options.class_name.empty() ? names.size() - 1 : cell_named(options.class_name, "class");
    weights_cell = options.weights_name.empty() ? names.size() : cell_named(options.weights_name, "weights");
    if (class_cell == weights_cell) fail(in_quotes(names[class_cell]) + " cannot be both the class and the weights");
    if (names.size() == 1)
      fail_at(1, "only one column, " + in_quotes(names[0]) + "; a table has several, between commas");
    if (names.size() == 2 && weights_cell < 2) fail("no column beside the class and the weights");
    for (const auto& type : options.types) cell_named(type.first, "type");
    for (const auto& kind : options.kinds) {
      const std::size_t cell = cell_named(kind.first, "kind");
      if (cell == class_cell || cell == weights_cell) {
        fail(fmt::format("column {} is the {}, which is its kind; --kind is for attributes", in_quotes(kind.first),
                         cell == class_cell ? "class" : "weights"));
      }
    }
    for (std::size_t cell = 0; cell < names.size(); ++cell) {
      const std::string& name = names[cell];
      const std::string kind = cell == class_cell ? "class" : cell == weights_cell ? "weights" : options.kinds[name];
      loaders.emplace_back(column_loader::settings{name, kind, options.types[name], unknown.texts().front()});
    }
  }

  std::size_t cell_named(const std::string& name, const std::string& option) const {
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) {
      fail(fmt::format("there is no column {} for --{}{}", in_quotes(name), option, did_you_mean(name, names)));
    }
    return static_cast<std::size_t>(found - names.begin());
  }

  float weight_of(const csv_row& row) const {
    if (weights_cell == names.size()) return 1;
    double weight = 0;
    const char* text = unknown.known_text(row, weights_cell);
    if (text == nullptr || !strata::util::read_number(text, weight) || !(weight >= 0) ||
        !std::isfinite(static_cast<float>(weight))) {
      fail(row, weights_cell, "no weight; a weight is a finite number from 0 up, and 0 leaves the row out");
    }
    return static_cast<float>(weight);
  }

  [[noreturn]] void fail(const std::string& what) const { throw table_error(file.name() + ": " + what); }

  [[noreturn]] void fail_at(unsigned long long line, const std::string& what) const {
    throw table_error(fmt::format("{}:{}: {}", file.name(), line, what));
  }

  [[noreturn]] void fail(const csv_row& row, std::size_t cell, const std::string& what) const {
    fail_at(row.line_of(cell),
            fmt::format("column {}: {} is {}", in_quotes(names[cell]), in_quotes(row.text(cell)), what));
  }

  input_file file;
  load_options options;
  unknown_texts unknown;
  std::vector<std::string> names;
  std::vector<column_loader> loaders;  // by cell
  std::size_t class_cell = 0;
  std::size_t weights_cell = 0;  // the number of columns when every case weighs 1
  std::size_t rows_read = 0;
};

}  // namespace

table load_table(const std::string& path, const load_options& options) {
  return loading(path, options).load();
}

}  // namespace arbor::tree
