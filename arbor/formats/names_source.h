// The rows of NAME.data, which NAME.names declares, as comma-separated values.
//
//   names_source rows(open_file("golf.data", limit), declared.columns.size());
//   while (std::size_t count = rows.read(buffer, sizeof buffer)) ...
#ifndef ARBOR_FORMATS_NAMES_SOURCE_H
#define ARBOR_FORMATS_NAMES_SOURCE_H

#include <memory>
#include <string>

#include "arbor/formats/line_converter.h"

namespace arbor::tree {

// Cells stand between commas and are written as values of a names file are (see names_file.h). A
// period at the end of a row is no part of it. Whether a value is a declared one is not checked.
class names_source : public line_converter {
 public:
  // A row has `cells` cells.
  names_source(std::unique_ptr<byte_source> of, std::size_t cells)
      : line_converter(std::move(of)), columns(cells) {}

 private:
  void convert(std::string_view line, std::string& to) override;

  std::size_t columns;
  written_cell cell;  // the last one that was read
};

}  // namespace arbor::tree

#endif
