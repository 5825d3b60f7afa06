#include "sandbox/CommandLine.h"

#include <charconv>
#include <string_view>

#include <fmt/format.h>

namespace orlix::sandbox {

namespace {

bool readPort(std::string_view text, int& port) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  return error == std::errc() && end == text.data() + text.size() && port >= 0 && port <= 65535;
}

}  // namespace

std::string usage() {
  return "usage: orlix-sandbox [--port N] [--db FILE] [--dir DIR] [--enrolled] [--one-session]\n"
         "                     [--record FILE]\n"
         "  --port N       listen on 127.0.0.1:N (default: a free port)\n"
         "  --db FILE      keep the state in this SQLite file (default: in memory)\n"
         "  --dir DIR      write the certificates here (default: a new temporary folder)\n"
         "  --enrolled     every device counts as enrolled, with a wallet of every documented "
         "card\n"
         "  --one-session  a device's session start ends its former sessions\n"
         "  --record FILE  append every exchange to this file, without its secrets\n";
}

std::variant<Options, HelpWanted, UsageError> readCommandLine(
    std::span<const char* const> arguments) {
  Options options;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view name = arguments[i];
    if (name == "--help") return HelpWanted{};
    if (name == "--enrolled") {
      options.enrolled = true;
      continue;
    }
    if (name == "--one-session") {
      options.oneSession = true;
      continue;
    }
    if (name != "--port" && name != "--db" && name != "--dir" && name != "--record") {
      return UsageError{fmt::format("unknown argument \"{}\"", name)};
    }
    if (i + 1 == arguments.size() || std::string_view(arguments[i + 1]).empty()) {
      return UsageError{fmt::format("{} needs a value", name)};
    }
    const std::string value = arguments[++i];
    if (name == "--db") options.database = value;
    if (name == "--dir") options.folder = value;
    if (name == "--record") options.record = value;
    if (name == "--port" && !readPort(value, options.port)) {
      return UsageError{fmt::format("\"{}\" is no port: a number from 0 to 65535", value)};
    }
  }
  return options;
}

}  // namespace orlix::sandbox
