// What a file declares about the columns of its table before the rows. CSV files name them at most.
#ifndef ARBOR_CSV_DECLARED_TABLE_H
#define ARBOR_CSV_DECLARED_TABLE_H

#include <optional>
#include <string>
#include <vector>

namespace arbor::tree {

struct declared_column {
  std::string name;
  // discrete, continuous or ignore; empty if it follows from the values.
  std::string kind;
  // A data type of load_options; empty if it follows from the values.
  std::string data_type;
  // The values that the column may have, whether or not a row has them; no other one is accepted.
  // None: any value.
  std::optional<std::vector<std::string>> values;

  bool operator==(const declared_column& other) const {
    return name == other.name && kind == other.kind && data_type == other.data_type &&
           values == other.values;
  }
};

struct declared_table {
  std::vector<declared_column> columns;  // in the order of the cells of a row
  std::string class_name;                // empty if the file does not say which one it is

  bool operator==(const declared_table& other) const {
    return columns == other.columns && class_name == other.class_name;
  }
};

}  // namespace arbor::tree

#endif
