// SPDX-License-Identifier: Apache-2.0

#include "sandbox/EventLog.h"

#include <utility>

#include <boost/json.hpp>

namespace orlix::sandbox {

namespace json = boost::json;

EventLog::EventLog(Sink sink) : sink_(std::move(sink)) {}

void EventLog::ready(const Ready& where) {
  json::object line{
      {"event", "ready"}, {"base", where.base}, {"anchor", where.anchor}, {"terms", where.terms}};
  if (!where.console.empty()) line["console"] = where.console;
  line["anchorPem"] = where.anchorText;
  line["local"] = where.local;
  write(json::serialize(line));
}

void EventLog::request(const Request& request) {
  json::object line{
      {"event", "request"},       {"path", request.path},
      {"status", request.status}, {"time", request.arrived.time_since_epoch().count()},
      {"method", request.method}, {"milliseconds", request.duration.count()}};
  if (!request.reason.empty()) line["reason"] = request.reason;
  write(json::serialize(line));
}

void EventLog::sms(std::string_view msisdn, std::string_view code) {
  write(json::serialize(json::object{{"event", "sms"}, {"msisdn", msisdn}, {"code", code}}));
}

void EventLog::write(std::string_view line) {
  const std::lock_guard lock(mutex_);
  if (sink_) sink_(line);
}

}  // namespace orlix::sandbox
