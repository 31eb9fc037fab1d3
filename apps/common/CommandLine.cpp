#include "common/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdio>

namespace {

std::string inQuotes(const std::string& text) {
  return "\"" + text + "\"";
}

std::string listed(const std::vector<std::string>& words) {
  return CLI::detail::join(words, ", ");
}

/// A whole text as a number; nothing for other texts.
std::optional<int64_t> numberIn(const std::string& text) {
  int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::vector<std::string> commandsOf(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

/// An argument that nothing takes.
std::string describeUnknown(const CLI::App& app, const std::string& argument) {
  if (argument.size() > 1 && argument.front() == '-') return "unknown option " + inQuotes(argument);
  const std::vector<std::string> commands = commandsOf(app);
  if (commands.empty() || !app.get_subcommands().empty()) {
    return "one argument too many: " + inQuotes(argument);
  }
  return "unknown command " + inQuotes(argument) + "; known are " + listed(commands);
}

/// What is wrong in the options and arguments that are known.
std::string describe(const CLI::ParseError& error) {
  std::string text = error.what();
  if (error.get_name() == "ArgumentMismatch") {
    return text.substr(0, text.find(':')) + " takes one value";
  }
  if (error.get_name() == "ConversionError")
    return "not understood: " + text.substr(text.find(": ") + 2);
  return text;
}

std::string describeMistake(const CLI::App& app, const CLI::ParseError* error) {
  for (const std::string& argument : app.remaining(true)) {
    if (argument != "--") return describeUnknown(app, argument);
  }
  if (!commandsOf(app).empty() && app.get_subcommands().empty()) {
    return "a command is missing; known are " + listed(commandsOf(app));
  }
  return error == nullptr ? "" : describe(*error);
}

/// In one line.
ExitStatus failUsage(const CLI::App& app, const std::string& mistake) {
  std::fprintf(stderr, "%s: %s\n", app.get_name().c_str(), printable(mistake).c_str());
  return kExitUsage;
}

}  // namespace

CLI::Validator wholeNumber(int64_t least, int64_t most, const std::string& hint) {
  const std::string range = std::to_string(least) + " to " + std::to_string(most);
  const auto check = [least, most, range, hint](std::string& text) {
    const auto number = numberIn(text);
    if (!number || *number < least || *number > most) {
      return inQuotes(text) + " is not a whole number from " + range + hint;
    }
    text = std::to_string(*number);  // a leading zero would make it octal
    return std::string();
  };
  return {check, range};
}

CLI::Validator oneOf(const std::vector<std::string>& words) {
  const auto check = [words](const std::string& text) {
    const bool isKnown = std::find(words.begin(), words.end(), text) != words.end();
    return isKnown ? "" : inQuotes(text) + " is unknown; known are " + listed(words);
  };
  return {check, listed(words)};
}

CLI::Option* takesAny(CLI::Option* option) {
  constexpr int kAny = CLI::detail::expected_max_vector_size;
  return option->expected(kAny, kAny)
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void addVersionOption(CLI::App& app) {
  app.set_version_flag("-V,--version", app.get_name() + " " + PAINT_VERSION, "Print the version");
}

void addLimitOptions(CLI::App& app, ResourceLimits& limits) {
  constexpr int kMost = 1 << 20;
  app.add_option("--limit-time", limits.seconds, "Seconds of processor time")
      ->transform(wholeNumber(1, kMost))
      ->capture_default_str();
  app.add_option("--limit-memory", limits.megabytes, "Megabytes of memory")
      ->transform(wholeNumber(16, kMost))
      ->capture_default_str();
  app.add_option("--limit-output", limits.outputMegabytes, "Megabytes of a written file")
      ->transform(wholeNumber(1, kMost))
      ->capture_default_str();
}

std::optional<ExitStatus> readCommandLine(CLI::App& app, int argc, char** argv) {
  std::string mistake;
  try {
    app.parse(argc, argv);
    mistake = describeMistake(app, nullptr);
  } catch (const CLI::CallForHelp&) {
    return writeText(app.get_name().c_str(), app.help());
  } catch (const CLI::CallForVersion& version) {
    return writeText(app.get_name().c_str(), std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    mistake = describeMistake(app, &error);
  }
  if (mistake.empty()) return std::nullopt;
  return failUsage(app, mistake);
}
