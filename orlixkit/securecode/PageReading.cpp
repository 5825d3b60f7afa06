// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/securecode/PageReading.h"

#include <system_error>

#include "orlixkit/host/Host.h"
#include "orlixkit/securecode/Alarm.h"

namespace orlix {

namespace {

/// Shared with the page and the alarm; either may report after the reading has ended.
struct Reading {
  std::optional<ScriptResult> result;
  bool late = false;
};

std::unique_ptr<Alarm> alarmFor(const std::shared_ptr<Reading>& reading, Duration limit) {
  try {
    return std::make_unique<Alarm>(limit, [reading] { reading->late = true; });
  } catch (const std::system_error& failure) {
    log(std::string("OrlixKit: A page is read without a time limit: ") + failure.what());
    return nullptr;
  }
}

}  // namespace

std::optional<ScriptResult> evaluateAndWait(const std::shared_ptr<WebView>& page,
                                            const std::string& script, Duration limit,
                                            const std::function<bool()>& abandoned) {
  const auto reading = std::make_shared<Reading>();
  const std::unique_ptr<Alarm> alarm = alarmFor(reading, limit);
  page->evaluateJavaScript(script,
                           [reading](const ScriptResult& given) { reading->result = given; });
  Host::current().ports().mainQueue->runUntil(
      [&] { return reading->result || reading->late || abandoned(); });
  return reading->result;
}

}  // namespace orlix
