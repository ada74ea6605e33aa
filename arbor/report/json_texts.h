// The texts that a JSON document repeats: classes, attributes and values of its nodes, for example.
//
//   json_texts texts;
//   texts.class_member(json, "class", classes, 2);
//   texts.write_long_texts(json);
//
// Where the document would repeat a text of more than 200 bytes, it has the index of the text in a
// list "long_texts" at its end. The size of a document thus stays in proportion to the table or the
// model that it describes, in which each text stands once.
#ifndef ARBOR_REPORT_JSON_TEXTS_H
#define ARBOR_REPORT_JSON_TEXTS_H

#include <cstddef>
#include <string>
#include <vector>

#include "arbor/report/column_texts.h"
#include "arbor/report/json_writer.h"
#include "arbor/utils/nocopy.h"

namespace arbor::tree {

class json_texts : private strata::util::nocopy {
 public:
  json_texts();

  // Each writes a member whose value is the text, or its index in the list.
  void name_member(json_writer& json, const char* key, const impls::column& column);
  void value_member(json_writer& json, const char* key, const impls::column& column,
                    unsigned int code);
  void class_member(json_writer& json, const char* key, const impls::column& classes,
                    std::size_t entry);

  // Writes the member "long_texts", if it has a text.
  void write_long_texts(json_writer& json) const;

 private:
  std::string short_or_listed(const std::string& text);

  column_texts texts;
  std::vector<std::string> long_texts;
};

}  // namespace arbor::tree

#endif
