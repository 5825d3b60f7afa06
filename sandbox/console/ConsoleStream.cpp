// SPDX-License-Identifier: Apache-2.0

#include "sandbox/console/ConsoleStream.h"

#include <chrono>

#include <fmt/format.h>

namespace orlix::sandbox {

namespace {

std::string event(std::string_view name, std::int64_t id, const json::object& data) {
  return fmt::format("event: {}\nid: {}\ndata: {}\n\n", name, id, json::serialize(data));
}

}  // namespace

std::string ConsoleStream::next() {
  using namespace std::chrono_literals;
  std::unique_lock lock(state_.mutex);
  const bool changed = state_.watchers.wait_for(
      lock, 1s, [this] { return shutdown_.begun() || state_.changes != changes_; });
  if (!changed || shutdown_.begun()) return {};
  changes_ = state_.changes;
  std::string news = requests();  // First: it moves the revision that both events carry.
  return news + status();
}

std::string ConsoleStream::requests() {
  const SeenRequests& seen = state_.seen;
  if (seen.revision() == seen_) return {};
  // A page that knows more than has happened is of an earlier run.
  const std::int64_t known = seen_ > seen.revision() ? 0 : seen_;
  seen_ = seen.revision();
  return event("requests", seen_, {{"oldest", seen.oldest()}, {"rows", seen.changedSince(known)}});
}

std::string ConsoleStream::status() {
  return event("status", seen_,
               {{"faults", state_.faults.list()},
                {"sessionStart", state_.sessionStart},
                {"nextSessionStart", state_.nextSessionStart},
                {"termsVersion", state_.wallets.termsVersion()},
                {"sessions", state_.sessions.count()},
                {"everyDeviceEnrolled", state_.everyDeviceEnrolled},
                {"holds", state_.purchases.holds()},
                {"held", state_.purchases.heldCount()},
                {"messages", state_.messages.count()},
                {"purchases", state_.purchases.receivedCount()}});
}

}  // namespace orlix::sandbox
