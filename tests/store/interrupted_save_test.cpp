// What is left of a model file when saving a new one in its place ends, or fails, at any of its
// system calls.

#include <gmock/gmock.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <functional>

#include "arbor/csv/table_error.h"
#include "arbor/store/model_store.h"
#include "arbor/table/table_loader.h"
#include "arbor/tree/grower.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

enum class fault { killed, failed };

struct outcome {
  bool reached;                  // whether there were so many calls
  int status;                    // of the process, as waitpid tells it
  std::vector<long long> calls;  // their numbers
};

// Runs `work` in a process of its own, which at system call `at` is killed, or told that there is
// no space left.
outcome run_with_fault(fault kind, std::size_t at, const std::function<int()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(3);
    raise(SIGSTOP);
    _exit(work());
  }
  outcome result{false, 0, {}};
  waitpid(child, &result.status, 0);
  if (!WIFSTOPPED(result.status)) return result;
  ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  for (bool entering = true;; entering = !entering) {
    ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
    waitpid(child, &result.status, 0);
    if (!WIFSTOPPED(result.status)) return result;
    user_regs_struct registers{};
    ptrace(PTRACE_GETREGS, child, nullptr, &registers);
    if (entering) result.calls.push_back(static_cast<long long>(registers.orig_rax));
    if (result.calls.size() != at + 1) continue;
    result.reached = true;
    if (kind == fault::killed) kill(child, SIGKILL);
    if (entering) registers.orig_rax = ~0ULL;  // a call that there is not
    if (!entering) registers.rax = static_cast<unsigned long long>(-ENOSPC);
    ptrace(PTRACE_SETREGS, child, nullptr, &registers);
  }
}

std::string bytes_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

tree::decision_tree tree_of(const std::string& csv) {
  const temporary_file file(csv);
  const tree::table rows = tree::load_table(file.path(), {});
  return tree::grow_tree(rows, rows.cases, {});
}

struct interrupted_save : testing::Test {
  interrupted_save() {
    std::filesystem::create_directory(folder);
    if (save() == done) new_bytes = bytes_of(path);
  }
  ~interrupted_save() override { std::filesystem::remove_all(folder); }

  // The statuses that the process ends with. A sanitizer, whose own calls are refused too, ends it
  // with another one.
  static constexpr int done = 0, refused = 2;
  int save() const {
    try {
      tree::save_model(path, new_tree);
      return done;
    } catch (const std::exception&) {
      return refused;
    }
  }
  std::size_t files() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
  }

  const std::string folder = "/tmp/arbor_save_" + std::to_string(getpid());
  const std::string path = folder + "/golf.model";
  const std::string old_bytes = "what was there before";
  const tree::decision_tree new_tree = tree_of("a,c\n1,x\n2,x\n3,y\n4,y\n");
  std::string new_bytes;
};

TEST_F(interrupted_save, LeavesTheOldFileOrTheNewOneWhole) {
  for (const fault kind : {fault::killed, fault::failed}) {
    outcome now{true, 0, {}};
    for (std::size_t at = 0; now.reached; ++at) {
      std::filesystem::remove_all(folder);
      std::filesystem::create_directory(folder);
      std::ofstream(path) << old_bytes;
      now = run_with_fault(kind, at, [this] { return save(); });
      const std::string left = bytes_of(path);
      EXPECT_THAT(left, testing::AnyOf(old_bytes, new_bytes)) << "at call " << at;
      const int status = WIFEXITED(now.status) ? WEXITSTATUS(now.status) : -1;
      if (status != done && status != refused) continue;
      EXPECT_EQ(left, status == done ? new_bytes : old_bytes) << "at call " << at;
      EXPECT_EQ(files(), 1U) << "at call " << at;
    }
    EXPECT_GT(now.calls.size(), 10U) << "a process cannot be traced here";
  }
}

// A power cut may lose what is not yet on the disk: the bytes have to be there before the name
// leads to them.
TEST_F(interrupted_save, BringsTheBytesToTheDiskBeforeTheNameAndThenTheName) {
  std::string order;
  for (const long long call :
       run_with_fault(fault::killed, ~0ULL, [this] { return save(); }).calls) {
    if (call == SYS_write || call == SYS_writev)
      order += order.empty() || order.back() != 'w' ? "w" : "";
    if (call == SYS_fsync || call == SYS_fdatasync) order += "s";
    if (call == SYS_rename || call == SYS_renameat2) order += "r";
  }
  EXPECT_EQ(order, "wsrs");
}

}  // namespace
}  // namespace arbor::tests
