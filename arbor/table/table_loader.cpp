#include "arbor/table/table_loader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <numeric>
#include <optional>
#include <utility>

#include "arbor/csv/csv_table.h"
#include "arbor/csv/found_delimiter.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/formats/open_table.h"
#include "arbor/table/cells/cell_blocks.h"
#include "arbor/table/column_loader.h"
#include "arbor/table/row_sharing.h"
#include "arbor/table/table_checks.h"
#include "arbor/table/thread_pool.h"
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

// Does a part of the work. If it fails in one of the processes that load together, it does in all.
template <class Work>
void together(row_sharing* sharing, Work work) {
  if (sharing == nullptr) return work();
  sharing->agree(failure_of(work));
}

class loading {
 public:
  loading(const std::vector<std::string>& paths, const load_options& chosen, row_sharing* with)
      : sharing(with),
        file(paths, chosen.input, open_table_file),
        options(chosen),
        null_value(null_text(file.unknowns().texts())) {
    check_choices(options.types_from, options.types, data_types());
    check_choices(options.kinds_from, options.kinds, {"discrete", "continuous", "ignore"});
    file.read_names();
    assign_columns();
  }

  table load() {
    if (sharing != nullptr) file.keep_parts(sharing->own_parts(file));
    together(sharing, [&] { read_rows(); });
    count_all();
    together(sharing, [&] {
      if (all.rows == 0) file.fail(why_no_rows());
    });
    table result;
    result.name = file.name();
    result.class_index = class_cell;
    make_columns_and(result.cases);
    result.remarks = remarks();
    for (const auto& loader : loaders) result.columns.push_back(loader->take(result.remarks));
    result.input_remarks = file.remarks(all.skipped_lines);
    if (all.unclassed_rows > 0) {
      result.input_remarks.push_back(
          {input_remark::matter::unclassed_rows,
           counted(all.unclassed_rows, "row without a class was", "rows without a class were") +
               " left out"});
    }
    result.total_weight =
        sharing == nullptr ? total_weight(result.cases) : sharing->total_weight(result.cases);
    together(sharing, [&] {
      check_total_weight(
          result.total_weight,
          file.name() + ": column " + in_quotes(options.weights_name) + ": the weights");
    });
    return result;
  }

 private:
  // What is counted while rows are read.
  struct counts {
    std::uint64_t rows = 0;  // that are kept
    std::uint64_t rows_read = 0;
    std::uint64_t unclassed_rows = 0;
    std::uint64_t skipped_lines = 0;
    std::vector<std::uint64_t> with_numbers;  // by cell: how many processes have plain numbers
  };

  void count_all() {
    all = {rows, rows_read, unclassed_rows, file.skipped_lines(), {}};
    if (sharing == nullptr) return;
    std::vector<std::uint64_t> numbers{all.rows, all.rows_read, all.unclassed_rows,
                                       all.skipped_lines};
    const auto first = static_cast<std::ptrdiff_t>(numbers.size());
    for (const auto& loader : loaders) numbers.push_back(loader->has_numbers() ? 1 : 0);
    sharing->add_up(numbers);
    all = {
        numbers[0], numbers[1], numbers[2], numbers[3], {numbers.begin() + first, numbers.end()}};
  }

  std::vector<table_remark> remarks() const {
    std::vector<std::uint64_t> rounded_cells;
    for (const auto& loader : loaders) rounded_cells.push_back(loader->rounded_cells());
    if (sharing != nullptr) sharing->add_up(rounded_cells);
    return remarks_on_columns(loaders, rounded_cells, file.unknowns().texts());
  }

  std::string why_no_rows() const {
    if (all.rows_read == 0) return "no rows below the column names";
    return all.unclassed_rows > 0 ? "no row has a class and a weight above 0"
                                  : "every row has the weight 0";
  }

  // Decides what each column is.
  void assign_columns() {
    const std::vector<std::string>& names = file.names();
    if (names.size() == 1) {
      file.fail("only one column, " + in_quotes(names[0]) + "; a table has several, between " +
                (options.input.delimiter ? delimiter_name(file.delimiter())
                                         : "commas, semicolons, tabs or bars"));
    }
    note_declarations();
    find_weights_and_class();
    for (const auto& type : options.types) file.cell_named(type.first, options.types_from);
    for (const auto& kind : options.kinds) check_kind_is_free(kind.first);
    for (std::size_t cell = 0; cell < names.size(); ++cell) loaders.push_back(loader_of(cell));
  }

