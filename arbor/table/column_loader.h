// Turns the cells of one column of a file into a column of codes.
//
//   column_loader loader(settings);
//   for each block of rows: if (loader.add(block, cell, unknowns) < block.rows()) ...
//   loader.make_column();
//   table.columns.push_back(loader.take(table.remarks));
#ifndef ARBOR_TABLE_COLUMN_LOADER_H
#define ARBOR_TABLE_COLUMN_LOADER_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "arbor/model/column.h"
#include "arbor/table/cells/column_cells.h"
#include "arbor/table/cells/column_survey.h"
#include "arbor/table/cells/distinct_cells.h"
#include "arbor/table/cells/memory_cells.h"
#include "arbor/table/table.h"
#include "arbor/table/text_remarks.h"

namespace arbor::tree {

class column_loader {
 public:
  // The texts must outlive the loader: of a million columns, copies would take most of the memory.
  struct settings {
    const std::string& name;
    // Empty: continuous for numbers, discrete for texts, ignore without known values.
    const std::string& kind;
    // Whether the kind is what a file says, which gives way to ignore without known values.
    bool kind_is_declared;
    const std::string& data_type;  // empty: the narrowest that holds all cells
    const std::string& null_text;  // the domain's text of the unknown value, in a column of texts
    const number_form& numbers;    // how they are written
    // The values that the column may have, null for any. They are of the data type, which is named
    // then.
    const std::vector<std::string>* values;
  };

  explicit column_loader(const settings& of_column);

  const std::string& name() const { return chosen.name; }

  // Takes a cell of each row. Returns the number of rows, or the first one whose text is not of the
  // chosen data type, no number in a column that was chosen to be continuous, or not one of the
  // declared values.
  std::size_t add(const csv_block& rows, std::size_t cell, const unknown_texts& unknowns);

  // The same for rows of a column in memory, from `first` to before `end`. Returns the first text
  // that is refused, if there is one.
  std::optional<std::string> add(memory_cells& source, std::size_t first, std::size_t end);

  // What a text that add() has refused is not: "of the type ...".
  std::string what_is_expected(const std::string& refused) const;

  std::size_t unknown_cells() const { return cells.unknown_cells(); }

  // Whether plain numbers are kept as such.
  bool has_numbers() const;

  // The distinct cells of these rows, see distinct_cells.h.
  distinct_cells distinct(bool with_numbers) { return distinct_ones(cells, with_numbers); }

  // These rows are a part of a table with these distinct cells, which determine the column that
  // make_column makes.
  void take_whole(distinct_cells whole);

  // Makes the column, and frees the cells. If NEW_COLUMN refuses, throws std::runtime_error with
  // its message and what would be accepted.
  void make_column();

  // In how many of these rows' cells of the column that was made, if its data type was not chosen,
  // a number is rounded to another one.
  std::size_t rounded_cells() const { return rounded_numbers; }

  // How many distinct values the column that was made has.
  std::size_t values() const { return made->get_distinct() - 1U; }

  // Adds the column to `columns` if it is of texts that are nearly numbers, and should be of
  // numbers.
  void add_near_numbers(std::vector<near_numbers>& columns) const;

  // The column, complete. What else a person should know about it is added to `remarks`.
  std::unique_ptr<impls::column> take(std::vector<table_remark>& remarks);

 private:
  void add_declared_values();
  unsigned int refused_after(unsigned int texts_before) const;
  bool take_text(unsigned int code) const;
  std::uint64_t identity_of(const char* number) const;
  void find_near_numbers();
  std::unique_ptr<decimal_scale> scale_of_decimals();
  std::unique_ptr<impls::o_set> new_domain(const std::string& null_text) const;
  std::unique_ptr<impls::o_set> make_domain();
  std::string kind() const;
  std::string advice() const;
  std::vector<table_remark> remarks_on_values() const;

  settings chosen;
  column_cells cells;
  // If the rows are a part of a table: how many cells before theirs are the distinct ones of the
  // table, and how many cells it has.
  std::size_t distinct_rows = 0;
  std::unique_ptr<cell_counts> whole_counts;
  column_survey survey;  // of a chosen data type only this and the numbers of texts are set
  std::unique_ptr<impls::column> made;
  std::size_t known_cells = 0;
  // Of declared numbers, as identity_of has them. Most columns have none, and there may be a
  // million columns.
  std::unique_ptr<std::unordered_set<std::uint64_t>> declared_numbers;
  std::unique_ptr<near_numbers> near;  // if the texts are nearly numbers
  std::size_t rounded_numbers = 0;
  std::size_t lost_numbers = 0;  // distinct ones that are equal to others as float
};

}  // namespace arbor::tree

#endif
