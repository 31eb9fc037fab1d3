#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/ExitStatus.h"
#include "common/ResourceLimits.h"

namespace CLI {
class App;
class Option;
class Validator;
}  // namespace CLI

/// The values of an option: one whole decimal number from `least` to `most`. `hint` follows in
/// messages about others. To be given to Option::transform.
CLI::Validator wholeNumber(int64_t least, int64_t most, const std::string& hint = {});

/// The values of an option: one of these words.
CLI::Validator oneOf(const std::vector<std::string>& words);

/// For arguments of any number; answers the option. What the library does for lists would split a
/// name such as [a,b].
CLI::Option* takesAny(CLI::Option* option);

/// Adds -V and --version, which show the name of the program and PAINT_VERSION.
void addVersionOption(CLI::App& app);

/// Adds the options that change the limits, which show their defaults.
void addLimitOptions(CLI::App& app, ResourceLimits& limits);

/// Reads the command line; the program's name is that of `app`. Where there are commands, one has
/// to be given. Answers how the program is to end when it has nothing more to do: help or the
/// version went to standard output, or one line about what is wrong to standard error.
std::optional<ExitStatus> readCommandLine(CLI::App& app, int argc, char** argv);
