#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/ExitStatus.h"
#include "paintdoc/PictureFormat.h"
#include "paintdoc/PictureLayout.h"
#include "platform/pictures/PictureSession.h"

class NSColor;

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
  /// For what `sizes` does not say: with it, neither scale, nor density, nor box.
  PictureWish wish;
  /// What draws to paint alone, by numbers and titles; none for all.
  std::vector<std::string> draws;
  /// What the picture is shown over; null for nothing.
  std::shared_ptr<const NSColor> background;
  /// Cut off the transparent edges.
  bool trims = false;
  SVGEngine svg = SVGEngine::system;
  /// Tell on standard output what was written, as JSON.
  bool report = false;
};

/// What stands for "%s" and "%n" in the name of an output.
struct OutputNames {
  std::string size;
  std::string input;
};

/// The output path for one of several sizes: where "%s" is missing, and there are several, "-SIZE"
/// is put before the ending. Different sizes of one request have different paths.
std::string pathForSize(const std::string& output, const OutputNames& names, size_t sizeCount);

/// Renders and writes everything that is asked for. Ends with the first failure, which is told on
/// one line of standard error.
ExitStatus render(const RenderRequest& request);
