// Copies and joins texts of any length. A text that no std::string can hold fails as one that there
// is no memory for, where std::string has an exception of its own (std::length_error).
//
//   throw std::runtime_error(strata::util::joined({text, ": not an int"}));
#ifndef ARBOR_UTILS_TEXT_STORAGE_H
#define ARBOR_UTILS_TEXT_STORAGE_H

#include <initializer_list>
#include <string>
#include <string_view>

namespace strata::util {

// Sets `target` to a copy of `text`, which must not be a part of `target`. Allocates nothing when
// the capacity of `target` is large enough. Throws std::bad_alloc; `target` is unchanged then.
void assign_text(std::string& target, std::string_view text);

// Returns the parts in their order, with nothing between them. Throws std::bad_alloc.
std::string joined(std::initializer_list<std::string_view> parts);

}  // namespace strata::util

#endif
