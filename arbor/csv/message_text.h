// Helpers for messages; shown_text.h has those that quote what a person wrote.
//
//   counted(2, "leaf", "leaves")              // 2 leaves
//   did_you_mean("clas", {"class", "size"})   // ; did you mean "class"?
//   check_choice("order: ", "rato", {"ratio", "gain"});  // throws
#ifndef ARBOR_CSV_MESSAGE_TEXT_H
#define ARBOR_CSV_MESSAGE_TEXT_H

#include <cstddef>
#include <string>
#include <vector>

namespace arbor::tree {

// A number of things: "1 leaf", "2 leaves". Without `many`, the plural is `one` and an "s".
std::string counted(std::size_t count, const std::string& one, const std::string& many = "");

// The text as a word of a shell's command line, in single quotes.
std::string shell_word(const std::string& text);

// A question to add to a message. It proposes the one of `names` that is most similar to
// `mistyped`, regardless of case; empty when none is similar. Texts of more than 64 bytes are
// similar to nothing.
std::string did_you_mean(const std::string& mistyped, const std::vector<std::string>& names);

// Throws table_error unless `choice` is one of `choices`. The message begins with `before`.
void check_choice(const std::string& before, const std::string& choice,
                  const std::vector<std::string>& choices);

}  // namespace arbor::tree

#endif
