// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/KCVelloConnection.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include <fmt/format.h>

#include "orlixkit/host/Host.h"

namespace orlix {

namespace {

constexpr std::int64_t kCodeOk = 200;
constexpr std::int64_t kCodeSessionUnknown = 403;

/// Pause before re-sending after this many refusals in a row. The first three are re-sent at once,
/// since sessions may expire; a server that refuses every session must not be sent a thousand
/// requests a second.
Duration pauseAfter(unsigned refusals) {
  using namespace std::chrono_literals;
  constexpr unsigned kFirstPause = 4;
  constexpr unsigned kLongestPause = kFirstPause + 3;
  if (refusals < kFirstPause) {
    return Duration::zero();
  }
  return 250ms * (1 << (std::min(refusals, kLongestPause) - kFirstPause));
}

std::optional<SecretBytes> payloadOf(NetworkResult result) {
  if (result.responseCode != kCodeOk) {
    log(fmt::format("[VELLO] Received HTTP Error: {}", result.responseCode));
    throw NetworkException();
  }
  return std::move(result.payload);
}

}  // namespace

KCVelloConnection::KCVelloConnection(std::string url, std::string node, Serial serial,
                                     std::shared_ptr<StorageInterface> storageInterface,
                                     std::shared_ptr<NetworkInterface> networkInterface,
                                     std::string appVersion, Platform platform,
                                     std::string timeZone)
    : session_(std::make_shared<WalletSession>(
          WalletClientSettings{std::move(url), std::move(node), std::move(serial),
                               std::move(storageInterface), std::move(networkInterface),
                               std::move(appVersion), std::move(platform), std::move(timeZone)})) {}

KCVelloConnection KCVelloConnection::within(RequestScope scope) const {
  return {session_, std::move(scope)};
}

std::string KCVelloConnection::getApiVersion() { return "3.1"; }

std::string KCVelloConnection::toJSONFrom(const RequestBody& fields) {
  try {
    const SecretBytes json = fields.write();
    return {json.reveal().begin(), json.reveal().end()};
  } catch (const std::invalid_argument&) {
    return "{}";
  }
}

void KCVelloConnection::establishSession() { session_->open(scope_); }

std::optional<SecretBytes> KCVelloConnection::deliver(const std::string& path,
                                                      const BodyMaker& bodyFor) const {
  // No limit on purpose: re-send until the server accepts the session, opening one fails, the scope
  // ends, or the host shuts down (the transport then fails).
  bool renewed = false;
  for (unsigned refusals = 0;; ++refusals) {
    const WalletSession::Values session = session_->ensureOpen(scope_);
    NetworkResult result =
        session_->post(session, path, bodyFor(session, renewed && refusals > 1), scope_);
    if (result.responseCode != kCodeSessionUnknown) {
      return payloadOf(std::move(result));
    }
    if (scope_.departure) {
      scope_.departure->turnedAway();
    }
    scope_.pause(pauseAfter(refusals + 1));
    renewed = session_->renew(session.number, scope_);
  }
}

std::optional<SecretBytes> KCVelloConnection::_send(const std::string& path,
                                                    const RequestBody& fields) const {
  std::optional<SecretBytes> body;
  return deliver(path, [&](const WalletSession::Values&, bool) {
    if (!body) {
      body = fields.write();
    }
    return body;
  });
}

std::optional<SecretBytes> KCVelloConnection::_sendPurchaseAMT(const std::string& path,
                                                               RequestBody& fields,
                                                               const SecretString& pin,
                                                               std::uint64_t keyedIn) const {
  return deliver(path, [&](const WalletSession::Values& session, bool keepPinBlock) {
    // A further 403 in a row re-sends the block unchanged, although its key has been replaced: the
    // server refuses such a block, and the user is then asked for the PIN again.
    if (session.number != keyedIn && !keepPinBlock) {
      fields.set("pinData", _pinData(session.store.pinKey, pin));
      keyedIn = session.number;
    }
    std::optional<SecretBytes> body;
    try {
      body = fields.write();
    } catch (const std::invalid_argument& failure) {
      log(failure.what());
    }
    return body;
  });
}

void KCVelloConnection::reset(StorageInterface& storage) {
  withNetworkException("reset", [&] { session_->reset(storage); });
}

}  // namespace orlix