  std::unique_ptr<column_loader> loader_of(std::size_t cell) const {
    const std::string& name = file.names()[cell];
    const std::string& type = choice_for(name, options.types);
    const declared_column* const as = declarations[cell];
    const bool is_declared = type.empty() && as != nullptr;
    try {
      return std::make_unique<column_loader>(column_loader::settings{
          name, kind_of(cell), choice_for(name, options.kinds).empty(),
          is_declared ? as->data_type : type, null_value, options.input.numbers,
          is_declared && as->values ? &*as->values : nullptr});
    } catch (const std::runtime_error& refusal) {
      file.fail("column " + in_quotes(name) + ": " + refusal.what());
    }
  }

  // Of two declarations of a column, that of the options goes before that of the file.
  void note_declarations() {
    declarations.assign(file.names().size(), nullptr);
    if (file.declared()) {
      for (std::size_t cell = 0; cell < declarations.size(); ++cell)
        declarations[cell] = &file.declared()->columns[cell];
    }
    for (const declared_column& column : options.declared.columns)
      declarations[file.cell_named(column.name, options.declared_from)] = &column;
  }

  const std::string& declared_kind(std::size_t cell) const {
    static const std::string none;
    return declarations[cell] == nullptr ? none : declarations[cell]->kind;
  }

  // The cell of this declared kind, class or weights; none if there is none.
  std::optional<std::size_t> cell_of_kind(const std::string& kind) const {
    for (std::size_t cell = 0; cell < declarations.size(); ++cell) {
      if (declared_kind(cell) == kind) return cell;
    }
    return std::nullopt;
  }

  void find_weights_and_class() {
    const std::vector<std::string>& names = file.names();
    id_cell = file.row_number_cell();
    if (!options.id_name.empty()) id_cell = file.cell_named(options.id_name, options.id_from);
    weights_cell = names.size();
    if (!options.weights_name.empty()) {
      weights_cell = file.cell_named(options.weights_name, options.weights_from);
    } else if (const auto declared = cell_of_kind("weights")) {
      weights_cell = *declared;
    }
    class_cell = names.size() - 1;
    if (!options.class_name.empty()) {
      class_cell = file.cell_named(options.class_name, options.class_from);
    } else if (const auto declared = cell_of_kind("class")) {
      class_cell = *declared;
    } else if (file.declared() && !file.declared()->class_name.empty()) {
      class_cell = file.cell_named(file.declared()->class_name, "the declared class");
    } else {
      while (class_cell > 0 && (class_cell == weights_cell || class_cell == id_cell)) --class_cell;
    }
    if (class_cell == weights_cell)
      file.fail(in_quotes(names[class_cell]) + " cannot be both the class and the weights");
    // That a column has the numbers of the rows was a guess.
    if (options.id_name.empty() && (id_cell == class_cell || id_cell == weights_cell))
      id_cell.reset();
    if (id_cell == class_cell || id_cell == weights_cell) {
      file.fail(fmt::format("{} cannot be both {} and the identifiers of the rows",
                            in_quotes(names[*id_cell]),
                            id_cell == class_cell ? "the class" : "the weights"));
    }
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
    static const std::string of_others = "ignore";
    if (cell == class_cell) return of_class;
    if (cell == weights_cell) return of_weights;
    const std::string& kind = choice_for(file.names()[cell], options.kinds);
    if (!kind.empty()) return kind;
    const std::string& declared = declared_kind(cell);
    const bool is_other = cell == id_cell || declared == of_class || declared == of_weights;
    return is_other ? of_others : declared;
  }

  struct row_block {
    csv_block cells;
    bool exists = false;  // false after the end of the file
    std::size_t rows_read = 0;
    std::size_t unclassed_rows = 0;  // that were left out
    std::vector<float> weights;      // of the rows that are left, if there is such a column
  };

  // Several blocks at a time are divided into cells side by side, and then the columns take their
  // cells of these blocks side by side. No two threads work on the same column, and each column
  // sees the rows in the order of the file.
  void read_rows() {
    constexpr std::size_t blocks_per_thread = 4;  // so that threads seldom wait for each other
    const unsigned int threads = options.threads == 0 ? machine_threads() : options.threads;
    std::vector<row_block> blocks(1);
    bool is_second = false;
    for (read(blocks); blocks.front().exists; read(blocks)) {
      take(blocks);
      if (options.progress) options.progress(rows_read);
      // A second block says that there may be many, which are worth starting threads.
      if (!std::exchange(is_second, true) || blocks.size() > 1 || threads == 1) continue;
      pool = std::make_unique<thread_pool>(threads);
      blocks.resize(blocks_per_thread * threads);
    }
  }

