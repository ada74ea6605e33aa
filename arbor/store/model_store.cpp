// A model file, in the encodings of obinstream:
//
//   magic "ArborDT\n" | format version u32 | length of the record u64 | CRC-32 of the record u32 |
//   record of the tree, see model_record.cpp

#include "arbor/store/model_store.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include "arbor/csv/input_file.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/store/file_replacement.h"
#include "arbor/store/model_record.h"
#include "arbor/utils/ibinstream.h"
#include "arbor/utils/memory_device.h"
#include "arbor/utils/no_storage.h"
#include "arbor/utils/obinstream.h"

namespace arbor::tree {

namespace {

using strata::inpout::ibinstream;
using strata::inpout::memory_device;
using strata::inpout::obinstream;

constexpr std::array<unsigned char, 8> magic{'A', 'r', 'b', 'o', 'r', 'D', 'T', '\n'};
constexpr std::size_t head_bytes = magic.size() + 4 + 8 + 4;

unsigned int checksum(const std::vector<unsigned char>& record) {
  return static_cast<unsigned int>(crc32_z(0, record.data(), record.size()));
}

std::vector<unsigned char> head_of(const std::vector<unsigned char>& record) {
  memory_device device;
  obinstream out(device);
  out.write_block(magic.data(), magic.size());
  out << record_version << static_cast<unsigned long long>(record.size()) << checksum(record);
  return device.bytes();
}

// All bytes of a model file. For a file that does not begin with the magic, none: it may be of any
// length and is not read further.
std::vector<unsigned char> read_file(input_file& file) {
  std::vector<unsigned char> bytes;
  std::vector<char> part(1U << 16U);
  while (const std::size_t count = file.read(part.data(), part.size())) {
    if (bytes.empty() && std::memcmp(part.data(), magic.data(), std::min(count, magic.size())) != 0)
      break;
    bytes.insert(bytes.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(count));
  }
  return bytes;
}

// Checks the head of a file's bytes and removes it; the record is left. Returns its version. Throws
// std::runtime_error.
unsigned int check_head(std::vector<unsigned char>& bytes) {
  const bool is_model =
      bytes.size() >= magic.size() && std::equal(magic.begin(), magic.end(), bytes.begin());
  if (!is_model) throw std::runtime_error("not a model of arbor grow");
  if (bytes.size() < head_bytes) throw std::runtime_error("damaged: it ends too early");
  memory_device device({bytes.begin() + magic.size(), bytes.begin() + head_bytes});
  ibinstream in(device);
  unsigned int version = 0;
  unsigned long long length = 0;
  unsigned int expected = 0;
  in >> version >> length >> expected;
  if (version == 0 || version > record_version) {
    throw std::runtime_error("a model of format " + std::to_string(version) +
                             "; this program reads formats 1 to " + std::to_string(record_version));
  }
  bytes.erase(bytes.begin(), bytes.begin() + head_bytes);
  if (length != bytes.size()) {
    throw std::runtime_error("damaged: it holds " + std::to_string(bytes.size()) +
                             " bytes of a tree of " + std::to_string(length));
  }
  if (checksum(bytes) != expected) throw std::runtime_error("damaged: its checksum is wrong");
  return version;
}

}  // namespace

void save_model(const std::string& path, const decision_tree& tree, ownership of_new_file) {
  const std::vector<unsigned char> bytes = model_bytes(tree);
  file_replacement file(path, of_new_file);
  file.write(bytes.data(), bytes.size());
  file.commit();
}

decision_tree load_model(const std::string& path) {
  input_file file(path);
  return model_of(read_file(file), file.name());
}

std::vector<unsigned char> model_bytes(const decision_tree& tree) {
  const std::vector<unsigned char> record = model_record(tree);
  std::vector<unsigned char> bytes = head_of(record);
  bytes.insert(bytes.end(), record.begin(), record.end());
  return bytes;
}

decision_tree model_of(std::vector<unsigned char> bytes, const std::string& name) {
  unsigned int version = 0;
  try {
    version = check_head(bytes);
  } catch (const std::runtime_error& failure) {
    throw table_error(name + ": " + failure.what());
  }
  try {
    return read_model_record(std::move(bytes), version);
  } catch (const strata::util::no_storage&) {
    throw std::bad_alloc();  // no fault of the file
  } catch (const std::runtime_error& failure) {
    throw table_error(name + ": damaged: " + printable(failure.what()));
  }
}

bool begins_like_model(std::string_view beginning) {
  return beginning.size() >= magic.size() &&
         std::equal(magic.begin(), magic.end(), beginning.begin());
}

}  // namespace arbor::tree
