#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/landlock.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>

#include "helper/Sandbox.h"

namespace {

/// What `attempt` returns in a process that shut itself in.
bool inSandbox(const std::function<bool()>& attempt) {
  const pid_t child = fork();
  if (child == 0) {
    if (!enterSandbox()) _exit(2);
    _exit(attempt() ? 1 : 0);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status)) << status;
  EXPECT_LT(WEXITSTATUS(status), 2);
  return WEXITSTATUS(status) == 1;
}

bool opens(const char* path, int flags) {
  return open(path, flags, 0600) >= 0;
}

bool hasLandlock() {
  return syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) > 0;
}

struct Attempt {
  const char* name;
  std::function<bool()> attempt;
};

}  // namespace

TEST(Sandbox, Forbids) {
  const std::string folder = testing::TempDir();
  const std::string file = folder + "/written";
  const Attempt kAttempts[] = {
      {"a socket", [] { return socket(AF_INET, SOCK_STREAM, 0) >= 0; }},
      {"a local socket", [] { return socket(AF_UNIX, SOCK_STREAM, 0) >= 0; }},
      {"another program",
       [] {
         char name[] = "true";
         char* const arguments[] = {name, nullptr};
         execv("/bin/true", arguments);
         return false;
       }},
      {"another process", [] { return fork() >= 0; }},
      {"a signal to others", [] { return kill(getppid(), 0) == 0; }},
      {"tracing", [] { return syscall(SYS_ptrace, 0, 0, 0, 0) == 0; }},
      {"a new file", [&] { return opens(file.c_str(), O_WRONLY | O_CREAT); }},
      {"an unnamed file", [&] { return opens(folder.c_str(), O_TMPFILE | O_RDWR); }},
      {"changing a file", [] { return opens("/dev/null", O_RDWR); }},
      {"removing", [&] { return rmdir(folder.c_str()) == 0 || errno != EPERM; }},
      {"a folder", [&] { return mkdir((folder + "/new").c_str(), 0700) == 0; }},
      {"a link", [&] { return symlink("/", (folder + "/link").c_str()) == 0; }}};
  for (const Attempt& attempt : kAttempts) EXPECT_FALSE(inSandbox(attempt.attempt)) << attempt.name;
}

TEST(Sandbox, KeepsFilesOutOfReach) {
  if (!hasLandlock()) GTEST_SKIP() << "this system cannot";
  const std::string own = testing::TempDir() + "/secret";
  ASSERT_TRUE(opens(own.c_str(), O_WRONLY | O_CREAT));
  for (const char* path : {"/etc/passwd", "/proc/1/environ", "/etc", own.c_str()}) {
    EXPECT_FALSE(inSandbox([path] { return opens(path, O_RDONLY); })) << path;
  }
}

TEST(Sandbox, Allows) {
  const Attempt kAttempts[] = {
      {"libraries", [] { return opens("/usr/lib", O_RDONLY | O_DIRECTORY); }},
      {"fonts", [] { return opendir("/usr/share") != nullptr; }},
      {"its own program", [] { return opens("/proc/self/maps", O_RDONLY); }},
      {"memory to share", [] { return memfd_create("test", MFD_ALLOW_SEALING) >= 0; }},
      {"threads", [] {
         bool ran = false;
         std::thread([&ran] { ran = true; }).join();
         return ran;
       }}};
  for (const Attempt& attempt : kAttempts) EXPECT_TRUE(inSandbox(attempt.attempt)) << attempt.name;
}

TEST(Sandbox, HoldsForThreads) {
  EXPECT_FALSE(inSandbox([] {
    bool opened = true;
    std::thread([&opened] { opened = socket(AF_INET, SOCK_STREAM, 0) >= 0; }).join();
    return opened;
  }));
}
