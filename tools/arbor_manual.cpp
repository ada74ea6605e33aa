// Writes what is installed with the programs and made from the definitions of their options: manual
// pages and completion for bash.
//
//   arbor_manual FOLDER    writes FOLDER/man/man1/*.1 and FOLDER/bash-completion/completions/*

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tools/arbor_mpi_program.h"
#include "tools/arbor_program.h"
#include "tools/completion.h"
#include "tools/manual_page.h"
#include "tools/one_machine.h"

namespace arbor::tools {

namespace {

void write_file(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text << std::flush;
  if (!file) throw std::runtime_error(path.string() + ": cannot be written");
}

void write_all(const std::filesystem::path& folder, CLI::App& program) {
  const auto write_page = [&](const CLI::App& app) {
    write_file(folder / "man/man1" / (page_name(app) + ".1"), manual_page(app, ARBOR_VERSION));
  };
  write_page(program);
  for (const CLI::App* command : program.get_subcommands({})) write_page(*command);
  write_file(folder / "bash-completion/completions" / program.get_name(), bash_completion(program));
}

}  // namespace

const std::string_view program_name = "arbor_manual";

void end_program(int status) noexcept {
  std::_Exit(status);
}

}  // namespace arbor::tools

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: arbor_manual FOLDER\n";
    return arbor::tools::failure;
  }
  try {
    const arbor::tools::one_machine place;
    arbor::tools::arbor_program arbor(place);
    arbor::tools::arbor_mpi_program arbor_mpi(place);
    arbor::tools::write_all(argv[1], arbor.parser());
    arbor::tools::write_all(argv[1], arbor_mpi.parser());
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "arbor_manual: " << error.what() << '\n';
  }
  return arbor::tools::failure;
}
