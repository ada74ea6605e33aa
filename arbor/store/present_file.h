// What is there before a file is written.
//
//   if (is_same_file(output, input)) ...
//   if (content_of(output) == file_content::model) ...
#ifndef ARBOR_STORE_PRESENT_FILE_H
#define ARBOR_STORE_PRESENT_FILE_H

#include <string>

namespace arbor::tree {

// Whether both paths lead to the same file, by whatever names and links. "-" as `input` is standard
// input, which may come from a file. False if one of them does not exist.
bool is_same_file(const std::string& path, const std::string& input);

enum class file_content {
  none,        // there is no regular file
  empty,       // or it has no bytes
  model,       // a model of any format version, judged by its first bytes
  svg,         // a picture, judged in the same way
  classified,  // a classified table, judged by the names of columns in its first line
  other        // anything else, or a file that cannot be read
};

file_content content_of(const std::string& path);

}  // namespace arbor::tree

#endif
