#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <system_error>

struct FileContents {
  std::shared_ptr<uint8_t[]> bytes;
  size_t size = 0;
};

/// Reads a file, or a descriptor from where it stands to its end: regular files, pipes and sockets.
/// Returns why it failed, `contents` then being as they were: the system's error, is_a_directory,
/// not_supported for devices, file_too_large beyond limits::kMaxFileBytes. Throws std::bad_alloc.
std::error_code readFile(const std::string& path, FileContents& contents);
std::error_code readDescriptor(int descriptor, FileContents& contents);
