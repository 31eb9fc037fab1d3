#pragma once

#include <string>
#include <vector>

#include "common/ExitStatus.h"
#include "common/ResourceLimits.h"
#include "platform/pictures/PictureSession.h"

/// What `paintdoc check` is asked for.
struct CheckRequest {
  /// Documents: paths, file: URIs, or "-" for standard input.
  std::vector<std::string> inputs;
  SVGEngine svg = SVGEngine::system;
  /// For each of the files.
  ResourceLimits limits;
  /// One object per line instead of plain text.
  bool asJson = false;
};

/// Checks each file in a process of its own and writes one line about it to standard output at
/// once. A file that is too much for its process does no harm to the others. Answers the highest
/// status, or that standard output failed, which ends the run.
ExitStatus check(const CheckRequest& request);
