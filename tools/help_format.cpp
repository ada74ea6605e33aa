#include "tools/help_format.h"

#include <sstream>

namespace arbor::tools {

namespace {

// Puts line breaks between words so that lines have at most `width` characters.
std::string wrapped(const std::string& text, std::size_t width) {
  std::istringstream words(text);
  std::string result;
  std::size_t used = 0;  // of the last line
  for (std::string word; words >> word; used += word.size()) {
    const bool fits = used + 1 + word.size() <= width;
    if (used > 0) result += fits ? ' ' : '\n';
    used = used > 0 && fits ? used + 1 : 0;
    result += word;
  }
  return result;
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

}  // namespace arbor::tools
