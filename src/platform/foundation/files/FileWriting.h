#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <system_error>

/// Makes `bytes` the contents of the file at `path`, in place: the file keeps its identity, because
/// callers may hold it open already, and it is opened only when its contents are complete. A link
/// is followed; a missing file is created with the permissions that the umask leaves.
///
/// After a failure, which is answered, an existing file is as it was (when it could not be opened)
/// or empty, and a missing one is still missing.
std::error_code writeFileInPlace(const std::string& path, std::span<const uint8_t> bytes);
