// What is there before a file is written.
//
//   if (is_same_file(output, input)) ...
//   if (is_standard_output("/dev/stdout")) ...
//   if (content_of(output) == file_content::model) ...
#ifndef ARBOR_STORE_PRESENT_FILE_H
#define ARBOR_STORE_PRESENT_FILE_H

#include <string>

namespace arbor::tree {

// Whether both paths lead to the same file, by whatever names and links. "-" as `input` is standard
// input, which may come from a file. False if one of them does not exist.
bool is_same_file(const std::string& path, const std::string& input);

// Where a path leads through symbolic links, whether there is a file or not. Names of open files
// are left as they are, since what their links contain need not be a path.
std::string followed(const std::string& path);

// Whether a path that was followed names an open file of this process by its number:
// /proc/self/fd/3. Whoever has opened it expects to find in it what is written.
bool is_open_descriptor(const std::string& followed_path);

// Whether the path leads to a terminal.
bool is_terminal(const std::string& path);

// Whether the path is "-" or a name of standard output, such as /dev/stdout or /dev/fd/1.
bool is_standard_output(const std::string& path);

// How each page begins that arbor report writes; other pages do not.
constexpr const char* page_beginning = "<!doctype html>\n<!-- arbor report -->\n";

enum class file_content {
  none,        // there is no regular file
  empty,       // or it has no bytes
  model,       // a model of any format version, judged by its first bytes
  svg,         // a picture, judged in the same way
  page,        // a page of arbor report, judged in the same way
  types,       // a file of types, judged by its first line
  classified,  // a classified table, judged by the names of columns in its first line
  other        // anything else, or a file that cannot be read
};

file_content content_of(const std::string& path);

}  // namespace arbor::tree

#endif
