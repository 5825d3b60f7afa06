// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Recorder.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <unistd.h>
#include <utility>

#include <fmt/format.h>

#include "sandbox/CardKinds.h"
#include "sandbox/Formats.h"
#include "sandbox/Json.h"
#include "sandbox/Masking.h"

namespace orlix::sandbox {

namespace {

/// In a text that is no JSON, so many letters and digits in a row are taken for a secret.
constexpr size_t kShortestSecret = 16;

char sameForm(unsigned char c) {
  if (std::isdigit(c) != 0) return '0';
  if (std::isupper(c) != 0) return 'A';
  return std::islower(c) != 0 ? 'a' : static_cast<char>(c);
}

std::string ofSameForm(std::string_view text, size_t from = 0) {
  std::string out(text);
  std::transform(out.begin() + static_cast<std::ptrdiff_t>(from), out.end(),
                 out.begin() + static_cast<std::ptrdiff_t>(from), &sameForm);
  return out;
}

json::value blankedText(std::string_view key, const json::value& value) {
  if (!isSecret(key, value)) return value;
  if (!value.is_string()) return 0;
  const std::string_view text(value.get_string().data(), value.get_string().size());
  const bool isCardNumber = text.size() > CardKinds::kBinLength && isDigits(text);
  return json::string(ofSameForm(text, isCardNumber ? CardKinds::kBinLength : 0));
}

json::object blankedFields(json::object object);

json::value blankedValue(std::string_view key, const json::value& value) {
  if (value.is_object()) return blankedFields(value.get_object());
  if (!value.is_array()) return blankedText(key, value);
  json::array out;
  for (const json::value& element : value.get_array()) out.push_back(blankedValue(key, element));
  return out;
}

json::object blankedFields(json::object object) {
  for (json::key_value_pair& pair : object) {
    pair.value() = blankedValue({pair.key().data(), pair.key().size()}, pair.value());
  }
  return object;
}

bool mayBelongToSecret(unsigned char c) {
  return std::isalnum(c) != 0 || c == '+' || c == '/' || c == '=';
}

std::string blankedRuns(std::string text) {
  auto at = text.begin();
  while (at != text.end()) {
    const auto begin = std::find_if(at, text.end(), &mayBelongToSecret);
    at = std::find_if_not(begin, text.end(), &mayBelongToSecret);
    if (at - begin >= static_cast<std::ptrdiff_t>(kShortestSecret)) {
      std::transform(begin, at, begin, &sameForm);
    }
  }
  return text;
}

std::string blankedBody(const std::string& text) {
  auto object = parseObject(text);
  return object ? json::serialize(blankedFields(std::move(*object))) : blankedRuns(text);
}

/// A form is written as the JSON object of its fields.
std::string bodyOf(const HttpRequest& request) {
  if (request.form.empty()) return blankedBody(request.body);
  json::object fields;
  for (const auto& [name, value] : request.form) fields[name] = value;
  return json::serialize(blankedFields(std::move(fields)));
}

json::object headersOf(const HttpRequest& request) {
  json::object out;
  for (const auto& [name, value] : request.headers) {
    std::string key = name;
    std::transform(key.begin(), key.end(), key.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const bool isToken = key == "x-session-token1" || key == "x-session-token2";
    out[name] = isToken ? ofSameForm(value) : key == "content-type" ? value : "";
  }
  return out;
}

/// Why the answer is not what the protocol has the server say; empty when it is. Of a fault that
/// moves an answer in time, or ends the session first, the answer is as good as any.
std::string whatHasSpoilt(const HttpAnswer& answer, const std::vector<Fault>& faults) {
  for (const Fault& fault : faults) {
    const bool harmless = fault.holdsBack() || fault.kind == Fault::Kind::forgetSession ||
                          fault.kind == Fault::Kind::lastAnswer;
    if (!harmless || !fault.carriesOut()) return std::string(Faults::nameOf(fault.kind));
  }
  return answer.delivery == Delivery::whole ? "" : "not delivered whole";
}

}  // namespace

Recorder::Recorder(std::string file) : name_(std::move(file)), file_(name_, std::ios::app) {
  if (!file_) {
    throw std::runtime_error(fmt::format("cannot write {}: {}", name_, std::strerror(errno)));
  }
}

std::string Recorder::fileOfProcess() {
  const char* folder = std::getenv("ORLIX_RECORD");
  if (folder == nullptr || *folder == '\0') return {};
  return std::filesystem::path(folder) /
         fmt::format("{}-{}.jsonl", program_invocation_short_name, getpid());
}

void Recorder::note(const HttpRequest& request, const HttpAnswer& answer,
                    const std::vector<Fault>& faults) {
  json::object line{{"method", request.method},      {"path", request.path},
                    {"headers", headersOf(request)}, {"body", bodyOf(request)},
                    {"status", answer.status},       {"contentType", answer.contentType}};
  const std::string spoilt = whatHasSpoilt(answer, faults);
  if (!spoilt.empty()) {
    line["spoilt"] = spoilt;
  } else if (answer.body.size() > kLongestKeptBody) {
    line["spoilt"] = fmt::format("its {} bytes are too many to be kept", answer.body.size());
  } else {
    line["answer"] = blankedBody(answer.body);
  }
  const std::lock_guard lock(mutex_);
  // Whole lines only, and at once: another process may append too, or end this one.
  file_ << json::serialize(line) + '\n' << std::flush;
}

}  // namespace orlix::sandbox