  // Reads the next blocks, in the order of the file. Those that there are no more of come last:
  // they still have the number of an earlier block.
  void read(std::vector<row_block>& blocks) {
    pool->for_each(blocks.size(), [&](std::size_t i) { read(blocks[i]); });
    std::sort(blocks.begin(), blocks.end(), [](const row_block& a, const row_block& b) {
      return std::make_pair(!a.exists, a.cells.number()) <
             std::make_pair(!b.exists, b.cells.number());
    });
  }

  // A row that weighs nothing is left out, and perhaps one without a class.
  void read(row_block& block) {
    block.exists = file.next(block.cells);
    block.rows_read = block.cells.rows();
    block.unclassed_rows = 0;
    block.weights.clear();
    const bool has_weights = weights_cell < file.names().size();
    if (!has_weights && !options.skips_unknown_class) return;
    block.cells.keep_rows([&](const csv_row& row) {
      const float weight = has_weights ? file.weight(row, weights_cell) : 1.0F;
      if (!(weight > 0)) return false;
      if (options.skips_unknown_class && file.unknowns().is_unknown(row, class_cell)) {
        ++block.unclassed_rows;
        return false;
      }
      if (has_weights) block.weights.push_back(weight);
      return true;
    });
  }

  // Of several things that are wrong with the file, the first one in its order is thrown.
  void take(std::vector<row_block>& blocks) {
    std::size_t count = 0;  // up to the first block with an error
    while (count < blocks.size() && !blocks[count++].cells.has_error()) continue;
    for (std::size_t i = 0; i < count; ++i) count_rows(blocks[i]);

    std::mutex mutex;  // guards the place of the first cell that is refused
    std::array<std::size_t, 3> refused{count, 0, 0};  // block, row, and 0 for the class or cell + 1
    pool->for_each(loaders.size(), [&](std::size_t cell) {
      for (std::size_t i = 0; i < count; ++i) {
        const csv_block& cells = blocks[i].cells;
        const std::size_t row = add(cells, cell);
        if (row == cells.rows()) continue;
        const bool is_unknown = file.unknowns().is_unknown(cells.row(row), cell);
        const std::lock_guard<std::mutex> lock(mutex);
        refused = std::min(refused, {i, row, is_unknown ? 0 : cell + 1});
        return;
      }
    });
    if (refused[0] < count) refuse(blocks[refused[0]].cells.row(refused[1]), refused[2]);
    blocks[count - 1].cells.check_end();
  }

  // Returns the first row whose cell is not of the chosen type or an unknown class, else the number
  // of rows.
  std::size_t add(const csv_block& cells, std::size_t cell) {
    const std::size_t refused = loaders[cell]->add(cells, cell, file.unknowns());
    if (cell != class_cell || loaders[cell]->unknown_cells() == 0) return refused;
    std::size_t row = 0;
    while (row < refused && !file.unknowns().is_unknown(cells.row(row), cell)) ++row;
    return row;
  }

  [[noreturn]] void refuse(const csv_row& row, std::size_t cell_or_class) const {
    if (cell_or_class == 0) {
      file.fail(row, class_cell,
                "the unknown value; the class of every row must be known, or the row be left out" +
                    options.unknown_class_advice);
    }
    const std::size_t cell = cell_or_class - 1;
    file.fail(row, cell, loaders[cell]->what_is_expected(row.text(cell)));
  }

  void count_rows(const row_block& block) {
    rows_read += block.rows_read;
    unclassed_rows += block.unclassed_rows;
    if (block.cells.rows() > std::numeric_limits<unsigned int>::max() - rows)
      file.fail("more than 4294967295 rows");
    rows += static_cast<unsigned int>(block.cells.rows());
    for (const float weight : block.weights) weights.push_back(weight);
  }

