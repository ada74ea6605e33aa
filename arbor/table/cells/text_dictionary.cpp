#include "arbor/table/cells/text_dictionary.h"

#include <cstring>

namespace arbor::tree {

unsigned int text_dictionary::code_of(cell_text text) {
  const std::uint64_t key = key_of(text);
  const std::size_t slot = slot_of(text, key);
  return slots[slot] != 0 ? slots[slot] : add(text, key, slot);
}

unsigned int text_dictionary::code_of(const std::string& text) {
  return code_of(readable_copy().of(text));
}

std::string_view text_dictionary::view(unsigned int code) const {
  const std::size_t end = code < entries.size() ? entries[code].begin : characters.size();
  return {text(code), end - entries[code - 1].begin - 1};
}

bool text_dictionary::is_text(unsigned int code, cell_text other) const {
  return view(code) == std::string_view(other.begin, other.length);
}

unsigned int text_dictionary::add(cell_text text, std::uint64_t key, std::size_t slot) {
  entries.push_back({key, characters.size()});
  characters.append(text.begin, text.length);
  characters += '\0';
  slots[slot] = size();
  if (2 * entries.size() >= slots.size()) grow();
  return size();
}

void text_dictionary::grow() {
  --slot_shift;
  slots.assign(2 * slots.size(), 0);
  for (unsigned int code = 1; code <= size(); ++code) {
    std::size_t slot = first_slot(entries[code - 1].key);
    while (slots[slot] != 0) slot = (slot + 1) & (slots.size() - 1);
    slots[slot] = code;
  }
}

}  // namespace arbor::tree
