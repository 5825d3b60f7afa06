// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/ScriptSource.h"

#include <filesystem>
#include <fstream>

#include "examples/shop/ShopOptions.h"

namespace orlix::shop {

namespace {

/// The next command of the stream; `number` counts the lines.
std::optional<ScriptLine> readCommand(std::istream& text, std::size_t& number) {
  std::string line;
  while (std::getline(text, line)) {
    ++number;
    try {
      if (std::optional<ScriptLine> command = parseLine(line, number)) {
        return command;
      }
    } catch (const ScriptError& error) {
      throw LineError(number, error.what());
    }
  }
  return std::nullopt;
}

}  // namespace

WholeScript::WholeScript(std::istream& text) {
  std::size_t number = 0;
  while (std::optional<ScriptLine> command = readCommand(text, number)) {
    lines_.push_back(std::move(*command));
  }
}

std::optional<ScriptLine> WholeScript::next() {
  if (lines_.empty()) {
    return std::nullopt;
  }
  ScriptLine line = std::move(lines_.front());
  lines_.pop_front();
  return line;
}

std::optional<ScriptLine> PipedScript::next() { return readCommand(*text_, number_); }

std::unique_ptr<ScriptSource> openScript(const std::string& path) {
  std::error_code unknown;
  const auto type = std::filesystem::status(path, unknown).type();
  if (type == std::filesystem::file_type::directory) {
    throw UsageError("the script " + path + " is a directory");
  }
  auto file = std::make_unique<std::ifstream>(path);
  if (!*file) {
    throw UsageError("cannot read the script " + path);
  }
  if (type == std::filesystem::file_type::regular) {
    return std::make_unique<WholeScript>(*file);
  }
  return std::make_unique<PipedScript>(std::move(file));
}

}  // namespace orlix::shop
