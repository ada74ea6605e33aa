#include "arbor/tree/file_replacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "arbor/tree/message_text.h"
#include "arbor/tree/table_error.h"

namespace arbor::tree {

namespace {

// What a signal handler removes before the process ends as it would have; null for nothing.
const char* volatile to_remove = nullptr;

constexpr std::array<int, 3> ending_signals{SIGINT, SIGTERM, SIGHUP};

void remove_and_end(int signal) {
  if (to_remove != nullptr) unlink(to_remove);
  raise(signal);  // with the default action, which SA_RESETHAND has restored
}

[[noreturn]] void fail(const std::string& path, const char* what) {
  throw table_error(printable(path) + ": " + what + ": " + std::strerror(errno));
}

void sync(const std::string& path, int flags) {
  const int descriptor = open(path.c_str(), flags);
  const bool synced = descriptor >= 0 && fsync(descriptor) == 0;
  if (descriptor >= 0) close(descriptor);
  if (!synced) fail(path, "cannot be brought to the disk");
}

std::string folder_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

file_replacement::file_replacement(const std::string& path) : target(path), temporary(path + ".XXXXXX") {
  const int descriptor = mkstemp(temporary.data());
  if (descriptor < 0) fail(target, "no file can be written beside it");
  // mkstemp lets only the owner read; a file made in the usual way follows the process's mask.
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(descriptor, 0666 & ~mask);
  close(descriptor);
  to_remove = temporary.c_str();
  struct sigaction action {};
  action.sa_handler = remove_and_end;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : ending_signals) {
    struct sigaction present {};
    sigaction(signal, nullptr, &present);
    if (present.sa_handler == SIG_DFL) sigaction(signal, &action, nullptr);  // who ignores one goes on ignoring it
  }
}

file_replacement::~file_replacement() {
  if (to_remove != nullptr) unlink(temporary.c_str());
  to_remove = nullptr;
}

void file_replacement::commit() {
  sync(temporary, O_WRONLY);
  if (std::rename(temporary.c_str(), target.c_str()) != 0) fail(target, "cannot be replaced");
  to_remove = nullptr;
  sync(folder_of(target), O_RDONLY | O_DIRECTORY);
}

}  // namespace arbor::tree
