// The rows of cells of a table under named columns, from one file or several, and messages that
// name a place in them.
//
//   csv_table file({"golf.csv"}, {}, open);
//   file.read_names();
//   const std::size_t play = file.cell_named("play", "the class");
//   for (csv_block block; file.next(block); block.check_end())
//     for (std::size_t i = 0; i < block.rows(); ++i) use(file.known_text(block.row(i), play));
#ifndef ARBOR_CSV_CSV_TABLE_H
#define ARBOR_CSV_CSV_TABLE_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "arbor/csv/block_reader.h"
#include "arbor/csv/byte_source.h"
#include "arbor/csv/column_names.h"
#include "arbor/csv/csv_block.h"
#include "arbor/csv/declared_table.h"
#include "arbor/csv/file_part.h"
#include "arbor/csv/input_options.h"
#include "arbor/csv/input_remark.h"
#include "arbor/csv/unknown_texts.h"

namespace arbor::tree {

// A file of a table, open.
struct table_file {
  // Separated values. If the columns are declared, commas separate them, no row names the columns,
  // and only an empty cell without quotes is unknown.
  std::unique_ptr<byte_source> bytes;
  std::optional<declared_table> declared;
};

// Opens the file at a path. Throws table_error.
using file_opener =
    std::function<table_file(const std::string& path, const input_options& options)>;

// Its functions throw table_error, whose message names the file and, where there is one, the line.
class csv_table {
 public:
  // Opens the first of the files, of which there is one at least. Each further one is opened when
  // all rows before it are read; that it exists is checked now.
  csv_table(std::vector<std::string> paths, const input_options& chosen, file_opener open);

  // Reads the column names. To be called once, before anything else. Throws when there are none, or
  // when one occurs twice.
  void read_names();

  // From now on the table has only the rows of these parts, one after the other. To be called after
  // read_names and before `next`.
  void keep_parts(std::vector<file_part> chosen);

  // The size of a file that can be read in parts: a plain CSV file without comments. Throws when it
  // cannot be opened.
  std::optional<std::uint64_t> divisible_size(std::size_t number) const;

  // Reads the next rows, those of all files one after the other. Returns false at the end of the
  // last file, and behind a block with an error. A row with more or fewer cells than there are
  // names is an error that ends the block, and so is a file that has other columns than the first.
  //
  // Several threads may call this at the same time, each with a block of its own. One at a time
  // reads from the file; dividing what it has read into cells goes on side by side.
  bool next(csv_block& block);

  // The name of the file, and how many more there are.
  const std::string& name() const { return table_name; }
  const std::vector<std::string>& paths() const { return file_paths; }
  const std::vector<std::string>& names() const { return all_names; }
  bool has_names() const { return options.has_names; }
  const csv_form& row_form() const { return form; }
  const unknown_texts& unknowns() const { return unknown; }
  char delimiter() const { return form.delimiter; }
  // What the files declare of their columns, if they do.
  const std::optional<declared_table>& declared() const { return declarations; }
  // The first column if it has the numbers or names of the rows.
  std::optional<std::size_t> row_number_cell() const;
  // How many lines between the rows so far are empty.
  std::size_t skipped_lines() const { return empty_lines; }
  // About the names, and about the empty lines, which are those of all parts of the table.
  std::vector<input_remark> remarks(std::size_t skipped_lines) const;

  // The position of a column, from 0; none if there is no such column. It is looked up in an index.
  std::optional<std::size_t> find(const std::string& column) const;
  // The same, but throws when there is no such column; the message proposes the nearest name and
  // says what the column is needed for: `purpose`, "the class" for example.
  std::size_t cell_named(const std::string& column, const std::string& purpose) const;

  // The text of a cell, null if it is unknown.
  const char* known_text(const csv_row& row, std::size_t cell) const {
    return unknown.known_text(row, cell);
  }

  // The number in a cell of weights, finite and from 0 up. Throws for anything else.
  float weight(const csv_row& row, std::size_t cell) const;

  // Throws table_error with `what` after the table's name.
  [[noreturn]] void fail(const std::string& what) const;
  // The message names the file and the line of the row, or of the cell, names the column, quotes
  // the cell and goes on with "is" and `what`.
  [[noreturn]] void fail_at(const csv_row& row, const std::string& what) const;
  [[noreturn]] void fail(const csv_row& row, std::size_t cell, const std::string& what) const;

 private:
  void open_file(std::size_t number);
  column_names read_first_rows();
  void read_first_block();
  std::size_t next_number() const { return blocks ? blocks->next_number() : 0; }
  bool open_next_part();
  void open_other_file(std::size_t number);
  void open_range(const file_part& part, std::size_t number);
  bool read(csv_block& block);
  void drop_first_row();
  std::optional<std::size_t> index_names();
  void check_width(csv_block& block) const;

  std::vector<std::string> file_paths;
  input_options options;
  file_opener open;
  std::string table_name;

  std::mutex reading;  // guards these:
  std::vector<file_part> parts;
  std::size_t opened = 0;  // of the parts
  table_file file;
  std::optional<block_reader> blocks;  // none before the first of chosen parts
  csv_block first;                     // of the file, divided, until the next one is asked for
  bool has_first = false;

  std::atomic<bool> is_faulty{false};  // whether a block had an error
  std::atomic<std::size_t> empty_lines{0};
  csv_form form;
  unknown_texts unknown;
  std::vector<std::string> all_names;
  std::vector<std::size_t> by_name;  // positions, sorted by name
  std::optional<declared_table> declarations;
  bool has_row_numbers = false;
  bool has_final_delimiters = false;
  std::vector<input_remark> found;
};

}  // namespace arbor::tree

#endif
