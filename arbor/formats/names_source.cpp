#include "arbor/formats/names_source.h"

#include <fmt/format.h>

#include "arbor/csv/message_text.h"
#include "arbor/formats/names_line.h"

namespace arbor::tree {

namespace {

constexpr character_set comma(",");

}  // namespace

void names_source::convert(std::string_view line, std::string& to) {
  names_line cells(line, true);
  if (cells.at_end()) return;
  std::size_t count = 0;
  char end = ',';
  while (end == ',') {
    if (count++ > 0) to += ',';
    end = cells.read(cell, comma);
    append_converted(cell, to);
  }
  if (count == columns) return;
  lines.fail(fmt::format(
      "{}, but the names file declares {}, the class included; {}", counted(count, "cell"), columns,
      count < columns ? "commas separate cells" : "a comma in a value is written as \\,"));
}

}  // namespace arbor::tree
