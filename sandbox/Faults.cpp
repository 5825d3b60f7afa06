// SPDX-License-Identifier: Apache-2.0

#include "sandbox/Faults.h"

#include <algorithm>
#include <array>
#include <utility>

#include <fmt/format.h>

#include "sandbox/Bounds.h"

namespace orlix::sandbox {

namespace {

constexpr std::array<std::pair<std::string_view, Fault::Kind>, 21> kKindNames{{
    {"status", Fault::Kind::status},
    {"redirect", Fault::Kind::redirect},
    {"forget-session", Fault::Kind::forgetSession},
    {"delay", Fault::Kind::delay},
    {"hold", Fault::Kind::hold},
    {"hang-up", Fault::Kind::hangUp},
    {"silence", Fault::Kind::silence},
    {"header-then-silence", Fault::Kind::headerThenSilence},
    {"cut-in-body", Fault::Kind::cutInBody},
    {"trickle", Fault::Kind::trickle},
    {"huge-body", Fault::Kind::hugeBody},
    {"deep-json", Fault::Kind::deepJson},
    {"not-json", Fault::Kind::notJson},
    {"not-utf8", Fault::Kind::notUtf8},
    {"empty-body", Fault::Kind::emptyBody},
    {"wrong-types", Fault::Kind::wrongTypes},
    {"null-values", Fault::Kind::nullValues},
    {"last-answer", Fault::Kind::lastAnswer},
    {"reset-connection", Fault::Kind::resetConnection},
    {"refuse-handshake", Fault::Kind::refuseHandshake},
    {"hold-handshake", Fault::Kind::holdHandshake},
}};

constexpr std::int64_t kMostBytes = 500'000'000;

std::string noSuchKind(std::string_view name) {
  std::string names;
  for (const auto& [known, kind] : kKindNames) names += fmt::format(", {}", known);
  return fmt::format("there is no fault \"{}\"; there are {}", name, names.substr(2));
}

bool meetsConnections(const Fault& fault) {
  return fault.kind == Fault::Kind::resetConnection || fault.kind == Fault::Kind::refuseHandshake ||
         fault.kind == Fault::Kind::holdHandshake;
}

bool meetsConnection(const Fault& fault, std::string_view /*path*/) {
  return meetsConnections(fault);
}

bool covers(std::string_view pattern, std::string_view path) {
  if (pattern == "*") pattern = "/vello/*";
  if (!pattern.ends_with('*')) return pattern == path;
  return path.starts_with(pattern.substr(0, pattern.size() - 1));
}

bool holdsAnswerBack(const Fault& fault, std::string_view path) {
  return fault.holdsBack() && covers(fault.path, path);
}

bool spoilsAnswer(const Fault& fault, std::string_view path) {
  return !meetsConnections(fault) && !fault.holdsBack() && covers(fault.path, path);
}

std::optional<std::string> complaintAboutPath(std::string_view path) {
  if (path != "*" && !path.starts_with('/')) return "\"path\" is neither \"*\" nor begins with /";
  if (path.find('*') < path.size() - 1) return "\"path\" has a \"*\" that is not its end";
  return std::nullopt;
}

json::value ofAnotherType(const json::value& value) {
  switch (value.kind()) {
    case json::kind::string:
      return json::object{{"text", value}};
    case json::kind::bool_:
      return json::array{value};
    case json::kind::int64:
    case json::kind::uint64:
    case json::kind::double_:
    case json::kind::object:
      return "a text";
    case json::kind::array:
      return json::object{};
    case json::kind::null:
      break;
  }
  return 1;
}

template <typename Change>
std::string eachValue(const std::string& body, Change change) {
  auto object = parseObject(body);
  if (!object) return body;
  for (json::key_value_pair& pair : *object) pair.value() = change(pair.value());
  return json::serialize(*object);
}

std::string hugeBody(std::int64_t bytes) {
  std::string body = R"({"padding":")";
  body.append(static_cast<size_t>(std::max<std::int64_t>(bytes, 0)), 'x');
  body += R"("})";
  return body;
}

}  // namespace

