#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/ExitStatus.h"
#include "paintdoc/PictureFormat.h"
#include "platform/pictures/PictureSession.h"

/// What `paintdoc render` is asked for.
struct RenderRequest {
  /// A document or an SVG picture: a path, a file: URI, or "-" for standard input.
  std::string input;
  /// A path, or "-" for standard output.
  std::string output;
  /// Largest width and height of each picture, in pixels; none for the full size. Each
  /// stands here once.
  std::vector<int64_t> sizes;
  /// What the end of the output's name says, or PNG for standard output, when there is none.
  std::optional<PictureFormat> format;
  double quality = 0.9;
  SVGEngine svg = SVGEngine::system;
  /// Tell on standard output what was written, as JSON.
  bool report = false;
};

/// The output path for one of the sizes: "%s" stands for the size, wherever it is; without it, and
/// when there are several sizes, "-SIZE" is put before the ending. Different sizes of one request
/// have different paths.
std::string pathForSize(const std::string& output, int64_t size, size_t sizeCount);

/// Renders and writes everything that is asked for. Ends with the first failure, which is told on
/// one line of standard error.
ExitStatus render(const RenderRequest& request);
