// How texts of any bytes go into a string domain and come out again.
//
// Domains sort texts as unsigned bytes but search them as signed ones, so a text with bytes above
// 0x7F, say "Zürich" in UTF-8, may not be found although it is there. A table therefore keeps such
// texts in seven bits: each byte from 0x7F on becomes the byte 0x7F and two hexadecimal digits.
// Other texts, nearly all in practice, stay as they are, and the order of texts is the same before
// and after.
#ifndef ARBOR_TABLE_DOMAIN_TEXT_H
#define ARBOR_TABLE_DOMAIN_TEXT_H

#include <string>
#include <string_view>

namespace arbor::tree {

std::string to_domain_text(std::string_view cell);

// The cell again. A text that to_domain_text cannot have made stays as it is.
std::string to_cell_text(std::string_view domain_text);

}  // namespace arbor::tree

#endif
