#pragma once

#include "platform/pictures/HelperChannel.h"

/// Answers requests until the other end closes the channel, says nonsense or nothing for a minute,
/// or until this process holds so much memory that a new one is better.
void serveRequests(const HelperChannel& channel);
