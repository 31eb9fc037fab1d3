#include "platform/pictures/HelperProcess.h"

#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <new>
#include <string_view>
#include <vector>

#include "platform/machine/OwnFolder.h"
#include "platform/pictures/HelperProtocol.h"

namespace {

constexpr const char* kProgram = "paint-picture-helper";
/// The end of the socket in the helper.
constexpr int kHelperSocket = 3;
/// Loading the program takes some milliseconds; a machine may be very busy.
constexpr std::chrono::seconds kGreetingTime{10};

/// What of the environment reaches the helper: where libraries and the user's fonts are.
constexpr std::string_view kPassedVariables[] = {
    "LD_LIBRARY_PATH=", "HOME=",         "XDG_DATA_HOME=",
    "XDG_CACHE_HOME=",  "ASAN_OPTIONS=", "UBSAN_OPTIONS="};

std::vector<char*> helperEnvironment() {
  std::vector<char*> passed;
  for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    const bool passes = std::any_of(std::begin(kPassedVariables), std::end(kPassedVariables),
                                    [&](std::string_view name) { return text.starts_with(name); });
    if (passes) passed.push_back(*variable);
  }
  passed.push_back(nullptr);
  return passed;
}

/// Files and signals of the helper: the socket and the standard streams, and nothing else that this
/// process has open or ignores.
class SpawnOptions {
 public:
  explicit SpawnOptions(int socket) {
    const bool done = posix_spawn_file_actions_init(&files_) == 0 &&
                      posix_spawnattr_init(&attributes_) == 0 && prepare(socket);
    if (!done) throw std::bad_alloc();
  }
  SpawnOptions(const SpawnOptions&) = delete;
  SpawnOptions& operator=(const SpawnOptions&) = delete;
  ~SpawnOptions() {
    posix_spawn_file_actions_destroy(&files_);
    posix_spawnattr_destroy(&attributes_);
  }

  const posix_spawn_file_actions_t* files() const { return &files_; }
  const posix_spawnattr_t* attributes() const { return &attributes_; }

 private:
  bool prepare(int socket) {
    sigset_t all;
    sigset_t none;
    sigfillset(&all);
    sigemptyset(&none);
    return posix_spawn_file_actions_adddup2(&files_, socket, kHelperSocket) == 0 &&
           posix_spawn_file_actions_addclosefrom_np(&files_, kHelperSocket + 1) == 0 &&
           posix_spawnattr_setsigdefault(&attributes_, &all) == 0 &&
           posix_spawnattr_setsigmask(&attributes_, &none) == 0 &&
           posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK) ==
               0;
  }

  posix_spawn_file_actions_t files_;
  posix_spawnattr_t attributes_;
};

/// Ends a process; nothing without a descriptor. Numbers of processes are not safe to use: hosts
/// may have reaped them, and others got them.
void end(const FileDescriptor& process) {
  if (process.isOpen()) syscall(SYS_pidfd_send_signal, process.number(), SIGKILL, nullptr, 0);
}

/// The first process of the helper: it starts one of its own and ends.
class FirstProcess {
 public:
  explicit FirstProcess(pid_t process)
      : process_(process), descriptor_(static_cast<int>(syscall(SYS_pidfd_open, process, 0))) {}
  FirstProcess(const FirstProcess&) = delete;
  FirstProcess& operator=(const FirstProcess&) = delete;
  /// Ends it, if need be, and takes its end, unless the host has done so.
  ~FirstProcess() {
    if (!hasEnded_) end(descriptor_);
    while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }

  /// Gives it some time to end by itself.
  void letEnd() {
    pollfd state{descriptor_.number(), POLLIN, 0};
    constexpr int kMilliseconds = 1000;
    hasEnded_ = poll(&state, 1, kMilliseconds) == 1;
  }

 private:
  pid_t process_;
  FileDescriptor descriptor_;
  bool hasEnded_ = false;
};

PictureFailure spawn(const std::string& path, int socket, pid_t* child) {
  const SpawnOptions options(socket);
  std::string name = kProgram;
  char* const arguments[] = {name.data(), nullptr};
  const int error = posix_spawn(child, path.c_str(), options.files(), options.attributes(),
                                arguments, helperEnvironment().data());
  if (error == ENOMEM || error == EAGAIN) throw std::bad_alloc();
  if (error == ENOENT) return PictureFailure::helperMissing;
  return error == 0 ? PictureFailure::none : PictureFailure::helperNotStarted;
}

bool isOurVersion(const HelperGreeting& greeting) {
  const auto end = std::find(greeting.version.begin(), greeting.version.end(), '\0');
  return greeting.magic == kHelperMagic &&
         std::string_view(greeting.version.begin(), end) == PAINT_VERSION;
}

}  // namespace

HelperProcess::~HelperProcess() {
  // It also ends by itself, but may be in the middle of a picture that nobody waits for.
  if (channel_.isOpen()) end(process_);
}

PictureFailure HelperProcess::start(const std::string& path, HelperProcess* process) {
  std::array<int, 2> ends{-1, -1};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    return PictureFailure::helperNotStarted;
  }
  process->channel_ = HelperChannel(FileDescriptor(ends[0]));
  pid_t child = 0;
  {
    const FileDescriptor other(ends[1]);
    const PictureFailure failure = spawn(path, other.number(), &child);
    if (failure != PictureFailure::none) return failure;
  }
  FirstProcess first(child);
  HelperGreeting greeting;
  const Deadline deadline = std::chrono::steady_clock::now() + kGreetingTime;
  switch (process->channel_.receive(&greeting, &process->process_, deadline)) {
    case ChannelResult::done:
      if (!isOurVersion(greeting)) return PictureFailure::helperOutdated;
      first.letEnd();
      return PictureFailure::none;
    case ChannelResult::malformed:
      return PictureFailure::helperOutdated;
    default:
      return PictureFailure::helperNotStarted;
  }
}

std::string foundPictureHelper() {
  const std::string own = ownFolder();
  for (const char* folder : {PAINT_HELPER_FROM_PROGRAM, PAINT_HELPER_FROM_LIBRARY}) {
    std::string path = own + folder + "/" + kProgram;
    if (access(path.c_str(), X_OK) == 0) return path;
  }
  return {};
}
