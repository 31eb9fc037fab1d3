#pragma once

// PAINT_ADDRESS_SANITIZER is defined in builds with the address sanitizer. Its own reservations are
// terabytes, so a process that it watches can have no limit of address space.
#if defined(__SANITIZE_ADDRESS__)
#define PAINT_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PAINT_ADDRESS_SANITIZER 1
#endif
#endif
