// Turns the cells of one column of a file into a column of codes.
//
//   column_loader loader(options);
//   for each row: if (!loader.add(text)) ...   // or add_unknown()
//   loader.make_column();
//   table.columns.push_back(loader.take());
#ifndef ARBOR_TABLE_COLUMN_LOADER_H
#define ARBOR_TABLE_COLUMN_LOADER_H

#include <memory>
#include <string>
#include <vector>

#include "arbor/model/column.h"
#include "arbor/table/column_cells.h"

namespace arbor::tree {

class column_loader {
 public:
  struct settings {
    std::string name;
    std::string
        kind;  // empty: continuous for numbers, discrete for texts, ignore without known values
    std::string data_type;  // empty: the narrowest that all cells fit
    std::string null_text;  // the domain's text of the unknown value, in a column of texts
  };

  explicit column_loader(settings of_column);

  const std::string& name() const { return chosen.name; }

  // Each takes the next row's cell. `add` returns false when the text is not of the chosen data
  // type.
  void add_unknown() { cells.add_unknown(); }
  bool add(cell_text text) {
    // Plain numbers are kept as such only if they are of the chosen data type, and other texts need
    // one look each.
    return !cells.add(text) || chosen.data_type.empty() || accepts(text.begin);
  }

  // Makes the column, and lets go of the cells. Throws std::runtime_error with NEW_COLUMN's
  // message, and what would do, if that refuses.
  void make_column();

  // The column, complete; what a person should know about it is added to `remarks`, a line each.
  // `unknown_texts` are those that were taken for the unknown value.
  std::unique_ptr<impls::column> take(const std::vector<std::string>& unknown_texts,
                                      std::vector<std::string>& remarks);

 private:
  // A text among numbers, and how often it occurs.
  struct odd_text {
    std::string text;
    std::size_t cells;
  };

  bool accepts(const char* text) const;
  std::string narrowest_type();
  std::string remark_on_odd_texts(const std::vector<std::string>& unknown_texts) const;
  std::string advice(const std::string& kind) const;

  settings chosen;
  column_cells cells;
  std::string data_type;
  std::unique_ptr<impls::column> made;
  std::size_t number_cells = 0;
  std::vector<odd_text>
      odd_texts;  // the texts among them, if those are few: what would make numbers of the column
  bool may_be_numbers = true;
  std::size_t lost_numbers = 0;  // distinct ones that are equal to others as float
};

}  // namespace arbor::tree

#endif
