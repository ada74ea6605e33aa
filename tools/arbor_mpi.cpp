// The program arbor-mpi: the commands of arbor that work in several processes together.
//
// All processes run the same command. The first one alone prints and saves.

#include <malloc.h>

#include <iostream>
#include <limits>
#include <new>
#include <optional>
#include <streambuf>

#include "arbor/processes/agreement.h"
#include "arbor/processes/process_group.h"
#include "arbor/processes/statistics_report.h"
#include "tools/arbor_mpi_program.h"
#include "tools/many_processes.h"
#include "tools/messages.h"

namespace arbor::tools {

namespace {

class null_buffer : public std::streambuf {
 protected:
  int_type overflow(int_type c) override { return traits_type::not_eof(c); }
  std::streamsize xsputn(const char* /*text*/, std::streamsize count) override { return count; }
};

// While it exists, nothing that is written to a stream arrives.
class muted_stream {
 public:
  explicit muted_stream(std::ostream& muted) : stream(muted), unmuted(muted.rdbuf(&nowhere)) {}
  ~muted_stream() { stream.rdbuf(unmuted); }
  muted_stream(const muted_stream&) = delete;
  muted_stream& operator=(const muted_stream&) = delete;

 private:
  null_buffer nowhere;
  std::ostream& stream;
  std::streambuf* unmuted;
};

struct muted_streams {
  muted_stream results{std::cout};
  muted_stream messages{std::cerr};
};

int run_command(tree::process_group& group, int argc, const char* const* argv) {
  const many_processes place(group);
  arbor_mpi_program arbor_mpi(place);
  const int status = arbor_mpi.run(argc, argv);
  if (arbor_mpi.wants_statistics()) tree::write_statistics(std::cerr, group);
  return status;
}

// What all processes know of ends each of them in the usual way. Anything else is thrown.
int run(tree::process_group& group, int argc, const char* const* argv) {
  std::optional<muted_streams> muted;
  if (!group.is_first()) muted.emplace();
  try {
    return run_command(group, argc, argv);
  } catch (const tree::agreed_failure& error) {
    complain(error.what());
  } catch (const usage_error& error) {  // all processes have the same arguments
    complain(error.what());
  }
  return failure;
}

// The tables of a node are as large as those of the next, and are all freed in between. To give
// their memory back to the system each time, and to get it again, takes a twentieth of the time.
void keep_freed_memory() {
  constexpr int any_size = std::numeric_limits<int>::max();
  mallopt(M_MMAP_THRESHOLD, any_size);
  mallopt(M_TRIM_THRESHOLD, any_size);
}

}  // namespace

const std::string_view program_name = "arbor-mpi";

void end_program(int status) noexcept {
  tree::process_group::abort(status);
}

}  // namespace arbor::tools

int main(int argc, char** argv) {
  arbor::tools::keep_freed_memory();
  arbor::tree::process_group group(argc, argv);
  try {
    return arbor::tools::run(group, argc, argv);
  } catch (const std::bad_alloc&) {
    arbor::tools::complain_of_memory();
  } catch (const std::exception& error) {
    arbor::tools::complain(error.what());
  }
  arbor::tools::end_program(arbor::tools::failure);
}
