// The texts of values: from a cell of a file to the code of its value, and back.
//
//   unsigned int code = 0;
//   if (code_of_text(column, "Zürich", code)) ...   // the column's domain holds the text
//   std::string text = value_text(column, code);     // "Zürich"
//   shortest_text(0.1F);                             // "0.1"
//
// Domains sort texts as unsigned bytes but search them as signed ones, so that a text with bytes
// above 0x7F, "Zürich" in UTF-8 for example, may not be found although it is there. A table
// therefore keeps such texts in seven bits: each byte from 0x7F on becomes the byte 0x7F and two
// hexadecimal digits. Other texts, nearly all in practice, stay as they are. The order of texts is
// the same before and after.
#ifndef ARBOR_TABLE_VALUE_TEXT_H
#define ARBOR_TABLE_VALUE_TEXT_H

#include <string>
#include <string_view>

#include "arbor/model/column.h"

namespace arbor::tree {

// The text of a cell as a domain of texts holds it.
std::string to_domain_text(std::string_view cell);

// The reverse. A text that to_domain_text cannot have made stays as it is.
std::string to_cell_text(std::string_view domain_text);

// The fewest digits that read back to the same float.
std::string shortest_text(float value);

// The text of a code, without regard to to_domain_text. Domains print a float or a double to thirty
// decimals, which are many and, for the smallest numbers, too few; this text is short and, looked
// up in the domain, gives the code again. Other values, and codes that do not exist, are as the
// domain prints them.
std::string shortest_value(const impls::column& column, unsigned int code);

// The text of a code: a text as it stood in the file, a number in the fewest digits, for code 0 the
// text of the unknown value.
std::string value_text(const impls::column& column, unsigned int code);

// Looks up a text as it stands in a file. Returns whether the column's domain holds it, and only
// then sets `code`. Throws std::runtime_error for a text that is not of the data type.
bool code_of_text(const impls::column& column, const char* text, unsigned int& code);

// Looks up a value, however it is written: in a domain of integers "7.0" is found as 7. Returns
// whether the text is a value at all, which in a domain of numbers only numbers are. Sets `code`
// then: to 0 if the domain does not hold the value. Throws nothing but std::bad_alloc.
bool find_value(const impls::column& column, const char* text, unsigned int& code);

// Returns whether the text is a number, and only then sets `number`. "nan" is none: it equals
// nothing, so that no column can find it again. A sign alone is not a number either.
bool read_known_number(const char* text, double& number);

}  // namespace arbor::tree

#endif
