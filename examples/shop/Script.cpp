// SPDX-License-Identifier: Apache-2.0

#include "examples/shop/Script.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <map>

#include "orlixkit/ports/Utf8.h"

namespace orlix::shop {

namespace {

constexpr std::size_t kLongestLine = 65'536;
constexpr std::size_t kMostDeletions = 10'000;
constexpr double kLongestSilence = 3600;
constexpr double kLargestAmount = 1e15;

/// The words behind the command's own, taken one by one.
class Arguments {
 public:
  Arguments(std::string command, std::string usage, std::vector<Word> words)
      : command_(std::move(command)), usage_(std::move(usage)), words_(std::move(words)) {}

  bool more() const { return next_ < words_.size(); }
  const Word& word(const std::string& what) {
    if (!more()) {
      fail("needs " + what);
    }
    return words_[next_++];
  }
  std::string text(const std::string& what) { return word(what).text; }
  std::string name(const std::string& what) {
    std::string taken = text(what);
    if (taken.empty()) {
      fail("needs " + what + ", which cannot be empty");
    }
    return taken;
  }
  std::optional<std::string> optionalText() {
    return more() ? std::optional(words_[next_++].text) : std::nullopt;
  }
  std::size_t count(const std::string& what, std::size_t most) {
    return number<std::size_t>(text(what), what, most);
  }
  template <class Number>
  Number number(const std::string& text, const std::string& what, Number most,
                Number least = 0) const {
    Number value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    // A NaN passes neither comparison.
    if (text.empty() || error != std::errc() || stop != end || !(value >= least && value <= most)) {
      fail("needs " + what + " as a plain number, not \"" + text + "\"");
    }
    return value;
  }
  void end() const {
    if (more()) {
      fail("takes no more than that");
    }
  }
  [[noreturn]] void fail(const std::string& reason) const {
    throw ScriptError(command_ + " " + reason + "; usage: " + usage_);
  }

