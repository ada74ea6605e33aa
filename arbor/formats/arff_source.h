// The rows of an ARFF file as comma-separated values.
//
//   arff_source rows(open_file("golf.arff", limit), limit);
//   use(rows.declared());
//   while (std::size_t count = rows.read(buffer, sizeof buffer)) ...
#ifndef ARBOR_FORMATS_ARFF_SOURCE_H
#define ARBOR_FORMATS_ARFF_SOURCE_H

#include <memory>
#include <string>
#include <vector>

#include "arbor/csv/declared_table.h"
#include "arbor/csv/expansion_limit.h"
#include "arbor/formats/line_converter.h"

namespace arbor::tree {

class arff_line;

// A row has the cells of all attributes, "sunny, 85, ?", or is sparse, "{0 sunny, 1 85}": numbers
// and attributes from 0 on, in their order. An attribute that is left out of a sparse row has the
// number 0 or the first of its declared values; texts that are not declared are unknown then,
// because the file does not say which one is meant. Whether a value is a declared one is not
// checked. Weights of rows, "{5}" at their end, are refused.
class arff_source : public line_converter {
 public:
  // Reads the header. `limit` is for the rows that sparse ones become. Throws table_error.
  arff_source(std::unique_ptr<byte_source> of, expansion_limit limit);

  const declared_table& declared() const { return header; }

 private:
  void convert(std::string_view line, std::string& to) override;
  void convert_cells(arff_line& line, std::string& to);
  void convert_sparse(arff_line& line, std::string& to);
  std::size_t read_number(arff_line& line, std::size_t least);
  void append_left_out(std::size_t first, std::size_t end, std::string& to) const;

  expansion_limit most;
  unsigned long long expanded = 0;  // bytes that sparse rows have become
  declared_table header;
  std::vector<std::string> left_out;  // by column, the cell that a sparse row does not write
  written_cell cell;                  // the last one that was read
};

}  // namespace arbor::tree

#endif
