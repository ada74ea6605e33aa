#include "tools/output_file.h"

#include "arbor/csv/message_text.h"
#include "arbor/store/present_file.h"
#include "tools/command_line.h"

namespace arbor::tools {

using tree::file_content;

void output_file::keep_input(const std::string& input, const std::string& what) const {
  refuse_if(tree::is_same_file(path, input), option + ": " + tree::printable(path) + " is " + what +
                                                 " that is read; write to another file");
}

void output_file::replace_no_model() const {
  refuse_unless_forced(tree::content_of(path) == file_content::model, "a model of arbor grow");
}

void output_file::replace_models_only() const {
  const file_content present = tree::content_of(path);
  refuse_unless_forced(present == file_content::svg || present == file_content::other,
                       "not a model of arbor grow");
}

void output_file::replace_pictures_only() const {
  const file_content present = tree::content_of(path);
  refuse_unless_forced(present == file_content::model || present == file_content::other,
                       "not an SVG picture");
}

void output_file::refuse_unless_forced(bool wanted, const std::string& what) const {
  refuse_if(wanted && !force, option + ": " + tree::printable(path) + " exists and is " + what +
                                  "; --force writes over it");
}

void add_force(CLI::App& command, const std::string& option, bool& force) {
  command.add_flag("--force", force, "Let " + option + " write over any file but the inputs");
}

}  // namespace arbor::tools
