#include "arbor/store/file_replacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

// The file that the signal handler removes; null for none.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
const char* volatile to_remove = nullptr;

constexpr std::array<int, 5> ending_signals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXFSZ};

void remove_and_end(int signal) {
  if (to_remove != nullptr) unlink(to_remove);
  static_cast<void>(raise(signal));  // ends the process: SA_RESETHAND has restored the default
}

[[noreturn]] void fail(const std::string& path, const char* what) {
  throw table_error(printable(path) + ": " + what + ": " + std::strerror(errno));
}

void sync(const std::string& path, int flags) {
  const int descriptor = open(path.c_str(), flags);
  const bool synced = descriptor >= 0 && fsync(descriptor) == 0;
  if (descriptor >= 0) close(descriptor);
  if (!synced) fail(path, "cannot be flushed to the disk");
}

std::string folder_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// Blocks signals between two steps that belong together.
class signals_held {
 public:
  signals_held() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, &before);
  }
  ~signals_held() { sigprocmask(SIG_SETMASK, &before, nullptr); }
  signals_held(const signals_held&) = delete;
  signals_held& operator=(const signals_held&) = delete;

 private:
  sigset_t before{};
};

// The path without links, if it exists.
std::string resolved(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
  if (real == nullptr && errno == ENOMEM)
    throw std::bad_alloc();  // the path itself would replace a link by the file
  return real == nullptr ? path : real.get();
}

// The access rights of the present file; without one, those that the process gives to new files.
mode_t wanted_mode(const std::string& path) {
  struct stat present {};
  if (stat(path.c_str(), &present) == 0) {
    if (!S_ISREG(present.st_mode)) {
      throw table_error(printable(path) +
                        ": is not a regular file and will not be replaced by one");
    }
    return present.st_mode & 07777U;
  }
  const mode_t mask = umask(0);
  umask(mask);
  return 0666U & ~mask;
}

}  // namespace

file_replacement::file_replacement(const std::string& path)
    : target(resolved(path)), temporary(target + ".XXXXXX") {
  const mode_t mode = wanted_mode(target);
  const signals_held held;
  const int descriptor = mkstemp(temporary.data());
  if (descriptor < 0) fail(target, "no file can be created in its folder");
  fchmod(descriptor, mode);
  close(descriptor);
  to_remove = temporary.c_str();
  struct sigaction action {};
  action.sa_handler = remove_and_end;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : ending_signals) {
    struct sigaction present {};
    sigaction(signal, nullptr, &present);
    if (present.sa_handler == SIG_DFL)
      sigaction(signal, &action, nullptr);  // a signal that is ignored stays ignored
  }
}

file_replacement::~file_replacement() {
  if (committed) return;
  unlink(temporary.c_str());
  to_remove = nullptr;
}

void file_replacement::commit() {
  const std::string folder_path =
      folder_of(target);  // before the rename, after which nothing may throw
  sync(temporary, O_WRONLY);
  const signals_held held;
  if (std::rename(temporary.c_str(), target.c_str()) != 0) fail(target, "cannot be replaced");
  committed = true;
  to_remove = nullptr;
  // Failures are ignored: the file has its name, some folders cannot be opened, and some file
  // systems do not sync folders.
  const int folder = open(folder_path.c_str(), O_RDONLY | O_DIRECTORY);
  if (folder < 0) return;
  fsync(folder);
  close(folder);
}

}  // namespace arbor::tree
