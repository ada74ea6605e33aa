#include "arbor/store/replacement_stream.h"

namespace arbor::tree {

replacement_stream::buffer::buffer(file_replacement& file) : to(&file) {
  setp(bytes.data(), bytes.data() + bytes.size());
}

replacement_stream::buffer::int_type replacement_stream::buffer::overflow(int_type next) {
  sync();
  if (!traits_type::eq_int_type(next, traits_type::eof())) sputc(traits_type::to_char_type(next));
  return traits_type::not_eof(next);
}

int replacement_stream::buffer::sync() {
  to->write(pbase(), static_cast<std::size_t>(pptr() - pbase()));
  setp(bytes.data(), bytes.data() + bytes.size());
  return 0;
}

replacement_stream::replacement_stream(file_replacement& file)
    : std::ostream(nullptr), written(file) {
  rdbuf(&written);
  exceptions(std::ios::badbit);
}

}  // namespace arbor::tree