std::string_view Faults::nameOf(Fault::Kind kind) {
  const auto* found = std::find_if(kKindNames.begin(), kKindNames.end(),
                                   [&](const auto& entry) { return entry.second == kind; });
  return found->first;
}

bool Fault::carriesOut() const {
  if (carriedOut) return *carriedOut;
  return kind != Kind::status && kind != Kind::redirect;
}

json::object Fault::toJson() const {
  json::object out{{"id", id},
                   {"kind", Faults::nameOf(kind)},
                   {"path", path},
                   {"skip", skip},
                   {"count", count},
                   {"hits", hits},
                   {"carriedOut", carriesOut()}};
  if (kind == Kind::status || kind == Kind::redirect) out["status"] = status;
  if (kind == Kind::delay || kind == Kind::trickle) out["milliseconds"] = milliseconds;
  return out;
}

std::optional<std::string> Faults::add(const json::object& wish) {
  if (auto wrong = complaint(wish, {{"kind"},
                                    {"path", Kind::text, false},
                                    {"skip", Kind::integer, false},
                                    {"count", Kind::integer, false},
                                    {"carriedOut", Kind::boolean, false},
                                    {"status", Kind::integer, false},
                                    {"body", Kind::text, false},
                                    {"location", Kind::text, false},
                                    {"milliseconds", Kind::integer, false},
                                    {"bytes", Kind::integer, false}})) {
    return wrong;
  }
  for (const char* text : {"path", "body", "location"}) {
    if (textOf(wish, text).size() > kLongestKeptBody) {
      return fmt::format("\"{}\" is longer than {} bytes", text, kLongestKeptBody);
    }
  }
  const std::string name = textOf(wish, "kind");
  const auto* found = std::find_if(kKindNames.begin(), kKindNames.end(),
                                   [&](const auto& entry) { return entry.first == name; });
  if (found == kKindNames.end()) return noSuchKind(name);
  Fault fault;
  fault.kind = found->second;
  if (wish.contains("path")) fault.path = textOf(wish, "path");
  if (const auto wrong = complaintAboutPath(fault.path)) return wrong;
  fault.skip = integerOf(wish, "skip", fault.skip);
  fault.count = integerOf(wish, "count", fault.count);
  if (wish.contains("carriedOut")) fault.carriedOut = booleanOf(wish, "carriedOut");
  const bool redirects = fault.kind == Fault::Kind::redirect;
  const std::int64_t status = integerOf(wish, "status", redirects ? 302 : 500);
  if (status < 200 || status > 599) return "\"status\" is no final HTTP status";
  fault.status = static_cast<int>(status);
  fault.body = textOf(wish, "body");
  fault.location = textOf(wish, "location");
  if (redirects && fault.location.empty()) return "a redirect needs a \"location\"";
  fault.milliseconds = integerOf(wish, "milliseconds", fault.milliseconds);
  fault.bytes = integerOf(wish, "bytes", fault.bytes);
  if (fault.bytes < 0 || fault.bytes > kMostBytes) {
    return fmt::format("\"bytes\" is no number from 0 to {}", kMostBytes);
  }
  add(std::move(fault));
  return std::nullopt;
}

std::int64_t Faults::add(Fault fault) {
  if (faults_.size() == kKept) {
    const auto spent = std::find_if(faults_.begin(), faults_.end(),
                                    [](const Fault& old) { return old.hits == old.count; });
    faults_.erase(spent == faults_.end() ? faults_.begin() : spent);
  }
  fault.id = nextId_++;
  faults_.push_back(std::move(fault));
  return faults_.back().id;
}

