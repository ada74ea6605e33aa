// Helpers for messages that quote what a person wrote.
//
//   in_quotes("8O")                           // "8O", in double quotes, control characters escaped
//   did_you_mean("clas", {"class", "size"})   // ; did you mean "class"?
//   check_choice("--sort: ", "rato", {"ratio", "gain"});  // throws
#ifndef ARBOR_CSV_MESSAGE_TEXT_H
#define ARBOR_CSV_MESSAGE_TEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace arbor::tree {

// The text on one line: control characters as \n, \t, \r or \xNN. Other bytes stay as they are.
std::string printable(std::string_view text);

// The printable text in double quotes, with those in it behind backslashes; of a long one the
// beginning.
std::string in_quotes(std::string_view text);

// "1 leaf", "2 leaves"; without `many`, one thing with an s.
std::string counted(std::size_t count, const std::string& one, const std::string& many = "");

// The text as a word of a shell's command line.
std::string shell_word(const std::string& text);

// A question naming the nearest of `names`, in either case, to add to a message, or nothing when
// none is near.
std::string did_you_mean(const std::string& mistyped, const std::vector<std::string>& names);

// Throws table_error, in the words of `before` and then its own, when `choice` is none of
// `choices`.
void check_choice(const std::string& before, const std::string& choice,
                  const std::vector<std::string>& choices);

}  // namespace arbor::tree

#endif
