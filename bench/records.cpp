// Saving a column into a file and reloading it, compared with writing and reading the same bytes by
// hand.

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <vector>

#include "arbor/utils/file_device.h"
#include "bench/benches.h"
#include "bench/comparison.h"

namespace arbor::bench {

namespace {

using strata::inpout::file_device;
using strata::inpout::ibinstream;
using strata::inpout::obinstream;

constexpr unsigned int rows = 1000000;

// Two files, removed in the end, in memory where there is a place for that: a disk would drown the
// difference.
struct file_pair {
  std::string unit = path("unit");
  std::string bare = path("bare");

  file_pair() = default;
  file_pair(const file_pair&) = delete;
  file_pair& operator=(const file_pair&) = delete;
  ~file_pair() {
    unlink(unit.c_str());
    unlink(bare.c_str());
  }

  static std::string directory() { return access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp"; }
  static std::string path(const char* name) {
    return directory() + "/arbor_bench_" + std::to_string(getpid()) + "_" + name;
  }
};

using byte_array = std::unique_ptr<char[]>;

void bare_write(const std::string& path, const char* bytes, std::size_t count) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  expect(file >= 0, "it is opened");
  const bool written = write(file, bytes, count) == static_cast<ssize_t>(count);
  expect(close(file) == 0 && written, "it is written");
}

// Into new storage, which a reload needs as well.
byte_array bare_read(const std::string& path, std::size_t count) {
  byte_array bytes(new char[count]);
  const int file = open(path.c_str(), O_RDONLY);
  expect(file >= 0, "it is opened");
  const bool whole = read(file, bytes.get(), count) == static_cast<ssize_t>(count);
  expect(close(file) == 0 && whole, "it is read");
  keep(bytes.get());
  return bytes;
}

// How a column is saved and reloaded.
struct format {
  std::function<void(obinstream&, const column&)> save;
  std::function<std::unique_ptr<column>(ibinstream&)> load;
};

const format whole_record{[](obinstream& out, const column& source) { out << &source; },
                          [](ibinstream& in) {
                            column* loaded = nullptr;
                            in >> loaded;
                            return std::unique_ptr<column>(loaded);
                          }};

// The rows without domain, name and kind; a column that is only filled and asked for its codes
// needs no domain.
const format rows_of_four_bytes{[](obinstream& out, const column& source) { source.bin_out(out); },
                                [](ibinstream& in) {
                                  auto loaded = std::make_unique<column_typed<unsigned int>>(
                                      nullptr, "x", column::DISCRETE);
                                  loaded->bin_in(in);
                                  return loaded;
                                }};

void save(const format& form, const column& source, const std::string& path) {
  file_device device(path, file_device::mode::write);
  obinstream out(device);
  form.save(out, source);
  device.close();
}

std::unique_ptr<column> load(const format& form, const std::string& path) {
  file_device device(path, file_device::mode::read);
  ibinstream in(device);
  std::unique_ptr<column> loaded = form.load(in);
  keep(loaded.get());
  return loaded;
}

void add(const std::string& name, const aim& wanted, unsigned int known, const format& form) {
  struct saved {
    std::unique_ptr<column> source;
    file_pair files;
    std::size_t size = 0;
    byte_array bytes;
  };
  // Makes the column, saves it, and checks that what is reloaded is the same.
  const auto make = [=] {
    auto made = std::make_shared<saved>();
    const std::vector<std::string> texts = integer_texts(known);
    made->source = make_column("discrete", "integer", texts);
    for (unsigned int row = 0; row < rows; ++row)
      made->source->push_back(texts[row * 7919ULL % known].c_str());
    save(form, *made->source, made->files.unit);
    made->size = std::filesystem::file_size(made->files.unit);
    made->bytes = bare_read(made->files.unit, made->size);
    bare_write(made->files.bare, made->bytes.get(), made->size);
    const std::unique_ptr<column> loaded = load(form, made->files.unit);
    bool same = loaded != nullptr && loaded->size() == rows;
    for (unsigned int row = 0; same && row < rows; ++row) {
      same = loaded->get_row_index(row) == made->source->get_row_index(row);
    }
    expect(same, "what is reloaded is what was saved");
    return made;
  };
  compare("saving a column : write/" + name, wanted, [=] {
    const auto made = make();
    return comparison{rows, [=] { save(form, *made->source, made->files.unit); },
                      [=] { bare_write(made->files.bare, made->bytes.get(), made->size); }};
  });
  compare("reloading a column : read/" + name, wanted, [=] {
    const auto made = make();
    return comparison{rows, [=] { load(form, made->files.unit); },
                      [=] { bare_read(made->files.bare, made->size); }};
  });
}

}  // namespace

void add_records() {
  benchmark::AddCustomContext("files", file_pair::directory());
  const aim bandwidth{aim::ratio, 1.25};
  add("bits, 2 values", bandwidth, 2, whole_record);
  add("1 byte, 20 values", bandwidth, 20, whole_record);
  add("4 bytes, the rows alone", bandwidth, 0xFFFF, rows_of_four_bytes);
  // The fewest values that need four bytes a row; they are a sixteenth of the record.
  add("4 bytes, 65,535 values", {}, 0xFFFF, whole_record);
}

}  // namespace arbor::bench
