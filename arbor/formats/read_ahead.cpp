#include "arbor/formats/read_ahead.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <utility>

namespace arbor::tree {

namespace {

constexpr std::size_t part_size = 1U << 18U;
// What a call that throws has read is lost, so that a call asks for less than a part; for much
// less, zlib would copy the 32 KiB that it may refer to again each time.
constexpr std::size_t read_size = part_size / 2;

}  // namespace

read_ahead::read_ahead(std::unique_ptr<byte_source> of)
    : source(std::move(of)), source_name(source->name()) {
  for (part& each : parts) each.bytes.resize(part_size);
  try {
    reader = std::thread([this] { run_reader(); });
  } catch (const std::system_error&) {
    // read() fills the parts itself then
  }
}

read_ahead::~read_ahead() {
  if (!reader.joinable()) return;
  {
    const std::lock_guard<std::mutex> lock(mutex);
    stopping = true;
  }
  changed.notify_all();
  reader.join();
}

std::size_t read_ahead::read(char* buffer, std::size_t size) {
  std::size_t count = 0;
  while (count < size) {
    part& next = parts[taken % parts.size()];
    if (reader.joinable()) {
      std::unique_lock<std::mutex> lock(mutex);
      changed.wait(lock, [&] { return filled > taken; });
    } else if (filled == taken) {
      fill(next);
      ++filled;
    }
    bytes_read = next.bytes_of_file;
    const std::size_t more = std::min(size - count, next.size - given);
    std::memcpy(buffer + count, next.bytes.data() + given, more);
    count += more;
    given += more;
    if (count == size) break;
    if (next.error) std::rethrow_exception(next.error);
    if (next.is_last) break;
    given = 0;
    {
      const std::lock_guard<std::mutex> lock(mutex);
      ++taken;
    }
    changed.notify_all();
  }
  return count;
}

void read_ahead::run_reader() {
  for (bool ended = false; !ended;) {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [&] { return stopping || filled - taken < parts.size(); });
    if (stopping) return;
    part& next = parts[filled % parts.size()];
    lock.unlock();
    fill(next);
    ended = next.is_last;
    lock.lock();
    ++filled;
    lock.unlock();
    changed.notify_all();
  }
}

// Does not throw: the error is kept for the thread that takes the part.
void read_ahead::fill(part& next) {
  next.size = 0;
  try {
    while (next.size < part_size && !next.is_last) {
      const std::size_t count = source->read(next.bytes.data() + next.size, read_size);
      next.size += count;
      next.is_last = count < read_size;
    }
  } catch (...) {
    next.error = std::current_exception();
    next.is_last = true;
  }
  next.bytes_of_file = source->bytes_of_file();
}

}  // namespace arbor::tree
