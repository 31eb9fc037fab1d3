#include "helper/PictureGuard.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <ctime>
#include <thread>

#include "platform/machine/AddressSanitizer.h"

namespace {

// Read by signal handlers.
const HelperChannel* gChannel = nullptr;
/// Opened before files are out of reach.
int gMemoryFacts = -1;
volatile std::sig_atomic_t gIsGuarding = 0;

[[noreturn]] void endWith(HelperResult result) {
  gChannel->send(HelperReply{.result = result});
  _exit(1);
}

extern "C" void processorTimeIsUp(int) {
  if (gIsGuarding != 0) endWith(HelperResult::tooMuchTime);
}

extern "C" void wallTimeIsUp(int) {
  if (gIsGuarding != 0) endWith(HelperResult::stuck);
}

/// Libraries abort when they are refused memory.
extern "C" void abortIsOn(int) {
  constexpr size_t kLittle = size_t{32} << 20;
  void* const memory =
      mmap(nullptr, kLittle, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) endWith(HelperResult::tooMuchMemory);
  _exit(1);
}

/// Ends the process when the other end of the socket is gone, whatever it does then.
void watchSocket() {
  // Signals that end a picture would otherwise be handled here too.
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
  pollfd state{gChannel->socket().number(), POLLRDHUP, 0};
  while (poll(&state, 1, -1) < 0 && errno == EINTR) {
  }
  _exit(0);
}

void handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_ONSTACK | SA_RESTART;
  sigaction(signal, &action, nullptr);
}

/// The most that the system lets this process have, or `value` if that is less.
void setLimit(int resource, rlim_t value) {
  rlimit limit{};
  if (getrlimit(resource, &limit) != 0) return;
  limit.rlim_cur = std::min(value, limit.rlim_max);
  setrlimit(resource, &limit);
}

void setTimer(int timer, uint32_t milliseconds) {
  itimerval value{};
  value.it_value.tv_sec = milliseconds / 1000;
  value.it_value.tv_usec = static_cast<suseconds_t>(milliseconds % 1000) * 1000;
  setitimer(timer, &value, nullptr);
}

void setMemoryLimit([[maybe_unused]] rlim_t bytes) {
#ifndef PAINT_ADDRESS_SANITIZER
  setLimit(RLIMIT_AS, bytes);
#endif
}

}  // namespace

void prepareGuards(const HelperChannel& channel) {
  gChannel = &channel;
  gMemoryFacts = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
  constexpr rlim_t kOpenFiles = 256;
  constexpr rlim_t kStackBytes = rlim_t{16} << 20;
  setLimit(RLIMIT_CPU, RLIM_INFINITY);
  setLimit(RLIMIT_FSIZE, RLIM_INFINITY);
  setLimit(RLIMIT_NOFILE, kOpenFiles);
  setLimit(RLIMIT_STACK, kStackBytes);
  setLimit(RLIMIT_CORE, 0);
  setMemoryLimit(RLIM_INFINITY);
  std::signal(SIGXFSZ, SIG_IGN);
  handle(SIGPROF, processorTimeIsUp);
  handle(SIGALRM, wallTimeIsUp);
  handle(SIGABRT, abortIsOn);
}

void watchChannel() {
  std::thread(watchSocket).detach();
}

void liftMemoryLimit() {
  setMemoryLimit(RLIM_INFINITY);
}

PictureGuard::PictureGuard(const PictureAllowance& allowance) {
  const uint64_t mapped = mappedBytes();
  if (mapped > 0) setMemoryLimit(mapped + allowance.memoryBytes);
  gIsGuarding = 1;
  setTimer(ITIMER_PROF, allowance.processorMilliseconds);
  setTimer(ITIMER_REAL, allowance.wallMilliseconds);
}

// The timers run on and find nothing to guard.
PictureGuard::~PictureGuard() {
  gIsGuarding = 0;
}

uint64_t processorMicroseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<uint64_t>(time.tv_sec) * 1000000 + static_cast<uint64_t>(time.tv_nsec) / 1000;
}

uint64_t mappedBytes() {
  std::array<char, 64> text{};
  const ssize_t length = pread(gMemoryFacts, text.data(), text.size(), 0);
  uint64_t pages = 0;
  if (length > 0) std::from_chars(text.data(), text.data() + length, pages);
  return pages * static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
}
