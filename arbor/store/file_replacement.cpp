#include "arbor/store/file_replacement.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "arbor/csv/shown_text.h"
#include "arbor/store/present_file.h"

namespace arbor::tree {

namespace {

// The name of the temporary file. It is never freed: a handler may run in another thread while an
// object is destroyed.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)
std::array<char, PATH_MAX> unfinished_file{};
std::atomic<bool> is_unfinished{false};
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

void remove_and_end(int signal) {
  remove_unfinished_file();
  static_cast<void>(raise(signal));  // ends the process: SA_RESETHAND has restored the default
}

bool ends_the_process(int signal) {
  constexpr std::array<int, 8> harmless{SIGCHLD, SIGCONT, SIGSTOP, SIGTSTP,
                                        SIGTTIN, SIGTTOU, SIGURG,  SIGWINCH};
  return std::find(harmless.begin(), harmless.end(), signal) == harmless.end();
}

// Not for signals that are ignored or have a handler of the program's own. The system refuses those
// that cannot be caught.
void handle_ending_signals() {
  struct sigaction action {};
  action.sa_handler = remove_and_end;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (int signal = 1; signal <= SIGRTMAX; ++signal) {
    struct sigaction present {};
    if (ends_the_process(signal) && sigaction(signal, nullptr, &present) == 0 &&
        present.sa_handler == SIG_DFL)
      sigaction(signal, &action, nullptr);
  }
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

[[noreturn]] void fail(const std::string& name, const char* what) {
  const int reason = errno;
  throw table_error(printable(name) + ": " + what + ": " + std::strerror(reason));
}

std::string folder_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// For mkstemp. A long name is cut, but not within a character of UTF-8, since some file systems
// refuse such a name.
std::string temporary_name(const std::string& target) {
  constexpr std::string_view ending = ".XXXXXX";
  const std::size_t name = target.rfind('/') + 1;
  std::size_t end = std::min(target.size(), name + NAME_MAX - ending.size());
  while (end < target.size() && end > name && (static_cast<unsigned char>(target[end]) >> 6U) == 2)
    --end;
  return target.substr(0, end).append(ending);
}

mode_t umask_of_process() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

mode_t rights_like(const std::string& path, const struct stat& present, bool other_owner,
                   bool other_group) {
  mode_t rights = present.st_mode & 0777U;
  // With an access control list, the bits of the group are the most that the list gives to anyone.
  if (getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0) > 0) rights &= ~070U;
  if (other_owner || other_group) rights &= ~umask_of_process();
  if (other_group) rights &= 0700U | (rights >> 3U & 07U);
  return rights;
}

// Names where the system knows them, otherwise numbers.
std::string owner_and_group(const struct stat& present) {
  std::array<char, 1U << 14U> texts{};
  struct passwd user {};
  struct group group {};
  struct passwd* known_user = nullptr;
  struct group* known_group = nullptr;
  static_cast<void>(getpwuid_r(present.st_uid, &user, texts.data(), texts.size(), &known_user));
  const std::string owner = known_user != nullptr ? user.pw_name : std::to_string(present.st_uid);
  static_cast<void>(getgrgid_r(present.st_gid, &group, texts.data(), texts.size(), &known_group));
  return printable(owner) + ':' +
         printable(known_group != nullptr ? group.gr_name : std::to_string(present.st_gid));
}

// Gives the new file the owner and group of the present one, as far as the system allows it.
// Returns the rights for it.
mode_t keep_owner(int made_file, const std::string& name, const std::string& target,
                  const struct stat& present, protection of_present_file) {
  struct stat made {};
  if (fstat(made_file, &made) != 0) fail(name, "cannot be looked up");
  const auto differ = [&] {
    return present.st_uid != made.st_uid || present.st_gid != made.st_gid;
  };
  if (differ() && fchown(made_file, present.st_uid, present.st_gid) != 0)
    static_cast<void>(fchown(made_file, made.st_uid, present.st_gid));  // at least the group
  if (fstat(made_file, &made) != 0) fail(name, "cannot be looked up");
  const bool respected = of_present_file == protection::respected;
  if (respected && differ()) {
    throw protection_error(printable(name) + ": belongs to " + owner_and_group(present) +
                           ", and a new file cannot be given to them");
  }
  if (faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
    if (errno != EACCES) fail(name, "cannot be written");
    if (respected) throw protection_error(printable(name) + ": is protected against writing");
  }
  return rights_like(target, present, present.st_uid != made.st_uid, present.st_gid != made.st_gid);
}

const char* kind_of(mode_t mode) {
  if (S_ISDIR(mode)) return "a folder";
  if (S_ISBLK(mode)) return "a block device";
  return S_ISSOCK(mode) ? "a socket" : "no regular file";
}

}  // namespace

void remove_unfinished_file() noexcept {
  if (is_unfinished) unlink(unfinished_file.data());
}

file_replacement::file_replacement(const std::string& path, protection of_present_file)
    : name(path), target(followed(path)) {
  struct stat present {};
  const bool exists = stat(target.c_str(), &present) == 0;
  if (!exists && (errno != ENOENT || path.empty())) fail(name, "cannot be written");
  if (exists && (S_ISCHR(present.st_mode) || S_ISFIFO(present.st_mode))) return;
  if (exists && !S_ISREG(present.st_mode)) {
    throw table_error(printable(name) + ": is " + kind_of(present.st_mode) +
                      ", not a file that can be replaced");
  }
  if (is_open_descriptor(target))
    throw table_error(printable(name) + ": is a file that is open already; give its own name");
  rights = 0666U & ~umask_of_process();
  create_temporary_file();
  try {
    if (exists) rights = keep_owner(descriptor, name, target, present, of_present_file);
  } catch (...) {
    discard();
    throw;
  }
}

void file_replacement::create_temporary_file() {
  temporary = temporary_name(target);
  const signals_held held;
  descriptor = mkstemp(temporary.data());
  if (descriptor < 0) fail(name, "no file can be created in its folder");
  std::copy_n(temporary.c_str(), temporary.size() + 1, unfinished_file.begin());
  is_unfinished = true;
  handle_ending_signals();
}

file_replacement::~file_replacement() {
  discard();
}

void file_replacement::write(const void* data, std::size_t count) {
  if (descriptor < 0) descriptor = open(target.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) fail(name, "cannot be opened");
  const char* next = static_cast<const char*>(data);
  while (count > 0) {
    const ssize_t written = ::write(descriptor, next, count);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) fail(name, "cannot be written");
    next += written;
    count -= static_cast<std::size_t>(written);
  }
}

void file_replacement::commit() {
  if (temporary.empty()) return close_file();
  const std::string folder_path =
      folder_of(target);  // before the rename, after which nothing may throw
  // Where a file system does not take these rights, the file keeps those for its owner alone.
  static_cast<void>(fchmod(descriptor, rights));
  if (fsync(descriptor) != 0) fail(name, "cannot be flushed to the disk");
  close_file();
  const signals_held held;
  if (std::rename(temporary.c_str(), target.c_str()) != 0) fail(name, "cannot be replaced");
  is_unfinished = false;
  temporary.clear();
  // Failures are ignored: the file has its name, some folders cannot be opened, and some file
  // systems do not sync folders.
  const int folder = open(folder_path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return;
  fsync(folder);
  close(folder);
}

void file_replacement::close_file() {
  const int closed = descriptor;
  descriptor = -1;
  if (closed >= 0 && close(closed) != 0) fail(name, "cannot be written");
}

void file_replacement::discard() noexcept {
  if (descriptor >= 0) close(descriptor);
  if (temporary.empty()) return;
  unlink(temporary.c_str());
  is_unfinished = false;
}

}  // namespace arbor::tree
