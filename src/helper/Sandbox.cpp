#include "helper/Sandbox.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>

#include "platform/machine/FileDescriptor.h"
#include "platform/machine/OwnFolder.h"

namespace {

/// What may be read: libraries and what they load, fonts and the caches of their folders.
constexpr const char* kReadable[] = {"/usr", "/lib", "/lib32", "/lib64", "/libx32", "/gnu/store",
                                     "/nix/store", "/etc/ld.so.cache", "/etc/alternatives",
                                     "/var/cache/fontconfig",
                                     // The C library looks for the bounds of the stack there.
                                     "/proc/self", "/sys/devices/system/cpu", "/proc/cpuinfo",
                                     "/proc/meminfo", "/dev/null", "/dev/urandom"};

uint64_t handledRights(int version) {
  uint64_t rights =
      LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_READ_FILE |
      LANDLOCK_ACCESS_FS_READ_DIR | LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE |
      LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
      LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK |
      LANDLOCK_ACCESS_FS_MAKE_SYM;
  if (version >= 2) rights |= LANDLOCK_ACCESS_FS_REFER;
  return rights;
}

void letRead(int rules, const std::string& path) {
  const FileDescriptor place(open(path.c_str(), O_PATH | O_CLOEXEC));
  struct stat facts {};
  if (!place.isOpen() || fstat(place.number(), &facts) != 0) return;
  landlock_path_beneath_attr rule{};
  rule.parent_fd = place.number();
  rule.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_EXECUTE;
  if (S_ISDIR(facts.st_mode)) rule.allowed_access |= LANDLOCK_ACCESS_FS_READ_DIR;
  syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}

/// The value of a variable with something behind it; empty without it.
std::string below(const char* variable, const char* folder) {
  const char* const value = std::getenv(variable);
  return value == nullptr || *value == '\0' ? std::string() : std::string(value) + folder;
}

void letReadAll(int rules) {
  for (const char* path : kReadable) letRead(rules, path);
  // The installation that this program is a part of, two folders up.
  letRead(rules, ownFolder() + "../..");
  for (const std::string& path :
       {below("XDG_DATA_HOME", "/fonts"), below("HOME", "/.local/share/fonts"),
        below("HOME", "/.fonts"), below("XDG_CACHE_HOME", "/fontconfig"),
        below("HOME", "/.cache/fontconfig")}) {
    if (!path.empty()) letRead(rules, path);
  }
  const std::string libraries = below("LD_LIBRARY_PATH", "");
  for (size_t start = 0; start < libraries.size();) {
    const size_t end = std::min(libraries.find(':', start), libraries.size());
    if (end > start) letRead(rules, libraries.substr(start, end - start));
    start = end + 1;
  }
}

/// Nothing on systems without Landlock.
void keepFilesOutOfReach() {
  const auto version = static_cast<int>(
      syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION));
  if (version < 1) return;
  landlock_ruleset_attr attributes{};
  attributes.handled_access_fs = handledRights(version);
  const FileDescriptor rules(
      static_cast<int>(syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0)));
  if (!rules.isOpen()) return;
  letReadAll(rules.number());
  syscall(SYS_landlock_restrict_self, rules.number(), 0);
}

