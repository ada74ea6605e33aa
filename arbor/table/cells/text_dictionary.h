// Distinct texts, numbered from 1 on in the order in which they were added.
//
//   text_dictionary texts;
//   unsigned int code = texts.code_of(row.cell(0));
//   const char* text = texts.text(code);
#ifndef ARBOR_TABLE_CELLS_TEXT_DICTIONARY_H
#define ARBOR_TABLE_CELLS_TEXT_DICTIONARY_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "arbor/csv/cell_text.h"
#include "arbor/table/cells/secret_hash.h"

namespace arbor::tree {

// A copy of a text, for which it need not be so that bytes after its end are readable.
class readable_copy {
 public:
  // Valid until the next call.
  cell_text of(std::string_view text) {
    storage.assign(text);
    storage.append(readable_after_cell, '\0');
    return {storage.data(), text.size()};
  }

 private:
  std::string storage;
};

class text_dictionary {
 public:
  // The number of a text, which is added unless it is there.
  unsigned int code_of(cell_text text);
  // The number of a text; 0 if it is not there.
  unsigned int find(cell_text text) const { return slots[slot_of(text, key_of(text))]; }
  // The same as code_of for a text after whose end no bytes need to be readable.
  unsigned int code_of(const std::string& text);

  // How many there are.
  unsigned int size() const { return static_cast<unsigned int>(entries.size()); }

  // Valid until one is added.
  const char* text(unsigned int code) const { return characters.data() + entries[code - 1].begin; }
  std::string_view view(unsigned int code) const;

 private:
  struct entry {
    std::uint64_t key;
    std::size_t begin;
  };

  static std::uint64_t key_of(cell_text text);
  std::size_t first_slot(std::uint64_t key) const;
  std::size_t slot_of(cell_text text, std::uint64_t key) const;
  bool is_text(unsigned int code, cell_text text) const;
  unsigned int add(cell_text text, std::uint64_t key, std::size_t slot);
  void grow();

  std::vector<entry> entries;
  std::string characters;  // the texts, a NUL after each
  // Codes, each in the first free slot from that of its key on; 0 is a free slot.
  std::vector<unsigned int> slots = std::vector<unsigned int>(8, 0);
  unsigned int slot_shift = 64 - 3;  // of a hash, to get the number of a slot
};

// The slot of a text, or the free one where it belongs.
inline std::size_t text_dictionary::slot_of(cell_text text, std::uint64_t key) const {
  std::size_t slot = first_slot(key);
  while (const unsigned int code = slots[slot]) {
    if (entries[code - 1].key == key && (text.length <= 8 || is_text(code, text))) break;
    slot = (slot + 1) & (slots.size() - 1);
  }
  return slot;
}

// The key of a text of up to eight characters is the text itself. With fewer than eight its low
// byte is zero, with eight no byte is. The key of a longer text is a hash whose low byte is 1 and
// whose next byte is zero, so that it is never the key of a short one.
inline std::uint64_t text_dictionary::key_of(cell_text text) {
  if (text.length <= 8) {
    return text.length == 0 ? 0
                            : first_characters_at_end(eight_characters(text.begin), text.length);
  }
  return (secret_hash()(text) & ~0xFFFFULL) | 1U;
}

inline std::size_t text_dictionary::first_slot(std::uint64_t key) const {
  return static_cast<std::size_t>(secret_hash()(key) >> slot_shift);
}

}  // namespace arbor::tree

#endif
