#include "arbor/utils/text_storage.h"

#include <new>

namespace strata::util {

void assign_text(std::string& target, std::string_view text) {
  if (text.size() > target.max_size()) throw std::bad_alloc();
  target.assign(text);
}

std::string joined(std::initializer_list<std::string_view> parts) {
  unsigned long long length = 0;
  for (const std::string_view part : parts) length += part.size();
  std::string result;
  if (length > result.max_size()) throw std::bad_alloc();
  result.reserve(static_cast<std::size_t>(length));
  for (const std::string_view part : parts) result.append(part);
  return result;
}

}  // namespace strata::util