 private:
  std::string command_;
  std::string usage_;
  std::vector<Word> words_;
  std::size_t next_ = 0;
};

HostCall readHostCall(HostEntry entry, Arguments& words) {
  HostCall call;
  call.entry = entry;
  if (entry == HostEntry::checkout) {
    call.code = words.text("a code");
  }
  while (words.more()) {
    const std::string word = words.text("an argument");
    const std::size_t equals = word.find('=');
    const std::string key = word.substr(0, equals);
    const std::string value = equals == std::string::npos ? "" : word.substr(equals + 1);
    if (equals == std::string::npos) {
      words.fail("does not know \"" + word + "\"");
    } else if (key == "amount" && entry == HostEntry::checkout) {
      call.amount = words.number<double>(value, "amount", kLargestAmount, -kLargestAmount);
    } else if (key == "customer") {
      call.customer = value;
    } else if (key == "msisdn") {
      call.msisdn = value;
    } else {
      words.fail("does not know \"" + key + "=\"");
    }
  }
  return call;
}

Action readRow(Arguments& words) {
  const std::string table = words.name("a table");
  const Word row = words.word("a row");
  const bool isNumber =
      !row.quoted && row.text.find_first_not_of("0123456789") == std::string::npos;
  if (!words.more()) {
    return isNumber ? SelectRow{table, words.number<std::size_t>(row.text, "a row", SIZE_MAX)}
                    : SelectRow{table, row.text};
  }
  if (words.text("delete") != "delete") {
    words.fail("knows only \"delete\" behind a row");
  }
  return PressRowButton{table, words.number<std::size_t>(row.text, "a row", SIZE_MAX)};
}

Action readPage(Arguments& words) {
  const std::string what = words.text("type, click or wait");
  std::string selector = words.name("a selector");
  if (what == "type") {
    std::string text = words.text("a text");
    return PageType{std::move(selector), std::move(text)};
  }
  if (what == "click") {
    return PageClick{std::move(selector)};
  }
  if (what == "wait") {
    return PageWait{std::move(selector)};
  }
  words.fail("does not know \"" + what + "\"");
}

Action readWait(Arguments& words) {
  const std::string what = words.text("screen, alert, outcome or idle");
  if (what == "screen") {
    return WaitScreen{words.name("a screen's identifier")};
  }
  if (what == "alert") {
    std::string title = words.text("a title");
    return WaitAlert{std::move(title), words.optionalText()};
  }
  if (what == "outcome") {
    std::optional<std::string> callback = words.optionalText();
    return WaitOutcome{std::move(callback), words.optionalText()};
  }
  if (what == "idle") {
    return WaitIdle{};
  }
  words.fail("does not know \"" + what + "\"");
}

template <class OutletText>
Action readOutletText(Arguments& words) {
  std::string outlet = words.name("an outlet");
  return OutletText{std::move(outlet), words.text("a text")};
}

struct Command {
  std::string usage;
  std::function<Action(Arguments&)> read;
  /// The word that may be a PIN or CVV, counted from the command; 0 for none.
  std::size_t secretWord = 0;
};

const std::map<std::string, Command, std::less<>>& commands() {
  static const std::map<std::string, Command, std::less<>> known{
      {"checkout",
       {"checkout CODE [amount=X] [customer=ID] [msisdn=N]",
        [](Arguments& words) { return readHostCall(HostEntry::checkout, words); }}},
      {"preregister",
       {"preregister [customer=ID] [msisdn=N]",
        [](Arguments& words) { return readHostCall(HostEntry::preregister, words); }}},
      {"wallet",
       {"wallet [customer=ID] [msisdn=N]",
        [](Arguments& words) { return readHostCall(HostEntry::wallet, words); }}},
      {"type", {"type OUTLET TEXT", readOutletText<TypeText>, 2}},
      {"set", {"set OUTLET TEXT", readOutletText<SetText>, 2}},
      {"expect", {"expect OUTLET TEXT", readOutletText<ExpectText>, 2}},
      {"erase",
       {"erase OUTLET N",
        [](Arguments& words) {
          std::string outlet = words.name("an outlet");
          return EraseText{std::move(outlet), words.count("a number of deletions", kMostDeletions)};
        }}},
      {"tap", {"tap NAME", [](Arguments& words) { return Tap{words.name("a name")}; }}},
      {"row", {"row TABLE N | row TABLE N delete | row TABLE TEXT", readRow}},
      {"button",
       {"button TITLE", [](Arguments& words) { return PressAlertButton{words.text("a title")}; }}},
      {"pick", {"pick OUTLET TEXT", readOutletText<PickEntry>}},
      {"page", {"page type SELECTOR TEXT | page click SELECTOR | page wait SELECTOR", readPage, 3}},
      {"wait",
       {"wait screen ID | wait alert TITLE [MESSAGE] | wait outcome [CALLBACK [ARG]] | wait idle",
        readWait}},
      {"expect-hidden",
       {"expect-hidden OUTLET",
        [](Arguments& words) {
          return ExpectVisible{words.name("an outlet"), false};
        }}},
      {"expect-shown",
       {"expect-shown OUTLET",
        [](Arguments& words) {
          return ExpectVisible{words.name("an outlet"), true};
        }}},
      {"expect-no-outcome",
       {"expect-no-outcome SECONDS",
        [](Arguments& words) {
          return ExpectNoOutcome{
              words.number<double>(words.text("seconds"), "seconds", kLongestSilence)};
        }}},
      {"dump", {"dump", [](Arguments&) { return Dump{}; }}},
      {"snapshot",
       {"snapshot NAME",
        [](Arguments& words) {
          const std::string name = words.name("a name");
          if (name.find('/') != std::string::npos || name.front() == '.') {
            words.fail("needs a plain file name");
          }
          return Snapshot{name};
        }}},
  };
  return known;
}

/// The line for a reader, without the text that is typed.
std::string shownWords(const std::vector<Word>& words, std::size_t secretWord) {
  std::string shown;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const Word& word = words[i];
    shown += i == 0 ? "" : " ";
    if (secretWord != 0 && i == secretWord) {
      shown += "...";
    } else {
      shown += word.quoted ? '"' + word.text + '"' : word.text;
    }
  }
  return shown;
}

/// Reads a quoted part; `at` is the position of the opening quote, on return that of the closing
/// one.
std::string readQuoted(std::string_view line, std::size_t& at) {
  std::string text;
  for (++at; at < line.size(); ++at) {
    if (line[at] == '"') {
      return text;
    }
    if (line[at] == '\\') {
      ++at;
      if (at == line.size() || (line[at] != '"' && line[at] != '\\')) {
        throw ScriptError("in quotes a backslash may only precede a quote or a backslash");
      }
    }
    text += line[at];
  }
  throw ScriptError("a quote is not closed");
}

bool isBlank(char c) { return c == ' ' || c == '\t'; }

}  // namespace

std::vector<Word> splitLine(std::string_view line) {
  std::vector<Word> words;
  bool inWord = false;
  for (std::size_t at = 0; at < line.size(); ++at) {
    const char c = line[at];
    if (isBlank(c)) {
      inWord = false;
      continue;
    }
    // The third word of a page command is a selector, and "#otp" a usual one.
    if (c == '#' && !inWord && !(words.size() == 2 && words.front().text == "page")) {
      break;
    }
    if (!inWord) {
      words.emplace_back();
      inWord = true;
    }
    if (c == '"') {
      words.back().quoted = true;
      words.back().text += readQuoted(line, at);
    } else {
      words.back().text += c;
    }
  }
  return words;
}

std::optional<ScriptLine> parseLine(std::string_view line, std::size_t number) {
  if (line.size() > kLongestLine) {
    throw ScriptError("the line is too long");
  }
  if (!line.empty() && line.back() == '\r') {
    line.remove_suffix(1);
  }
  if (!isUtf8(line)) {
    throw ScriptError("the line is no UTF-8 text");
  }
  const auto isControl = [](char c) {
    return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F;
  };
  if (std::any_of(line.begin(), line.end(), isControl)) {
    throw ScriptError("the line contains a control character");
  }
  std::vector<Word> words = splitLine(line);
  if (words.empty()) {
    return std::nullopt;
  }
  const auto found = commands().find(words.front().text);
  if (found == commands().end()) {
    throw ScriptError("unknown command \"" + words.front().text + "\"");
  }
  const auto& [name, command] = *found;
  std::string shown = shownWords(words, command.secretWord);
  words.erase(words.begin());
  Arguments arguments(name, command.usage, std::move(words));
  Action action = command.read(arguments);
  arguments.end();
  return ScriptLine{number, std::move(shown), std::move(action)};
}

}  // namespace orlix::shop
