// The manual page of a program or of one of its commands, from the definitions that --help shows.
//
//   out << arbor::tools::manual_page(program.parser(), "0.1.0");
#ifndef ARBOR_TOOLS_MANUAL_PAGE_H
#define ARBOR_TOOLS_MANUAL_PAGE_H

#include <CLI/CLI.hpp>
#include <string>

namespace arbor::tools {

// "arbor" or "arbor-grow"
std::string page_name(const CLI::App& app);

// The page in the language of man(7). The text below the options of --help becomes the description;
// each of its paragraphs that begins with a title and a colon becomes a section.
std::string manual_page(const CLI::App& app, const std::string& version);

}  // namespace arbor::tools

#endif
