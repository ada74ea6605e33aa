#include "tools/output_file.h"

#include "arbor/csv/shown_text.h"
#include "tools/command_line.h"

namespace arbor::tools {

using tree::file_content;

void output_file::keep_input(const std::string& input, const std::string& what) const {
  refuse_if(tree::is_same_file(path, input), option + ": " + tree::printable(path) + " is " + what +
                                                 " that is read; write to another file");
}

void output_file::replace_only(file_content kind, const std::string& what) const {
  const file_content present = tree::content_of(path);
  const bool harmless =
      present == kind || present == file_content::none || present == file_content::empty;
  refuse_if(!harmless && !force, option + ": " + tree::printable(path) + " exists and is not " +
                                     what + "; --force writes over it");
}

void add_force(CLI::App& command, const std::string& option, bool& force) {
  command.add_flag("--force", force, "Let " + option + " write over any file but the inputs");
}

}  // namespace arbor::tools
