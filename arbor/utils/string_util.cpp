#include "arbor/utils/string_util.h"

#include <limits>
#include <stdexcept>
#include <type_traits>

#include "arbor/utils/text_storage.h"

namespace strata::util {

template <class T>
void string_util::str2int(const char* text, T& result) {
  constexpr T maxabs = std::numeric_limits<T>::max();
  constexpr T max10 = maxabs / 10;

  if (text == nullptr) throw std::runtime_error("str2int:: cannot convert a NULL string.");
  const char* next = text;
  while (*next == ' ') ++next;
  if (*next == '\0') throw std::runtime_error(joined({text, ": not an int"}));

  bool negative = false;
  if (*next == '-') {
    if constexpr (std::is_unsigned_v<T>)
      throw std::runtime_error("str2int:: a negative number provided.");
    negative = true;
  }
  if (*next == '+' || *next == '-') ++next;

  T magnitude = 0;
  // The first digits cannot overflow; only those after them are checked.
  for (int i = 0; i < std::numeric_limits<T>::digits10 && *next >= '0' && *next <= '9';
       ++i, ++next) {
    magnitude = static_cast<T>(magnitude * 10 + static_cast<T>(*next - '0'));
  }
  for (; *next >= '0' && *next <= '9'; ++next) {
    const T digit = static_cast<T>(*next - '0');
    if (magnitude > max10) throw std::runtime_error("str2int:: overflow");
    magnitude *= 10;
    if (digit > maxabs - magnitude) throw std::runtime_error("str2int:: overflow");
    magnitude += digit;
  }
  if (*next != '\0') throw std::runtime_error(joined({text, ": _not an int"}));
  // Not a unary minus, which compilers warn about for unsigned types.
  result = negative ? static_cast<T>(0 - magnitude) : magnitude;
}

template void string_util::str2int<int>(const char*, int&);
template void string_util::str2int<unsigned int>(const char*, unsigned int&);

}  // namespace strata::util
