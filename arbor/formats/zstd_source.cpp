#include "arbor/formats/zstd_source.h"

#include <zstd_errors.h>

#include <new>
#include <utility>

#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

[[noreturn]] void fail_as_zstd(const byte_source& file, const std::string& what) {
  throw table_error(file.name() + ": " + what);
}

}  // namespace

zstd_source::zstd_source(std::unique_ptr<byte_source> file, expansion_limit limit)
    : compressed(std::move(file)),
      most(std::move(limit)),
      input(ZSTD_DStreamInSize()),
      stream(ZSTD_createDStream(), ZSTD_freeDStream) {
  if (stream == nullptr) throw std::bad_alloc();
  unread.src = input.data();
}

std::size_t zstd_source::read(char* buffer, std::size_t size) {
  ::ZSTD_outBuffer output{buffer, size, 0};
  while (output.pos < size) {
    if (unread.pos == unread.size) {
      unread.size = compressed->read(input.data(), input.size());
      unread.pos = 0;
      if (unread.size == 0 && between_frames) break;
    }
    const std::size_t before = output.pos;
    const std::size_t state = ZSTD_decompressStream(stream.get(), &output, &unread);
    if (ZSTD_isError(state) != 0) {
      const ZSTD_ErrorCode error = ZSTD_getErrorCode(state);
      if (error == ZSTD_error_memory_allocation) throw std::bad_alloc();
      if (error == ZSTD_error_frameParameter_windowTooLarge) {
        fail_as_zstd(*compressed,
                     "zstd data that takes more than 128 MiB to decompress; compress it without "
                     "a long window");
      }
      fail_as_zstd(*compressed, std::string("damaged zstd data: ") + ZSTD_getErrorName(state));
    }
    between_frames = state == 0;
    // What the stream still holds back has been delivered.
    if (unread.size == 0 && output.pos == before && !between_frames)
      fail_as_zstd(*compressed, "damaged zstd data: it ends too early");
  }
  given += output.pos;
  most.check(given, *compressed);
  return output.pos;
}

}  // namespace arbor::tree
