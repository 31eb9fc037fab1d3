#pragma once

#include <stdexcept>
#include <string>

/// What the archive decoder raises on malformed data; caught at the decoder's callers, never
/// shown to users.
class NSException : public std::runtime_error {
 public:
  NSException(const char* name, const std::string& reason)
      : std::runtime_error(reason), name_(name) {}
  const char* name() const { return name_; }

 private:
  const char* name_;
};

inline constexpr const char* NSInvalidArgumentException = "NSInvalidArgumentException";
inline constexpr const char* NSRangeException = "NSRangeException";
inline constexpr const char* NSInvalidUnarchiveOperationException =
    "NSInvalidUnarchiveOperationException";
inline constexpr const char* NSInvalidArchiveOperationException =
    "NSInvalidArchiveOperationException";
inline constexpr const char* NSArchiverArchiveInconsistency = "NSArchiverArchiveInconsistency";
