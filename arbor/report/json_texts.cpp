#include "arbor/report/json_texts.h"

namespace arbor::tree {

json_texts::json_texts()
    : texts([this](const std::string& text) { return short_or_listed(text); }) {}

std::string json_texts::short_or_listed(const std::string& text) {
  constexpr std::size_t most_repeated = 200;  // bytes
  if (text.size() <= most_repeated) return json_text(text);
  long_texts.push_back(text);
  return std::to_string(long_texts.size() - 1);
}

void json_texts::name_member(json_writer& json, const char* key, const impls::column& column) {
  json.key(key).scalar(texts.name(column));
}

void json_texts::value_member(json_writer& json, const char* key, const impls::column& column,
                              unsigned int code) {
  json.key(key).scalar(texts.value(column, code));
}

void json_texts::class_member(json_writer& json, const char* key, const impls::column& classes,
                              std::size_t entry) {
  json.key(key).scalar(texts.class_name(classes, entry));
}

void json_texts::write_long_texts(json_writer& json) const {
  if (long_texts.empty()) return;
  json.key("long_texts").open('[');
  for (const std::string& text : long_texts) json.value(text);
  json.close();
}

}  // namespace arbor::tree
