#pragma once

#include <string>

#include "paintdoc/Rendering.h"

namespace CLI {
class App;
}

/// The options of `paintdoc render`.
class RenderOptions {
 public:
  /// Declares them for a command, whose arguments go into the request.
  void addTo(CLI::App& command, RenderRequest& request);
  /// Gives the request the rest, when the command line was read. Answers what contradicts each
  /// other, else nothing.
  std::string completeRequest(RenderRequest& request) const;

 private:
  void addSizes(CLI::App& command, RenderRequest& request);
  void addContents(CLI::App& command, RenderRequest& request);

  std::string format_;
  std::string box_;
  std::string fit_;
  std::string part_;
  std::string background_;
};
