#include "support/Fixtures.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

std::string sourcePath(const std::string& relative) {
  return std::string(PAINT_SOURCE_DIR) + "/" + relative;
}

std::vector<uint8_t> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    ADD_FAILURE() << "cannot read " << path;
    return {};
  }
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}
