// SPDX-License-Identifier: Apache-2.0

// The shop's scripts. An input is a script.

#include "examples/shop/Script.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "examples/shop/ScriptSource.h"
#include "fuzz/Target.h"
#include "orlixkit/ports/Utf8.h"

namespace orlix::fuzz {

namespace {

using shop::ScriptError;
using shop::ScriptLine;
using shop::Word;

/// A line that splits into these words, each in quotes.
std::string lineOf(const std::vector<Word>& words) {
  std::string line;
  for (const Word& word : words) {
    line += line.empty() ? "\"" : " \"";
    for (const char c : word.text) {
      line += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    }
    line += '"';
  }
  return line;
}

std::optional<std::vector<Word>> wordsOf(std::string_view line) {
  try {
    return shop::splitLine(line);
  } catch (const ScriptError&) {
    return std::nullopt;
  }
}

/// The messages about the line, whether accepted or refused.
std::string toldOf(std::string_view line) {
  try {
    const std::optional<ScriptLine> command = shop::parseLine(line, 1);
    return command ? command->words : std::string();
  } catch (const ScriptError& error) {
    check(*error.what() != '\0', "a refusal has a reason");
    return error.what();
  }
}

/// The word that may be a PIN, counted from the command; 0 for none.
std::size_t secretOf(const std::vector<Word>& words) {
  const std::string command = words.empty() ? std::string() : words[0].text;
  if (command == "type" || command == "set" || command == "expect") {
    return 2;
  }
  return command == "page" && words.size() > 1 && words[1].text == "type" ? 3 : 0;
}

bool isTyped(std::string_view text) {
  return isUtf8(text) && std::none_of(text.begin(), text.end(), [](char c) {
           return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
         });
}

void tellsNoSecret(std::vector<Word> words) {
  const std::size_t secret = secretOf(words);
  if (secret == 0 || secret >= words.size() || !isTyped(words[secret].text)) {
    return;
  }
  const std::string told = toldOf(lineOf(words));
  words[secret].text = "another";
  check(toldOf(lineOf(words)) == told, "what is told of a line does not depend on what is typed");
}

/// Whether the line is a command.
bool readLine(std::string_view line) {
  if (const auto words = wordsOf(line)) {
    const auto again = wordsOf(lineOf(*words));
    check(again && again->size() == words->size(), "quoted words are the same words");
    for (std::size_t i = 0; i < words->size(); ++i) {
      check((*again)[i].text == (*words)[i].text, "a quoted word is the same word");
    }
    tellsNoSecret(*words);
  }
  try {
    return shop::parseLine(line, 1).has_value();
  } catch (const ScriptError&) {
    return false;
  }
}

}  // namespace

void script(ByteView input) {
  std::size_t commands = 0;
  for (std::string_view rest = textOf(input); !rest.empty();) {
    commands += readLine(takeLine(rest)) ? 1U : 0U;
  }
  std::istringstream text{std::string(textOf(input))};
  try {
    shop::WholeScript whole(text);
    std::size_t last = 0;
    while (const auto line = whole.next()) {
      check(line->number > last, "lines come in their order");
      last = line->number;
      --commands;
    }
    check(commands == 0, "a script is all of its commands");
  } catch (const shop::LineError&) {
    // Some line is no command; which one and why was looked at above.
  }
}

}  // namespace orlix::fuzz
