// A number for each row of a table, kept in blocks: adding one moves no other, at most one block is
// partly unused, and blocks can be freed one by one while something else is made of them.
//
//   cell_blocks<unsigned int> codes;
//   codes.push_back(7);
//   codes.for_each_block([](unsigned int* first, std::size_t count) { ... });
#ifndef ARBOR_TABLE_CELLS_CELL_BLOCKS_H
#define ARBOR_TABLE_CELLS_CELL_BLOCKS_H

#include <algorithm>
#include <memory>
#include <vector>

namespace arbor::tree {

// Sequences of the same length have blocks of the same lengths.
template <class T>
class cell_blocks {
 public:
  void push_back(T value) {
    if (next == end) add_block();
    *next++ = value;
  }

  // Where the next entries go: room for some, at least one.
  struct room {
    T* first;
    std::size_t count;
  };
  room next_room() {
    if (next == end) add_block();
    return {next, static_cast<std::size_t>(end - next)};
  }
  // Adds the first `count` entries of the room, which have been written there.
  void add_written(std::size_t count) { next += count; }

  // Adds converted(entry) for each entry of another sequence, which ends up empty.
  template <class Other, class Convert>
  void take_converted(cell_blocks<Other>& other, Convert converted) {
    other.consume([&](const Other* first, std::size_t count) {
      while (count > 0) {
        const room free = next_room();
        const std::size_t part = std::min(count, free.count);
        std::transform(first, first + part, free.first, converted);
        add_written(part);
        first += part;
        count -= part;
      }
    });
  }

  std::size_t size() const { return capacity - static_cast<std::size_t>(end - next); }

  // Calls use(first, count) for each block in turn.
  template <class Use>
  void for_each_block(Use use) {
    for_each_block_with(*this,
                        [&](T* first, T* /*again*/, std::size_t count) { use(first, count); });
  }

  // Calls use(first, first_of_other, count) for each block of this and of another sequence of the
  // same length.
  template <class Other, class Use>
  void for_each_block_with(cell_blocks<Other>& other, Use use) {
    std::size_t left = size();
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      const std::size_t count = std::min(left, blocks[i].size);
      use(blocks[i].cells.get(), other.blocks[i].cells.get(), count);
      left -= count;
    }
  }

  // Calls use(first, count) for each block and then frees the block. The sequence ends up empty.
  template <class Use>
  void consume(Use use) {
    std::size_t left = size();
    for (block& b : blocks) {
      const std::size_t count = std::min(left, b.size);
      use(b.cells.get(), count);
      left -= count;
      b.cells.reset();
    }
    *this = cell_blocks();
  }

 private:
  template <class Other>
  friend class cell_blocks;

  struct block {
    std::unique_ptr<T[]> cells;
    std::size_t size;
  };

  // Small tables have small blocks.
  void add_block() {
    constexpr std::size_t least = 1U << 3U;
    constexpr std::size_t most = 1U << 16U;
    const std::size_t size = std::clamp(capacity, least, most);
    blocks.push_back({std::unique_ptr<T[]>(new T[size]), size});
    capacity += size;
    next = blocks.back().cells.get();
    end = next + size;
  }

  std::vector<block> blocks;
  T* next = nullptr;
  T* end = nullptr;
  std::size_t capacity = 0;
};

}  // namespace arbor::tree

#endif