std::optional<Fault> Faults::takeIf(bool (*fits)(const Fault&, std::string_view),
                                    std::string_view path) {
  for (Fault& fault : faults_) {
    if (!fits(fault, path) || fault.hits == fault.count) continue;
    if (fault.skip > 0) {
      --fault.skip;
      continue;
    }
    ++fault.hits;
    return fault;
  }
  return std::nullopt;
}

std::vector<Fault> Faults::take(std::string_view path) {
  std::vector<Fault> met;
  for (const auto fits : {&holdsAnswerBack, &spoilsAnswer}) {
    if (auto fault = takeIf(fits, path)) met.push_back(std::move(*fault));
  }
  return met;
}

std::optional<Fault> Faults::takeForConnection() { return takeIf(&meetsConnection, {}); }

std::optional<std::string> Faults::clear(const json::object& wish) {
  if (auto wrong = complaint(wish, {{"id", Kind::integer, false},
                                    {"kind", Kind::text, false},
                                    {"path", Kind::text, false}})) {
    return wrong;
  }
  const size_t cleared = faults_.remove_if([&](const Fault& fault) {
    return integerOf(wish, "id", fault.id) == fault.id &&
           (!wish.contains("kind") || textOf(wish, "kind") == nameOf(fault.kind)) &&
           (!wish.contains("path") || textOf(wish, "path") == fault.path);
  });
  if (cleared == 0 && !wish.empty()) return "there is no such fault";
  return std::nullopt;
}

bool Faults::has(std::int64_t id) const {
  return std::any_of(faults_.begin(), faults_.end(),
                     [&](const Fault& fault) { return fault.id == id; });
}

json::array Faults::list() const {
  json::array out;
  for (const Fault& fault : faults_) out.push_back(fault.toJson());
  return out;
}

void Faults::spoil(HttpAnswer& answer, const Fault& fault) {
  const std::chrono::milliseconds time(fault.milliseconds);
  switch (fault.kind) {
    case Fault::Kind::status:
      answer.status = fault.status;
      answer.body = fault.body;
      break;
    case Fault::Kind::redirect:
      answer.status = fault.status;
      answer.body = fault.body;
      answer.headers.emplace_back("Location", fault.location);
      break;
    case Fault::Kind::delay:
      answer.delay = time;
      break;
    case Fault::Kind::hangUp:
      answer.delivery = Delivery::hangUp;
      break;
    case Fault::Kind::silence:
      answer.delivery = Delivery::silence;
      break;
    case Fault::Kind::headerThenSilence:
      answer.delivery = Delivery::headerThenSilence;
      break;
    case Fault::Kind::cutInBody:
      answer.delivery = Delivery::cutInBody;
      break;
    case Fault::Kind::trickle:
      answer.delivery = Delivery::trickle;
      answer.interval = time;
      break;
    case Fault::Kind::hugeBody:
      answer.body = hugeBody(fault.bytes);
      break;
    case Fault::Kind::deepJson:
      answer.body = R"({"deep":)" + std::string(100'000, '[') + std::string(100'000, ']') + "}";
      break;
    case Fault::Kind::notJson:
      answer.body = "<html><body>Under maintenance</body></html>";
      break;
    case Fault::Kind::notUtf8:
      answer.body = "{\"status\":\"\xC3\x28\"}";
      break;
    case Fault::Kind::emptyBody:
      answer.body.clear();
      break;
    case Fault::Kind::wrongTypes:
      answer.body = eachValue(answer.body, &ofAnotherType);
      break;
    case Fault::Kind::nullValues:
      answer.body = eachValue(answer.body, [](const json::value&) { return json::value(); });
      break;
    case Fault::Kind::lastAnswer:
      answer.last = true;
      break;
    case Fault::Kind::hold:  // By the server, which knows when the fault is cleared.
    case Fault::Kind::forgetSession:
    case Fault::Kind::resetConnection:
    case Fault::Kind::refuseHandshake:
    case Fault::Kind::holdHandshake:  // Before the request.
      break;
  }
}

}  // namespace orlix::sandbox