/// Calls that take what they like. Everything that is not named fails with EPERM.
constexpr int kAllowed[] = {SCMP_SYS(access),
                            SCMP_SYS(arch_prctl),
                            SCMP_SYS(brk),
                            SCMP_SYS(clock_getres),
                            SCMP_SYS(clock_gettime),
                            SCMP_SYS(clock_nanosleep),
                            SCMP_SYS(close),
                            SCMP_SYS(close_range),
                            SCMP_SYS(dup),
                            SCMP_SYS(eventfd2),
                            SCMP_SYS(exit),
                            SCMP_SYS(exit_group),
                            SCMP_SYS(faccessat),
                            SCMP_SYS(faccessat2),
                            SCMP_SYS(fadvise64),
                            SCMP_SYS(fcntl),
                            SCMP_SYS(fstat),
                            SCMP_SYS(fstatfs),
                            SCMP_SYS(ftruncate),
                            SCMP_SYS(futex),
                            SCMP_SYS(get_robust_list),
                            SCMP_SYS(getcpu),
                            SCMP_SYS(getcwd),
                            SCMP_SYS(getdents64),
                            SCMP_SYS(getegid),
                            SCMP_SYS(geteuid),
                            SCMP_SYS(getgid),
                            SCMP_SYS(getpid),
                            SCMP_SYS(getppid),
                            SCMP_SYS(getrandom),
                            SCMP_SYS(getrlimit),
                            SCMP_SYS(getrusage),
                            SCMP_SYS(gettid),
                            SCMP_SYS(gettimeofday),
                            SCMP_SYS(getuid),
                            SCMP_SYS(lseek),
                            SCMP_SYS(lstat),
                            SCMP_SYS(madvise),
                            SCMP_SYS(membarrier),
                            SCMP_SYS(memfd_create),
                            SCMP_SYS(mincore),
                            SCMP_SYS(mmap),
                            SCMP_SYS(mprotect),
                            SCMP_SYS(mremap),
                            SCMP_SYS(munmap),
                            SCMP_SYS(nanosleep),
                            SCMP_SYS(pipe),
                            SCMP_SYS(pipe2),
                            SCMP_SYS(newfstatat),
                            SCMP_SYS(poll),
                            SCMP_SYS(ppoll),
                            SCMP_SYS(pread64),
                            SCMP_SYS(prlimit64),
                            SCMP_SYS(read),
                            SCMP_SYS(readlink),
                            SCMP_SYS(readlinkat),
                            SCMP_SYS(readv),
                            SCMP_SYS(recvmsg),
                            SCMP_SYS(restart_syscall),
                            SCMP_SYS(rseq),
                            SCMP_SYS(rt_sigaction),
                            SCMP_SYS(rt_sigprocmask),
                            SCMP_SYS(rt_sigreturn),
                            SCMP_SYS(sched_getaffinity),
                            SCMP_SYS(sched_yield),
                            SCMP_SYS(sendmsg),
                            SCMP_SYS(set_robust_list),
                            SCMP_SYS(set_tid_address),
                            SCMP_SYS(setitimer),
                            SCMP_SYS(setrlimit),
                            SCMP_SYS(sigaltstack),
                            SCMP_SYS(stat),
                            SCMP_SYS(statfs),
                            SCMP_SYS(statx),
                            SCMP_SYS(sysinfo),
                            SCMP_SYS(tgkill),
                            SCMP_SYS(time),
                            SCMP_SYS(times),
                            SCMP_SYS(uname),
                            SCMP_SYS(write),
                            SCMP_SYS(writev)};

struct ReleaseFilter {
  void operator()(void* filter) const { seccomp_release(filter); }
};

bool filterCalls() {
  const std::unique_ptr<void, ReleaseFilter> filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)));
  if (filter == nullptr) return false;
  const scmp_filter_ctx rules = filter.get();
  bool done = std::all_of(std::begin(kAllowed), std::end(kAllowed), [rules](int call) {
    // Of calls that this machine does not have there is nothing to allow.
    const int result = seccomp_rule_add(rules, SCMP_ACT_ALLOW, call, 0);
    return result == 0 || result == -EDOM;
  });
  constexpr uint64_t kWriting = O_WRONLY | O_RDWR | O_CREAT | O_TRUNC | O_APPEND;
  done = done &&
         seccomp_rule_add(rules, SCMP_ACT_ALLOW, SCMP_SYS(openat), 1,
                          SCMP_A2(SCMP_CMP_MASKED_EQ, kWriting, 0)) == 0 &&
         // Threads, no processes. The C library falls back on clone, whose flags can be seen.
         seccomp_rule_add(rules, SCMP_ACT_ALLOW, SCMP_SYS(clone), 1,
                          SCMP_A0(SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD)) == 0 &&
         seccomp_rule_add(rules, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) == 0 &&
         seccomp_rule_add(rules, SCMP_ACT_ALLOW, SCMP_SYS(prctl), 1,
                          SCMP_A0(SCMP_CMP_EQ, PR_SET_NAME)) == 0;
  const int open = seccomp_rule_add(rules, SCMP_ACT_ALLOW, SCMP_SYS(open), 1,
                                    SCMP_A1(SCMP_CMP_MASKED_EQ, kWriting, 0));
  return done && (open == 0 || open == -EDOM) && seccomp_load(rules) == 0;
}

}  // namespace

bool enterSandbox() {
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return false;
  keepFilesOutOfReach();
  return filterCalls();
}