  // The class before the others, as it may have too many values. The cases come last, when most
  // cells have been freed.
  void make_columns_and(impls::w_sequence& cases) {
    make_columns({class_cell}, nullptr);
    std::vector<std::size_t> others(loaders.size());
    std::iota(others.begin(), others.end(), std::size_t{0});
    others.erase(others.begin() + static_cast<std::ptrdiff_t>(class_cell));
    const std::size_t at_once = sharing == nullptr ? others.size() : columns_to_share();
    for (std::size_t first = 0; first < others.size(); first += at_once) {
      const std::size_t end = std::min(first + at_once, others.size());
      make_columns({others.data() + first, others.data() + end},
                   end == others.size() ? &cases : nullptr);
    }
  }

  // So many that the processes do not wait for small messages, and so few that their distinct cells
  // take little memory.
  std::size_t columns_to_share() const {
    constexpr std::uint64_t most_cells = 1U << 24U;
    return static_cast<std::size_t>(std::clamp<std::uint64_t>(most_cells / all.rows, 4, 256));
  }

  // Makes some columns and, last, the cases. Of several columns that are refused, the first one is
  // named.
  void make_columns(const std::vector<std::size_t>& cells, impls::w_sequence* cases) {
    std::vector<distinct_cells> distinct;
    if (sharing != nullptr) distinct = shared_cells(cells);
    together(sharing, [&] {
      std::vector<std::exception_ptr> refusals(cells.size());
      pool->for_each(cells.size() + 1, [&](std::size_t i) {
        if (i < cells.size()) {
          if (sharing != nullptr) loaders[cells[i]]->take_whole(std::move(distinct[i]));
          refusals[i] = refusal_of(cells[i]);
        } else if (cases != nullptr) {
          make_cases(*cases);
        }
      });
      for (const std::exception_ptr& refusal : refusals) {
        if (refusal) std::rethrow_exception(refusal);
      }
    });
  }

  // The distinct cells of the columns, in the rows of all processes.
  std::vector<distinct_cells> shared_cells(const std::vector<std::size_t>& cells) {
    std::vector<distinct_cells> distinct(cells.size());
    together(sharing, [&] {
      pool->for_each(cells.size(), [&](std::size_t i) {
        distinct[i] = loaders[cells[i]]->distinct(all.with_numbers[cells[i]] > 0);
      });
    });
    sharing->unite(distinct);
    return distinct;
  }

  // Makes a column. Returns why it is refused, if it is.
  std::exception_ptr refusal_of(std::size_t cell) const {
    try {
      make_column(*loaders[cell]);
      if (cell == class_cell) check_classes(*loaders[cell]);
      return nullptr;
    } catch (const table_error&) {
      return std::current_exception();
    }
  }

  void check_classes(const column_loader& loader) const {
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

  void make_cases(impls::w_sequence& cases) {
    cases.reserve(rows);
    for (unsigned int row = 0; row < rows; ++row) cases.push_back({row, 1.0F});
    auto next = cases.begin();
    weights.consume([&](const float* first, std::size_t count) {
      for (std::size_t i = 0; i < count; ++i, ++next) next->second = first[i];
    });
  }

  row_sharing* sharing;  // null: this process loads the whole table
  csv_table file;
  const load_options& options;
  std::string null_value;
  std::unique_ptr<thread_pool> pool = std::make_unique<thread_pool>(1);
  std::vector<std::unique_ptr<column_loader>> loaders;  // by cell
  std::vector<const declared_column*> declarations;     // by cell, null if there is none
  std::optional<std::size_t> id_cell;
  std::size_t class_cell = 0;
  std::size_t weights_cell = 0;  // one past the last cell when every case weighs 1
  cell_blocks<float> weights;    // of the rows, if there is such a column
  unsigned int rows = 0;         // that weigh something
  std::size_t rows_read = 0;
  std::size_t unclassed_rows = 0;
  counts all;  // of the whole table
};

}  // namespace

const std::vector<std::string>& data_types() {
  static const std::vector<std::string> names{"integer", "uinteger", "decimal",
                                              "float",   "double",   "string"};
  return names;
}

table load_table(const std::vector<std::string>& paths, const load_options& options) {
  return loading(paths, options, nullptr).load();
}

table load_table(const std::vector<std::string>& paths, const load_options& options,
                 row_sharing& sharing) {
  std::unique_ptr<loading> begun;
  together(&sharing, [&] { begun = std::make_unique<loading>(paths, options, &sharing); });
  return begun->load();
}

}  // namespace arbor::tree
