#include "tools/help_format.h"

#include <utility>

namespace arbor::tools {

namespace {

// Puts line breaks between words so that lines have at most `width` characters.
std::string wrapped(std::string text, std::size_t width) {
  std::size_t line = 0;                  // where the present line begins
  std::size_t last = std::string::npos;  // the last blank in it
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ' ') last = i;
    if (i - line < width || last == std::string::npos) continue;
    text[last] = '\n';
    line = std::exchange(last, std::string::npos) + 1;
  }
  return text;
}

}  // namespace

help_format::help_format() {
  constexpr std::size_t names_width = 24;  // of the longest option with its value
  column_width(names_width);
  label("Positionals", "Arguments");
  label("SUBCOMMAND", "COMMAND");
}

std::string help_format::make_option_desc(const CLI::Option* option) const {
  constexpr std::size_t line_width = 80;
  return wrapped(option->get_description(), line_width - get_column_width());
}

std::string help_format::make_help(const CLI::App* app, std::string name,
                                   CLI::AppFormatMode mode) const {
  std::string help = CLI::Formatter::make_help(app, std::move(name), mode);
  for (std::size_t at = 0; (at = help.find("\n\n\n", at)) != std::string::npos;)
    help.erase(at, 1);
  return help;
}

}  // namespace arbor::tools
