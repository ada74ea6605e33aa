#include "tools/offered_values.h"

#include <fmt/format.h>

#include <sstream>

#include "arbor/csv/message_text.h"

namespace arbor::tools {

// The parser keeps nothing for its users with an option but the names of validators. This one
// accepts all values: parsing would report a wrong one before it prints the help that was asked
// for.
CLI::Option* offer(CLI::Option* option, const std::vector<std::string>& values) {
  const auto accept = [](const std::string& /*value*/) { return std::string(); };
  return option->check(accept, "", fmt::format("{}", fmt::join(values, " ")));
}

std::vector<std::string> offered(CLI::Option& option) {
  std::vector<std::string> values;
  try {
    std::istringstream names(option.get_validator(0)->get_name());
    for (std::string value; names >> value;) values.push_back(value);
  } catch (const CLI::OptionNotFound&) {  // it has no validator
  }
  return values;
}

void check_offered(CLI::App& command, const std::string& option) {
  CLI::Option& checked = *command.get_option(option);
  if (checked.count() == 0) return;
  tree::check_choice(option + ": ", checked.as<std::string>(), offered(checked));
}

}  // namespace arbor::tools
