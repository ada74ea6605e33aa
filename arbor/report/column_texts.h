// The names and values of columns in the form that a report gives them.
//
//   column_texts texts([](const std::string& text) { return shown(text, 60); });
//   out << texts.name(column) << " = " << texts.value(column, 3);
//
// Each text is made once, however often the report repeats it: a single value may be most of a file
// and be the class of every leaf.
#ifndef ARBOR_REPORT_COLUMN_TEXTS_H
#define ARBOR_REPORT_COLUMN_TEXTS_H

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "arbor/model/column.h"

namespace arbor::tree {

class column_texts {
 public:
  // Makes the form of a name, or of a value as it stood in the file.
  using form = std::function<std::string(const std::string& text)>;

  explicit column_texts(form of_text) : form_of(std::move(of_text)) {}

  // Both are valid as long as this object. The column must outlive it.
  const std::string& name(const impls::column& column);
  const std::string& value(const impls::column& column, unsigned int code);

  // The class of an entry; see class_text.
  const std::string& class_name(const impls::column& classes, std::size_t entry);

 private:
  template <class Text>
  const std::string& made_of(const impls::column& column, unsigned int code, Text text);

  form form_of;
  std::map<std::pair<const impls::column*, unsigned int>, std::string> texts;  // by code
};

// The column texts of a report for a person: on one line, and at most `width` columns wide.
column_texts shown_texts(std::size_t width);

}  // namespace arbor::tree

#endif
