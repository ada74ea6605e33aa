// JSON with members in the order of their insertion and numbers that read back to the same float.
//
// A document takes memory even while it is destroyed, and ends the process by std::terminate where there is none.
#ifndef ARBOR_TREE_FLOAT_JSON_H
#define ARBOR_TREE_FLOAT_JSON_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace arbor::tree {

using float_json =
    nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t, float>;

// The text of a document, with a newline behind it. Bytes that are not UTF-8 become U+FFFD.
inline std::string json_text(const float_json& document) {
  return document.dump(2, ' ', false, float_json::error_handler_t::replace) + '\n';
}

}  // namespace arbor::tree

#endif
