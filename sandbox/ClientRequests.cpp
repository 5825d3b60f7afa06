// SPDX-License-Identifier: Apache-2.0

#include "sandbox/ClientRequests.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "sandbox/Formats.h"
#include "sandbox/Judgement.h"

namespace orlix::sandbox {

namespace {

std::string namesOf(const std::vector<Fault>& faults) {
  std::string names;
  for (const Fault& fault : faults) {
    names += (names.empty() ? "" : ", ") + std::string(Faults::nameOf(fault.kind));
  }
  return names;
}

}  // namespace

/// A request, noted before it is carried out.
struct ClientRequests::Arrival {
  std::int64_t number = 0;         ///< Among the requests seen.
  std::optional<size_t> purchase;  ///< Its place in the account, when it is one.
  std::vector<Fault> faults;       ///< Those that it meets.
  std::shared_ptr<void> underWay;  ///< Its end is noted when this is released.
};

ClientRequests::ClientRequests(State& state, EventLog& log, Shutdown& shutdown, Recorder* recorder)
    : state_(state),
      shutdown_(shutdown),
      vello_(state, log, shutdown),
      issuer_(state),
      recorder_(recorder) {}

HttpAnswer ClientRequests::answer(const HttpRequest& request) {
  const Arrival arrival = note(request);
  const std::vector<Fault>& faults = arrival.faults;
  HttpAnswer answer;
  if (std::all_of(faults.begin(), faults.end(), std::mem_fn(&Fault::carriesOut))) {
    answer = carryOut(request);
  }
  const std::string intended = answer.body;  // Before faults are applied.
  for (const Fault& fault : faults) {
    Faults::spoil(answer, fault);
    if (fault.kind != Fault::Kind::hold) continue;
    answer.hold = [this, id = fault.id] {
      std::unique_lock lock(state_.mutex);
      return state_.awaitCleared(id, lock, shutdown_);
    };
  }
  answer.underWay = arrival.underWay;
  if (recorder_ != nullptr) recorder_->note(request, answer, faults);

  MaskedBody masked = maskAnswer(answer);
  const std::lock_guard lock(state_.mutex);
  if (arrival.purchase) state_.purchases.decided(*arrival.purchase, answer.status, intended);
  state_.seen.decided(arrival.number, {.status = answer.status,
                                       .reason = answer.reason,
                                       .faults = namesOf(faults),
                                       .body = std::move(masked)});
  state_.touch();
  return answer;
}

ClientRequests::Arrival ClientRequests::note(const HttpRequest& request) {
  Arrival arrival;
  const bool isPurchase = Vello::isPurchase(request);
  const std::lock_guard lock(state_.mutex);
  const Origin origin = originOf(request);
  const Moment at = now();
  arrival.number = state_.seen.arrived(request, origin, maskRequest(state_, request), at);
  state_.touch();
  if (isPurchase) {
    arrival.purchase = state_.purchases.received({.request = arrival.number,
                                                  .arrived = at,
                                                  .origin = origin,
                                                  .path = request.path,
                                                  .bytes = request.body.size(),
                                                  .body = withoutSecrets(request.body)});
  }
  arrival.underWay = {nullptr, [this, number = arrival.number, origin, isPurchase](void*) {
                        const std::lock_guard held(state_.mutex);
                        state_.seen.ended(number, now());
                        state_.touch();
                        if (isPurchase) state_.purchases.ended(origin.device);
                      }};
  arrival.faults = state_.faults.take(request.path);
  for (const Fault& fault : arrival.faults) {
    if (fault.kind == Fault::Kind::forgetSession) state_.sessions.forget(request.sessionToken1());
  }
  return arrival;
}

/// A session start says itself for which device it is.
Origin ClientRequests::originOf(const HttpRequest& request) const {
  Origin origin = state_.sessions.originOf(request.sessionToken1(), request.sessionToken2());
  if (!Vello::isSessionStart(request)) return origin;
  const auto body = parseObject(request.body);
  const std::string serial = body ? textOf(*body, "deviceSerial") : "";
  origin.device = isDeviceSerial(serial) ? serial : "";
  return origin;
}

/// What fails here is answered like anything else, so that the account knows its status.
HttpAnswer ClientRequests::carryOut(const HttpRequest& request) {
  try {
    return Issuer::owns(request) ? issuer_.answer(request) : vello_.answer(request);
  } catch (const std::exception& failure) {
    return refusal(500, failure.what());
  }
}

}  // namespace orlix::sandbox
