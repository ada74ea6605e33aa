#include "tools/command_line.h"

#include <algorithm>
#include <iostream>
#include <new>
#include <vector>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"

namespace arbor::tools {

using tree::did_you_mean;
using tree::in_quotes;

namespace {

std::vector<std::string> option_names(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

std::vector<std::string> command_names(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

// The arguments that neither `app` nor the chosen command has taken.
std::vector<std::string> extra_arguments(const CLI::App& app) {
  std::vector<std::string> extras = app.remaining(true);
  extras.erase(std::remove(extras.begin(), extras.end(), "--"), extras.end());
  return extras;
}

void refuse_unknown_option(const CLI::App& chosen, const std::vector<std::string>& extras) {
  const auto is_option = [](const std::string& extra) {
    return extra.size() > 1 && extra[0] == '-';
  };
  const auto option = std::find_if(extras.begin(), extras.end(), is_option);
  if (option == extras.end()) return;
  const std::string name = option->substr(0, option->find('='));
  throw usage_error("there is no option " + in_quotes(name) +
                    did_you_mean(name, option_names(chosen)));
}

void refuse_unknown_command(const CLI::App& app, const std::vector<std::string>& extras) {
  if (extras.empty())
    throw usage_error("no command; \"" + app.get_name() + " --help\" lists the commands");
  static_cast<void>(command_named(app, extras.front()));  // throws
}

// An unknown option is the likeliest cause of any other extra argument, so it is reported first.
void refuse_extras(const CLI::App& app) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  const std::vector<std::string> extras = extra_arguments(app);
  refuse_unknown_option(chosen.empty() ? app : *chosen.front(), extras);
  if (chosen.empty()) refuse_unknown_command(app, extras);
  if (!extras.empty()) throw usage_error(in_quotes(extras.front()) + " is one argument too many");
}

}  // namespace

void refuse_if(bool wrong, const std::string& message) {
  if (wrong) throw usage_error(message);
}

std::string full_name(const CLI::App& app) {
  const CLI::App* const program = app.get_parent();
  return program == nullptr ? app.get_name() : program->get_name() + " " + app.get_name();
}

const CLI::App& command_named(const CLI::App& app, const std::string& name) {
  for (const CLI::App* command : app.get_subcommands({})) {
    if (command->get_name() == name) return *command;
  }
  throw usage_error("there is no command " + in_quotes(name) +
                    did_you_mean(name, command_names(app)));
}

// Without memory the parser leaves out a part of its help and does not say so. A second attempt is
// not cut off at the same place.
void print_help(const CLI::App& app) {
  const auto make_help = [&] {
    return app.get_formatter()->make_help(&app, full_name(app), CLI::AppFormatMode::Normal);
  };
  const std::string help = make_help();
  if (help != make_help()) throw std::bad_alloc();
  std::cout << help;
}

bool parse_command_line(CLI::App& app, int argc, const char* const* argv) {
  app.allow_extras();
  for (CLI::App* command : app.get_subcommands({})) command->allow_extras();
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    const std::vector<CLI::App*> chosen = app.get_subcommands();
    print_help(chosen.empty() ? app : *chosen.front());
    return false;
  } catch (const CLI::Success& asked) {
    app.exit(asked, std::cout, std::cerr);
    return false;
  } catch (const CLI::ArgumentMismatch& mismatch) {
    const std::string message = mismatch.what();  // begins with the name of the option
    throw usage_error(message.substr(0, message.find(':')) + " takes exactly one value");
  } catch (const CLI::ParseError& error) {
    throw usage_error(error.what());
  }
  refuse_extras(app);
  return true;
}

command::command(CLI::App& app, const char* name, const char* description, const char* help)
    : parser(*app.add_subcommand(name, description)) {
  parser.group("Commands");
  parser.footer(help + std::string("\n\n") + exit_status_help);
}

}  // namespace arbor::tools
