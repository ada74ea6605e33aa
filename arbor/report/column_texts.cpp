#include "arbor/report/column_texts.h"

#include <limits>

#include "arbor/csv/shown_text.h"
#include "arbor/report/node_text.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

constexpr unsigned int code_of_name = std::numeric_limits<unsigned int>::max();  // of no value

}  // namespace

template <class Text>
const std::string& column_texts::made_of(const impls::column& column, unsigned int code,
                                         Text text) {
  const auto found = texts.find({&column, code});
  if (found != texts.end()) return found->second;
  return texts.emplace(std::pair(&column, code), form_of(text())).first->second;
}

const std::string& column_texts::name(const impls::column& column) {
  return made_of(column, code_of_name, [&]() -> std::string { return column.get_name(); });
}

const std::string& column_texts::value(const impls::column& column, unsigned int code) {
  return made_of(column, code, [&] { return value_text(column, code); });
}

const std::string& column_texts::class_name(const impls::column& classes, std::size_t entry) {
  const auto code = static_cast<unsigned int>(entry) + 1;
  return made_of(classes, code, [&] { return class_text(classes, entry); });
}

column_texts shown_texts(std::size_t width) {
  return column_texts([width](const std::string& text) { return shown(text, width); });
}

}  // namespace arbor::tree
