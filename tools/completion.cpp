#include "tools/completion.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "tools/offered_values.h"

namespace arbor::tools {

namespace {

// Finds the words before the one to complete; bash divides them at "=", too.
//   COMMAND --option VALUE    COMMAND --option=VALUE    COMMAND --option NAME=VALUE
constexpr const char* script_begin = R"(# Made from the definitions of the options of {0}.
{1}() {{
  local current=$2 command='' option='' words='' i
  for ((i = 1; i < COMP_CWORD; ++i)); do
    [[ ${{COMP_WORDS[i]}} == -* ]] || {{ command=${{COMP_WORDS[i]}}; break; }}
  done
  i=$((COMP_CWORD - 1))
  if [[ ${{COMP_WORDS[COMP_CWORD]}} == '=' ]]; then
    current='' option='='
  elif [[ ${{COMP_WORDS[i]}} == '=' ]]; then
    option='=' i=$((i - 1))
  fi
  if [[ ${{COMP_WORDS[i]}} == -* ]]; then
    option=${{COMP_WORDS[i]}}
  elif [[ $option ]]; then
    [[ ${{COMP_WORDS[i - 1]}} == '=' ]] && i=$((i - 1))
    option=${{COMP_WORDS[i - 1]}}=
  fi
  case "$command $option" in
)";

// Where words stay empty, bash completes names of files.
constexpr const char* script_end = R"(  esac
  [[ $words ]] || return
  compopt +o bashdefault +o default
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}}
complete -o bashdefault -o default -F {1} {0}
)";

std::string one_case(const std::string& pattern, const std::string& words) {
  return fmt::format("    {}) words='{}' ;;\n", pattern, words);
}

bool takes_file(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  return type.rfind("FILE", 0) == 0 || type == "TABLE";
}

// An option without an offer, whose value only the person knows, completes to nothing: a blank.
std::string words_of_value(CLI::Option& option) {
  const std::string values = fmt::format("{}", fmt::join(offered(option), " "));
  return values.empty() && !takes_file(option) ? " " : values;
}

std::string option_names(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return fmt::format("{}", fmt::join(names, " "));
}

std::string command_names(const CLI::App& program) {
  std::vector<std::string> names;
  for (const CLI::App* command : program.get_subcommands({})) names.push_back(command->get_name());
  return fmt::format("{}", fmt::join(names, " "));
}

std::string cases_of(CLI::App& command) {
  std::string cases;
  for (CLI::Option* option : command.get_options({})) {
    if (!option->nonpositional() || option->get_items_expected_max() == 0) continue;
    const std::string words = words_of_value(*option);
    const bool is_pair = option->get_type_name().find('=') != std::string::npos;
    for (const std::string& name : option->get_lnames()) {
      const std::string before = fmt::format("'{} --{}", command.get_name(), name);
      if (is_pair) cases += one_case(before + "='", words);
      cases += one_case(before + "'", is_pair ? " " : words);
    }
  }
  return cases;
}

}  // namespace

std::string bash_completion(CLI::App& program) {
  std::string function = "_" + program.get_name();
  std::replace(function.begin(), function.end(), '-', '_');
  std::string script = fmt::format(script_begin, program.get_name(), function);
  const std::string commands = command_names(program);
  for (CLI::App* command : program.get_subcommands({})) script += cases_of(*command);
  for (CLI::App* command : program.get_subcommands({})) {
    const std::string pattern = "'" + command->get_name() + " '*";
    const bool names_command = command->get_option_no_throw("COMMAND") != nullptr;
    script += fmt::format("    {}) words='{}'; [[ $current == -* ]] && words='{}' ;;\n", pattern,
                          names_command ? commands : "", option_names(*command));
  }
  script += one_case("*", commands + " " + option_names(program));
  return script + fmt::format(script_end, program.get_name(), function);
}

}  // namespace arbor::tools
