#include "sandbox/EventLog.h"

#include <utility>

#include <boost/json.hpp>

namespace orlix::sandbox {

namespace json = boost::json;

EventLog::EventLog(Sink sink) : sink_(std::move(sink)) {}

void EventLog::ready(std::string_view base, std::string_view anchor, std::string_view terms) {
  write(json::serialize(
      json::object{{"event", "ready"}, {"base", base}, {"anchor", anchor}, {"terms", terms}}));
}

void EventLog::request(std::string_view path, int status) {
  write(json::serialize(json::object{{"event", "request"}, {"path", path}, {"status", status}}));
}

void EventLog::sms(std::string_view msisdn, std::string_view code) {
  write(json::serialize(json::object{{"event", "sms"}, {"msisdn", msisdn}, {"code", code}}));
}

void EventLog::write(std::string_view line) {
  const std::lock_guard lock(mutex_);
  if (sink_) sink_(line);
}

}  // namespace orlix::sandbox
