#include "tools/output_file.h"

#include "arbor/csv/shown_text.h"
#include "tools/command_line.h"

namespace arbor::tools {

using tree::file_content;

void output_file::keep_input(const std::string& input, const std::string& what) const {
  refuse_if(tree::is_same_file(path, input), option + ": " + tree::printable(path) + " is " + what +
                                                 " that is read; write to another file");
}

void output_file::check(file_content kind, const std::string& what) const {
  const file_content present = tree::content_of(path);
  const bool harmless =
      present == kind || present == file_content::none || present == file_content::empty;
  refuse_if(!harmless && !force, option + ": " + tree::printable(path) + " exists and is not " +
                                     what + "; --force writes over it");
  try {
    tree::file_replacement can_be_written(path, protection());
  } catch (const tree::protection_error& refusal) {
    throw usage_error(option + ": " + refusal.what() + "; --force writes over it");
  }
}

tree::protection output_file::protection() const {
  return force ? tree::protection::overridden : tree::protection::respected;
}

void add_force(CLI::App& command, const std::string& option, bool& force) {
  command.add_flag("--force", force, "Let " + option + " write over any file but the inputs");
}

}  // namespace arbor::tools
