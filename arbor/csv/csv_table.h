// A CSV file as rows of cells under named columns, and messages that name a place in it.
//
//   csv_table file("golf.csv", unknown_texts({}));
//   file.read_names();
//   const std::size_t play = file.cell_named("play", "the class");
//   for (csv_block block; file.next(block); block.check_end())
//     for (std::size_t i = 0; i < block.rows(); ++i) use(file.known_text(block.row(i), play));
#ifndef ARBOR_CSV_CSV_TABLE_H
#define ARBOR_CSV_CSV_TABLE_H

#include <atomic>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "arbor/csv/block_reader.h"
#include "arbor/csv/csv_block.h"
#include "arbor/csv/input_file.h"
#include "arbor/csv/number_form.h"
#include "arbor/csv/unknown_texts.h"

namespace arbor::tree {

// Its functions throw table_error, whose message names the file and, where there is one, the line.
class csv_table {
 public:
  // Opens the file at `path`; "-" is standard input. `chosen` are the texts that are unknown in it.
  csv_table(const std::string& path, unknown_texts chosen)
      : file(path), unknown(std::move(chosen)) {}

  // Reads the column names. To be called once, before anything else. Throws when there are none,
  // when a name is empty or occurs twice.
  void read_names();

  // Reads the next rows. Returns false at the end of the file, and behind a block with an error. A
  // row with more or fewer cells than there are names is an error that ends the block.
  //
  // Several threads may call this at the same time, each with a block of its own. One at a time
  // reads from the file; dividing what it has read into cells goes on side by side.
  bool next(csv_block& block);

  const std::string& name() const { return file.name(); }
  const std::vector<std::string>& names() const { return column_names; }
  const unknown_texts& unknowns() const { return unknown; }

  // The position of a column, from 0; none if there is no such column. It is looked up in an index.
  std::optional<std::size_t> find(const std::string& column) const;
  // The same, but throws when there is no such column; the message proposes the nearest name and
  // says what the column is needed for: `purpose`, "the class" for example.
  std::size_t cell_named(const std::string& column, const std::string& purpose) const;

  // The text of a cell, null if it is unknown.
  const char* known_text(const csv_row& row, std::size_t cell) const {
    return unknown.known_text(row, cell);
  }

  // The number in a cell of weights, finite and from 0 up, in this form. Throws for anything else.
  float weight(const csv_row& row, std::size_t cell, const number_form& form) const;

  // Each throws table_error with `what`, after the file's name and, if given, the line.
  [[noreturn]] void fail(const std::string& what) const;
  [[noreturn]] void fail_at(unsigned long long line, const std::string& what) const;
  // The message names the column, quotes the cell and goes on with "is" and `what`.
  [[noreturn]] void fail(const csv_row& row, std::size_t cell, const std::string& what) const;

 private:
  void name_columns(const csv_row& row);
  void check_width(const csv_row& row) const;

  input_file file;
  block_reader blocks{file};
  std::mutex reading;  // guards the blocks
  csv_block first;     // with the names, until the next one is asked for
  bool has_first = false;
  std::atomic<bool> is_faulty{false};  // whether a block had an error
  unknown_texts unknown;
  std::vector<std::string> column_names;
  std::vector<std::size_t> by_name;  // positions, sorted by name
};

}  // namespace arbor::tree

#endif
