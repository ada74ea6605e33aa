// Turns the cells of one column of a file into a column of codes, in several passes over the file.
//
//   column_loader loader(options);
//   for each row: if (!loader.survey(text)) ...             // finds the data type, fills the domain
//   if (loader.needs_refill()) for each row: loader.refill(text);
//   loader.make_column(rows);
//   for each row: loader.append(text);
//   table.columns.push_back(loader.take());
#ifndef ARBOR_TREE_COLUMN_LOADER_H
#define ARBOR_TREE_COLUMN_LOADER_H

#include <memory>
#include <string>
#include <vector>

#include "arbor/model/column.h"
#include "arbor/tree/float_merges.h"

namespace arbor::tree {

class column_loader {
 public:
  struct settings {
    std::string name;
    std::string kind;       // empty: continuous for numbers, discrete for texts, ignore without known values
    std::string data_type;  // empty: found in the survey
    std::string null_text;  // the domain's text of the unknown value, in a column of texts
  };

  explicit column_loader(settings chosen);

  const std::string& name() const { return chosen.name; }

  // Each takes the text of the next row's cell, null for the unknown value. `survey` returns false, and leaves the cell
  // out, when the text is not of the chosen data type. The others throw std::runtime_error for a text that the survey
  // has not seen.
  bool survey(const char* text);
  void refill(const char* text);
  void append(const char* text);

  // Whether the survey found the data type only after values of a narrower one, which then are not in the domain yet.
  bool needs_refill() const { return !complete; }

  // Makes the column, with room for `rows` rows. Throws std::runtime_error with NEW_COLUMN's message, and what would
  // do, if that refuses.
  void make_column(unsigned int rows);

  // The column, complete; what a person should know about it is added to `remarks`, a line each. `unknown_texts` are
  // those that were taken for the unknown value.
  std::unique_ptr<impls::column> take(const std::vector<std::string>& unknown_texts, std::vector<std::string>& remarks);

 private:
  // A text among numbers, and how often it occurs.
  struct odd_text {
    std::string text;
    std::size_t cells;
  };

  void widen_to_fit(const char* text);
  bool accepts(const char* text) const;
  void start_domain(const char* data_type);
  void insert(const char* text);
  void note_odd(const char* text);
  std::string remark_on_odd_texts(const std::vector<std::string>& unknown_texts) const;
  std::string advice(const std::string& kind) const;
  bool is_text() const { return data_type == "string"; }

  settings chosen;
  std::string data_type;  // so far
  std::string null_text;  // the domain's text of the unknown value
  std::unique_ptr<impls::o_set> domain;
  std::unique_ptr<impls::column> made;
  bool complete = true;
  std::size_t unknown_cells = 0;
  std::size_t number_cells = 0;
  std::vector<odd_text> odd_texts;
  bool may_be_numbers = true;            // few texts among the values so far are odd
  bool may_merge = false;                // two of the numbers may be equal as float
  std::unique_ptr<float_merges> merges;  // counts those that are
};

}  // namespace arbor::tree

#endif
