// The layout of --help: at most 80 columns, so that it fits the narrowest terminal in use.
#ifndef ARBOR_TOOLS_HELP_FORMAT_H
#define ARBOR_TOOLS_HELP_FORMAT_H

#include <CLI/CLI.hpp>
#include <string>

namespace arbor::tools {

// Wraps the descriptions of options, which stand in a column of their own, and leaves one empty
// line between groups of them. All other texts are printed as they are written.
class help_format : public CLI::Formatter {
 public:
  help_format();
  std::string make_option_desc(const CLI::Option* option) const override;
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
};

}  // namespace arbor::tools

#endif
