// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orlix::shop {

/// A failure of a script. The message is for the script's author and contains no typed text, since
/// that may be a PIN.
class ScriptError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class HostEntry { checkout, preregister, wallet };

/// `checkout CODE [amount=X] [customer=ID] [msisdn=N]`, `preregister …`, `wallet …`
struct HostCall {
  HostEntry entry = HostEntry::checkout;
  std::string code;
  double amount = 0;  ///< in currency units; 0 leaves it open
  std::optional<std::string> customer;
  std::optional<std::string> msisdn;
};

struct TypeText {
  std::string outlet;
  std::string text;
};
struct EraseText {
  std::string outlet;
  std::size_t count = 0;
};
struct SetText {
  std::string outlet;
  std::string text;
};
struct Tap {
  std::string name;
};
/// A row by its number from 0, or by its text.
using RowChoice = std::variant<std::size_t, std::string>;
struct SelectRow {
  std::string table;
  RowChoice row;
};
struct PressRowButton {
  std::string table;
  std::size_t row = 0;
};
struct PressAlertButton {
  std::string title;
};
struct PickEntry {
  std::string outlet;
  std::string text;
};
struct PageType {
  std::string selector;
  std::string text;
};
struct PageClick {
  std::string selector;
};
struct PageWait {
  std::string selector;
};
struct WaitScreen {
  std::string identifier;
};
struct WaitAlert {
  std::string title;
  std::optional<std::string> message;
};
struct WaitOutcome {
  std::optional<std::string> callback;
  std::optional<std::string> argument;
};
struct WaitIdle {};
struct ExpectText {
  std::string outlet;
  std::string text;
};
struct ExpectVisible {
  std::string outlet;
  bool visible = true;
};
struct ExpectNoOutcome {
  double seconds = 0;
};
struct Dump {};
struct Snapshot {
  std::string name;
};

using Action =
    std::variant<HostCall, TypeText, EraseText, SetText, Tap, SelectRow, PressRowButton,
                 PressAlertButton, PickEntry, PageType, PageClick, PageWait, WaitScreen, WaitAlert,
                 WaitOutcome, WaitIdle, ExpectText, ExpectVisible, ExpectNoOutcome, Dump, Snapshot>;

struct ScriptLine {
  std::size_t number = 0;  ///< from 1
  std::string words;       ///< the line as it may be shown: without a text that is typed
  Action action;
};

/// One word of a line; `quoted` when any part of it stood in quotes.
struct Word {
  std::string text;
  bool quoted = false;
};

/// Splits a line at spaces and tabs. Double quotes hold spaces together; within them a backslash
/// takes the next quote or backslash as it is. A `#` that begins a word begins a comment, but
/// for the selector of a page command.
/// Throws ScriptError for an open quote and for any other escape.
std::vector<Word> splitLine(std::string_view line);

/// The command on one line; none on an empty one or a comment. `number` is kept for messages.
/// Throws ScriptError with a reason (without the line number).
std::optional<ScriptLine> parseLine(std::string_view line, std::size_t number);

}  // namespace orlix::shop
