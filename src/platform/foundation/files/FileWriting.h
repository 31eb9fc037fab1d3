#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <system_error>

/// Makes `bytes` the contents of the file at `path`, in place: the file keeps its identity, because
/// callers may hold it open already. A link is followed; a missing file is created with the
/// permissions that the umask leaves.
///
/// What the system can tell beforehand, a limit or a full disk, leaves an existing file as it was;
/// so does a file that cannot be opened. After another failure, which is answered as well, it is
/// empty. A missing file is still missing.
std::error_code writeFileInPlace(const std::string& path, std::span<const uint8_t> bytes);

/// The same by a new file beside it, which takes its place when it is complete: at every moment the
/// path shows the old contents or the new ones. The permissions stay. What is no regular file is
/// written in place.
std::error_code replaceFile(const std::string& path, std::span<const uint8_t> bytes);
