#pragma once

#include "platform/text/fonts/HostFonts.h"

// The rows of the host's fonts; HostFonts.h has the questions to ask them.

/// Every family, sorted by name.
extern const std::span<const HostFamily> kHostFamilies;

/// Family that serves names which hold the hint.
struct HostNameHint {
  std::string_view hint;
  std::string_view family;
};
extern const std::span<const HostNameHint> kHostNameHints;

/// The host's choice for the characters of a script.
struct HostScriptFace {
  std::string_view script;  ///< four-letter code
  std::string_view postScriptName;
};
extern const std::span<const HostScriptFace> kHostScriptFaces;
