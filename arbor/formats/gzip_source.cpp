#include "arbor/formats/gzip_source.h"

#include <algorithm>
#include <new>
#include <utility>

#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

constexpr int gzip_alone = 16;  // added to the size of the window: no other format of zlib
constexpr unsigned char member_begin = 0x1F;

[[noreturn]] void fail_as_gzip(const byte_source& file, const std::string& what) {
  throw table_error(file.name() + ": damaged gzip data: " + what);
}

}  // namespace

gzip_source::gzip_source(std::unique_ptr<byte_source> file, expansion_limit limit)
    : compressed(std::move(file)), most(std::move(limit)), input(1U << 16U) {
  if (inflateInit2(&stream, MAX_WBITS + gzip_alone) != Z_OK) throw std::bad_alloc();
}

gzip_source::~gzip_source() {
  inflateEnd(&stream);
}

std::size_t gzip_source::read(char* buffer, std::size_t size) {
  std::size_t count = 0;
  while (count < size && !ended) {
    if (!has_input()) fail_as_gzip(*compressed, "it ends too early");
    const std::size_t room = std::min<std::size_t>(size - count, 1U << 30U);
    stream.next_out = reinterpret_cast<unsigned char*>(buffer + count);
    stream.avail_out = static_cast<unsigned int>(room);
    const int state = inflate(&stream, Z_NO_FLUSH);
    count += room - stream.avail_out;
    if (state == Z_MEM_ERROR) throw std::bad_alloc();
    if (state == Z_STREAM_END) {
      ended = !has_next_member();
    } else if (state != Z_OK) {
      fail_as_gzip(*compressed, stream.msg == nullptr ? "it needs a dictionary" : stream.msg);
    }
  }
  given += count;
  most.check(given, *compressed);
  return count;
}

// Whether there are bytes to inflate.
bool gzip_source::has_input() {
  if (stream.avail_in > 0) return true;
  stream.next_in = reinterpret_cast<unsigned char*>(input.data());
  stream.avail_in = static_cast<unsigned int>(compressed->read(input.data(), input.size()));
  return stream.avail_in > 0;
}

bool gzip_source::has_next_member() {
  bool padded = false;
  for (; has_input() && *stream.next_in == 0; ++stream.next_in, --stream.avail_in) padded = true;
  if (stream.avail_in == 0) return false;
  if (padded || *stream.next_in != member_begin) {
    fail_as_gzip(*compressed, "other bytes follow it");
  }
  if (inflateReset(&stream) != Z_OK) throw std::bad_alloc();
  return true;
}

}  // namespace arbor::tree
