#include "tools/manual_page.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <vector>

#include "tools/command_line.h"
#include "tools/help_format.h"

namespace arbor::tools {

namespace {

// Text as the formatter of the page prints it: characters that it would replace are named, and a
// line that begins as a request does is protected.
std::string roff(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '\\':
        escaped += "\\e";
        break;
      case '-':
        escaped += "\\-";
        break;
      case '\'':
        escaped += "\\(aq";
        break;
      case '`':
        escaped += "\\(ga";
        break;
      case '^':
        escaped += "\\(ha";
        break;
      case '~':
        escaped += "\\(ti";
        break;
      default:
        escaped += c;
    }
  }
  return text.rfind('.', 0) == 0 ? "\\&" + escaped : escaped;
}

std::string bold(const std::string& text) {
  return "\\fB" + roff(text) + "\\fR";
}

std::string italic(const std::string& text) {
  return "\\fI" + roff(text) + "\\fR";
}

std::string in_capitals(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

std::string section(const std::string& title) {
  return ".SH " + in_capitals(title) + "\n";
}

// Lines that are indented stay as they are, the others are filled.
std::string body(const std::string& text) {
  std::string page;
  bool keeps_lines = false;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const bool indented = line.rfind("  ", 0) == 0;
    if (indented != keeps_lines) page += indented ? ".RS 4\n.nf\n" : ".fi\n.RE\n";
    keeps_lines = indented;
    page += roff(indented ? line.substr(2) : line) + "\n";
  }
  return keeps_lines ? page + ".fi\n.RE\n" : page;
}

std::vector<std::string> paragraphs(const std::string& text) {
  std::vector<std::string> found;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find("\n\n", begin), text.size());
    found.push_back(text.substr(begin, end - begin));
    begin = end + 2;
  }
  return found;
}

// The length of the title in "Exit status: 0 or 2"; 0 if the paragraph has none.
std::size_t title_size(const std::string& paragraph) {
  const auto end = std::find_if(paragraph.begin(), paragraph.end(),
                                [](unsigned char c) { return std::isalpha(c) == 0 && c != ' '; });
  return end == paragraph.end() || *end != ':' ? 0
                                               : static_cast<std::size_t>(end - paragraph.begin());
}

// The layout of --help, with the requests of man(7) in place of columns.
class page_format : public help_format {
 public:
  std::string make_option(const CLI::Option* option, bool is_positional) const override {
    std::string names = make_option_name(option, is_positional);
    const std::size_t comma = names.find(',');  // between the short and the long name
    if (comma != std::string::npos) names.insert(comma + 1, " ");
    const std::string value = make_option_opts(option);  // " FILE", or nothing
    return ".TP\n" + (is_positional ? italic(names) : bold(names)) +
           (value.empty() ? "" : " " + italic(value.substr(1))) + "\n" +
           roff(option->get_description()) + "\n";
  }

  std::string make_group(std::string title, bool is_positional,
                         std::vector<const CLI::Option*> options) const override {
    const bool is_section = is_positional || title == "Options";
    std::string page = is_section ? section(title) : ".SS " + title + "\n";
    for (const CLI::Option* option : options) page += make_option(option, is_positional);
    return page;
  }

  std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode /*mode*/) const override {
    std::string page;
    for (const CLI::App* command : app->get_subcommands({}))
      page += ".TP\n" + bold(command->get_name()) + "\n" + roff(command->get_description()) + "\n";
    return page.empty() ? "" : section("Commands") + page;
  }

  // The usage without its label and the name.
  std::string make_usage(const CLI::App* app, std::string /*name*/) const override {
    const std::string usage = CLI::Formatter::make_usage(app, "");
    return roff(usage.substr(usage.find('[')));
  }
};

// The pages of the program and of its other commands.
std::string other_pages(const CLI::App& app) {
  const CLI::App* const parent = app.get_parent();
  const CLI::App& program = parent == nullptr ? app : *parent;
  std::vector<std::string> names;
  if (parent != nullptr) names.push_back(page_name(program));
  for (const CLI::App* command : program.get_subcommands({}))
    if (command != &app) names.push_back(page_name(*command));
  for (std::string& name : names) name = bold(name) + "(1)";
  return fmt::format("{}\n", fmt::join(names, ",\n"));
}

}  // namespace

std::string page_name(const CLI::App& app) {
  std::string name = full_name(app);
  std::replace(name.begin(), name.end(), ' ', '-');
  return name;
}

std::string manual_page(const CLI::App& app, const std::string& version) {
  const page_format format;
  std::string description;
  std::string sections;
  for (const std::string& paragraph : paragraphs(app.get_footer())) {
    const std::size_t title = title_size(paragraph);
    if (title == 0) {
      description += ".PP\n" + body(paragraph);
    } else {
      const std::size_t text = paragraph.find_first_not_of(": \n", title);
      const std::size_t line = paragraph[title + 1] == '\n' ? title + 2 : text;
      sections += section(paragraph.substr(0, title)) + body(paragraph.substr(line));
    }
  }
  std::string options = format.make_positionals(&app) +
                        format.make_groups(&app, CLI::AppFormatMode::Normal) +
                        format.make_subcommands(&app, CLI::AppFormatMode::Normal);
  for (std::size_t at = 0; (at = options.find("\n\n", at)) != std::string::npos;)
    options.erase(at, 1);
  const std::string name = page_name(app);
  const std::string line = app.get_description();
  return fmt::format(".TH {} 1 \"\" \"arbor {}\" \"User Commands\"\n.nh\n.ad l\n",
                     in_capitals(roff(name)), version) +
         section("Name") + roff(name) + " \\- " + roff(line.substr(0, line.find('.'))) + "\n" +
         section("Synopsis") + bold(full_name(app)) + "\n" + format.make_usage(&app, "") +
         section("Description") + description + options + sections + section("See also") +
         other_pages(app);
}

}  // namespace arbor::tools
