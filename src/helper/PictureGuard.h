#pragma once

#include <cstdint>

#include "platform/pictures/HelperChannel.h"
#include "platform/pictures/HelperProtocol.h"

/// What drawing one picture may take.
struct PictureAllowance {
  uint32_t processorMilliseconds = 0;
  uint32_t wallMilliseconds = 0;
  uint64_t memoryBytes = 0;  ///< besides what is mapped when the guard starts
};

/// Sets up what guards need for the rest of the process: limits that the process inherited and does
/// not share, the signals by which guards end it, and the socket on which they say why.
void prepareGuards(const HelperChannel& channel);
/// From now on the process ends when the channel's other end is closed, also in the middle of a
/// picture. Starts a thread.
void watchChannel();

/// Lets the process map what it likes again, until the next guard.
void liftMemoryLimit();

/// Ends the process, with a last reply, when what it does in a scope takes too much. The limit
/// of memory stays in force after it.
class PictureGuard {
 public:
  explicit PictureGuard(const PictureAllowance& allowance);
  PictureGuard(const PictureGuard&) = delete;
  PictureGuard& operator=(const PictureGuard&) = delete;
  ~PictureGuard();
};

/// Processor time of this process so far, in microseconds.
uint64_t processorMicroseconds();
/// Address space that this process takes now, in bytes; 0 when the system does not tell.
uint64_t mappedBytes();
