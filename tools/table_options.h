// The options of all commands that read a table.
#ifndef ARBOR_TOOLS_TABLE_OPTIONS_H
#define ARBOR_TOOLS_TABLE_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "arbor/table/table_loader.h"
#include "tools/file_options.h"
#include "tools/workplace.h"

namespace arbor::tools {

class table_options {
 public:
  // Adds the options to a command. This object must stay at its address until the command line has
  // been parsed.
  void add_to(CLI::App& command);
  // Adds them to a command that grows trees, for which a table may have too many classes.
  void add_training_options_to(CLI::App& command);
  // Adds only those for reading files and weights, for tables whose types and class are those of a
  // model.
  void add_cell_options_to(CLI::App& command);
  // Adds only the option for kinds.
  void add_kinds_to(CLI::App& command);
  // Adds the option for the column that identifies rows. `purpose` is what becomes of it.
  void add_id_to(CLI::App& command, const std::string& purpose);

  // Whether an option of a command is one of these.
  static bool have(const CLI::Option& option);

  // What was chosen. Throws usage_error for a value that an option does not take, and table_error
  // for a file of types that cannot be read.
  tree::load_options chosen() const;

  // Checks before the work is done whether the types can be saved, and saves them if that was
  // asked for. `force` lets them replace any file.
  void check_saving(const std::vector<std::string>& inputs, bool force) const;
  void save_types(const tree::table& of, bool force) const;

 private:
  bool given(const std::string& option) const;

  CLI::App* parser = nullptr;  // of the command that has the options
  file_options files;
  std::string class_name;
  std::string weights_name;
  std::string id_name;
  std::vector<std::string> types;
  std::vector<std::string> kinds;
  std::string types_path;
  std::string saved_types_path;
  bool skips_unknown_class = false;
  bool limits_classes = false;
  bool many_classes = false;
};

// Adds the argument TABLE, one file or several.
void add_tables(CLI::App& command, std::vector<std::string>& paths);
// Throws usage_error unless there is a path, and none is empty; standard input may be one of them.
void check_tables(const std::vector<std::string>& paths);

// Shows what a person should know about how the bytes of a table were understood.
void show_remarks(const std::string& table_name, const std::vector<tree::input_remark>& remarks);

// Loads a table, and shows its progress and its remarks on standard error.
tree::table read_table(const workplace& place, const std::vector<std::string>& paths,
                       tree::load_options options);

// Each reads the value `given` to an option and throws usage_error, naming the option, if it is not
// a finite number from 0 up, a number from 0 to 1, or a whole number from 0 to 4294967295.
float weight_value(const std::string& option, const std::string& given);
float share_value(const std::string& option, const std::string& given);
unsigned int whole_value(const std::string& option, const std::string& given);

}  // namespace arbor::tools

#endif
