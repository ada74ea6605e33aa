#include "arbor/table/memory_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <numeric>
#include <set>
#include <utility>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/table/cells/memory_cells.h"
#include "arbor/table/column_loader.h"
#include "arbor/table/table_checks.h"
#include "arbor/table/thread_pool.h"
#include "arbor/utils/no_storage.h"

namespace arbor::tree {

namespace {

class memory_loading {
 public:
  memory_loading(const memory_table& of, const memory_options& chosen)
      : from(of), options(chosen), rows(of.columns.at(of.class_index).numbers.count) {
    check_columns();
    for (const memory_column& column : from.columns) {
      loaders.push_back(std::make_unique<column_loader>(column_loader::settings{
          column.name, kind_of(column), false, any_type, null_value, usual_numbers, nullptr}));
    }
  }

  table load() {
    thread_pool pool(threads());
    table result;
    result.name = from.name;
    result.class_index = from.class_index;
    std::vector<std::exception_ptr> refusals(loaders.size());
    pool.for_each(loaders.size() + 1, [&](std::size_t i) {
      if (i == 0) {
        make_cases(result.cases);
      } else {
        refusals[i - 1] = refusal_of(i - 1);
      }
    });
    for (const std::exception_ptr& refusal : refusals) {
      if (refusal) std::rethrow_exception(refusal);
    }
    std::vector<std::uint64_t> rounded_cells;
    for (const auto& loader : loaders) rounded_cells.push_back(loader->rounded_cells());
    result.remarks = remarks_on_columns(loaders, rounded_cells, unknowns.texts());
    for (const auto& loader : loaders) result.columns.push_back(loader->take(result.remarks));
    result.total_weight = total_weight(result.cases);
    check_total_weight(result.total_weight, from.name + ": the weights");
    return result;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw table_error(from.name + ": " + what);
  }
  [[noreturn]] void fail(std::size_t column, const std::string& what) const {
    fail("column " + in_quotes(from.columns[column].name) + ": " + what);
  }

  void check_columns() const {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < from.columns.size(); ++i) {
      names.push_back(from.columns[i].name);
      if (from.columns[i].numbers.count == rows) continue;
      fail(i, fmt::format("{}, but the class has {}", counted(from.columns[i].numbers.count, "row"),
                          rows));
    }
    std::set<std::string> distinct;
    for (const std::string& name : names) {
      if (!distinct.insert(name).second) fail("two columns have the name " + in_quotes(name));
    }
    if (rows == 0) fail("no rows");
    if (rows > std::numeric_limits<unsigned int>::max()) fail("more than 4294967295 rows");
    for (const auto& [column, kind] : options.kinds) {
      const std::string choice = options.kinds_from + ": column " + in_quotes(column);
      check_choice(from.name + ": " + choice + ": ", kind, {"discrete", "continuous", "ignore"});
      if (distinct.count(column) == 0)
        fail(choice + " does not exist" + did_you_mean(column, names));
      if (column == from.columns[from.class_index].name)
        fail(choice + " is the class, not an attribute");
    }
  }

  const std::string& kind_of(const memory_column& column) const {
    static const std::string of_class = "class";
    static const std::string none;
    if (&column == &from.columns[from.class_index]) return of_class;
    const auto chosen = options.kinds.find(column.name);
    return chosen == options.kinds.end() ? none : chosen->second;
  }

  unsigned int threads() const {
    constexpr std::size_t worth_sharing = 10000;
    if (rows < worth_sharing) return 1;
    return options.threads == 0 ? machine_threads() : options.threads;
  }

  // What the caller's check has thrown, which is no refusal of the table.
  struct ended {
    std::exception_ptr thrown;
  };

  // Makes a column. Returns why it is refused, if it is.
  std::exception_ptr refusal_of(std::size_t number) {
    try {
      make_column(number);
      return nullptr;
    } catch (const ended& by_caller) {
      std::rethrow_exception(by_caller.thrown);
    } catch (const table_error&) {
      return std::current_exception();
    } catch (const strata::util::no_storage&) {
      throw std::bad_alloc();  // the table is not to blame
    } catch (const std::runtime_error& refusal) {
      return failure_of([&] { fail(number, refusal.what()); });
    }
  }

  void make_column(std::size_t number) {
    constexpr std::size_t rows_at_once = 1U << 16U;
    column_loader& loader = *loaders[number];
    memory_cells source(from.columns[number]);
    for (std::size_t first = 0; first < rows; first += rows_at_once) {
      check();
      const std::size_t end = std::min(rows, first + rows_at_once);
      if (const std::optional<std::string> refused = loader.add(source, first, end)) {
        fail(fmt::format("row {}: column {}: {} is {}", source.row_with(*refused, first, end),
                         in_quotes(loader.name()), in_quotes(*refused),
                         loader.what_is_expected(*refused)));
      }
    }
    if (number == from.class_index && loader.unknown_cells() > 0) {
      fail(fmt::format(
          "row {}: column {}: the unknown value (NaN); the class of every row must be known",
          source.first_unknown(), in_quotes(loader.name())));
    }
    check();
    loader.make_column();
    check();
  }

  void check() const {
    if (!options.check) return;
    if (std::exception_ptr thrown = failure_of(options.check)) throw ended{std::move(thrown)};
  }

  void make_cases(impls::w_sequence& cases) const {
    cases.reserve(rows);
    for (std::size_t row = 0; row < rows; ++row) {
      const float weight = from.weights == nullptr ? 1.0F : from.weights[row];
      if (!std::isfinite(weight) || !(weight > 0))
        fail(fmt::format("row {}: its weight is not a finite number above 0", row));
      cases.push_back({static_cast<unsigned int>(row), weight});
    }
  }

  const memory_table& from;
  const memory_options& options;
  const std::size_t rows;
  const unknown_texts unknowns{{}};
  const number_form usual_numbers;
  const std::string any_type;
  const std::string null_value = unknowns.texts().front();
  std::vector<std::unique_ptr<column_loader>> loaders;  // by column
};

}  // namespace

table make_table(const memory_table& from, const memory_options& options) {
  return memory_loading(from, options).load();
}

}  // namespace arbor::tree
