// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <deque>
#include <istream>
#include <memory>
#include <optional>
#include <string>

#include "examples/shop/Script.h"

namespace orlix::shop {

/// A ScriptError of the line with this number.
class LineError : public ScriptError {
 public:
  LineError(std::size_t line, const std::string& reason)
      : ScriptError("line " + std::to_string(line) + ": " + reason) {}
};

/// Source of a script's commands.
class ScriptSource {
 public:
  virtual ~ScriptSource() = default;
  /// The next command, none at the end. Throws LineError. May block when `mayBlock`, and may then
  /// be called from another thread, one call at a time.
  virtual std::optional<ScriptLine> next() = 0;
  virtual bool mayBlock() const = 0;
};

/// A complete script. It is read and checked to its end before its first command runs, so that a
/// mistake in the last line is found before any payment.
class WholeScript : public ScriptSource {
 public:
  /// Throws LineError for the first line that is no command.
  explicit WholeScript(std::istream& text);
  std::optional<ScriptLine> next() override;
  bool mayBlock() const override { return false; }

 private:
  std::deque<ScriptLine> lines_;
};

/// A script written while it runs: each line is read when the previous command has finished.
class PipedScript : public ScriptSource {
 public:
  explicit PipedScript(std::unique_ptr<std::istream> text) : text_(std::move(text)) {}
  std::optional<ScriptLine> next() override;
  bool mayBlock() const override { return true; }

 private:
  std::unique_ptr<std::istream> text_;
  std::size_t number_ = 0;
};

/// The script in a file: piped when the path names a pipe or a terminal, whole otherwise.
/// Throws UsageError when the file cannot be read, LineError as above.
std::unique_ptr<ScriptSource> openScript(const std::string& path);

}  // namespace orlix::shop
