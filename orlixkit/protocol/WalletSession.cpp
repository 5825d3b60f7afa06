// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/protocol/WalletSession.h"

#include <stdexcept>

#include <fmt/format.h>

#include "orlixkit/protocol/MessageBuilder.h"
#include "orlixkit/protocol/RequestFailure.h"
#include "orlixkit/protocol/StoredCredentials.h"
#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"
#include "orlixkit/security/Base64.h"
#include "orlixkit/security/PinBlock.h"

namespace orlix {

namespace {

WalletClientSettings checked(WalletClientSettings settings) {
  if (!settings.storage || !settings.network) {
    throw std::invalid_argument("KCVelloConnection needs a storage and a transport");
  }
  return settings;
}

}  // namespace

WalletSession::WalletSession(WalletClientSettings settings)
    : settings_(checked(std::move(settings))),
      store_(PinBlock::nibblePackSerial(settings_.serial.phoneId.value_or(""))) {}

WalletSession::Values WalletSession::values() const {
  const std::lock_guard held(lock_);
  return {store_, number_};
}

Serial WalletSession::serial() const {
  const std::lock_guard held(lock_);
  return settings_.serial;
}

void WalletSession::open(const RequestScope& scope) {
  const std::lock_guard turn(opening_);
  openInTurn(scope);
}

WalletSession::Values WalletSession::ensureOpen(const RequestScope& scope) {
  if (Values present = values(); present.isOpen()) {
    return present;
  }
  const std::lock_guard turn(opening_);
  if (Values present = values(); present.isOpen()) {
    return present;
  }
  openInTurn(scope);
  return values();
}

bool WalletSession::renew(std::uint64_t number, const RequestScope& scope) {
  const std::lock_guard turn(opening_);
  if (values().number != number) {
    return false;
  }
  openInTurn(scope);
  return true;
}

NetworkResult WalletSession::post(const Values& values, const std::string& path,
                                  const std::optional<SecretBytes>& body,
                                  const RequestScope& scope) const {
  scope.check();
  // Check again immediately before sending: the flow may have ended while connecting.
  const auto mayBeSent = [flow = scope.flow, departure = scope.departure] {
    return departure ? departure->leaves(flow.get()) : !flow || flow->isLive();
  };
  return settings_.network->post(settings_.url + path, body, values.store, mayBeSent);
}

void WalletSession::openInTurn(const RequestScope& scope) {
  scope.check();  // the scope may have ended during the wait
  const std::shared_ptr<PersistableObject> record = store_.load(*settings_.storage);
  const std::optional<SecretBytes> body = MessageBuilder::buildEstablishSession(
      settings_.appVersion, serialText(), record, settings_.platform, settings_.timeZone);
  std::string request = "/session/new/" + settings_.node;
  const JsonObject object = withNetworkException(request, [&] {
    const NetworkResult result =
        post(values(), request, body, {.flow = scope.flow, .deadline = scope.deadline});
    request += fmt::format(" (HTTP {})", result.responseCode);
    if (!result.payload) {
      // No answer. Parsed as an answer without keys it would make an activated device activate
      // again; as a failed request it keeps the former tokens and leads to a retry.
      throw NetworkException();
    }
    // Ignore the HTTP code: a refusal has a readable answer with any code.
    return KCVelloUtil::getJson(result.payload->reveal());
  });
  keep(AnswerReader(object), request);
  judge(AnswerReader(object), request);
}

/// Makes a random identifier for a device that has none.
std::string WalletSession::serialText() {
  const std::lock_guard held(lock_);
  std::string serial = settings_.serial.buildSerial();
  if (serial.empty()) {
    settings_.serial.uid = DataStore::assignSerial(*settings_.storage);
    serial = settings_.serial.buildSerial();
  }
  return serial;
}

/// Call before the checks: the activation's requests use the tokens of an answer that reports the
/// device as not activated.
void WalletSession::keep(const AnswerReader& answer, const std::string& request) {
  withNetworkException(request, [&] {
    std::optional<std::string> sessionId = answer.text("sessionId");
    std::optional<std::string> sessionId2 = answer.text("sessionId2");
    const std::optional<SecretString> pinKey = answer.secretText("pinKey");
    std::optional<SecretBytes> key = pinKey ? Base64::decode(pinKey->text()) : std::nullopt;
    const std::lock_guard held(lock_);
    store_.sessionId = std::move(sessionId);
    store_.sessionId2 = std::move(sessionId2);
    store_.pinKey = std::move(key);
    ++number_;
  });
}

/// The order of the tests is binding: activation, then the notice, then the terms.
void WalletSession::judge(const AnswerReader& answer, const std::string& request) {
  const auto isTrue = [&](std::string_view key) {
    return withNetworkException(request, [&] { return answer.boolean(key); });
  };
  if (!isTrue("activated")) {
    throw SMSException();
  }
  const bool allowConnection = isTrue("allowConnection");
  std::optional<std::string> message =
      withNetworkException(request, [&] { return answer.text("message"); });
  if (!allowConnection) {
    if (message && message->empty()) {
      message = "Please update your application";
    }
    throw AppOutOfDateException(std::move(message), true);
  }
  if (message && !message->empty()) {
    throw AppOutOfDateException(std::move(message), false);
  }
  if (isTrue("requestTCs")) {
    throw TcOutOfDateException("You need to accept the latest Terms and Conditions");
  }
}

void WalletSession::storeToken(const std::optional<std::string>& token, std::uint64_t wipes,
                               const RequestScope& scope) {
  StoredCredentials::shared().storeUnlessWiped(wipes, [&] {
    scope.check();
    std::shared_ptr<PersistableObject> record;
    {
      const std::lock_guard held(lock_);
      if (!store_.po) {
        store_.po = std::make_shared<PersistableObject>();
      }
      record = store_.po;
      record->ssToken = token;
    }
    store_.save(*settings_.storage, *record);
  });
}

void WalletSession::reset(StorageInterface& storage) const {
  StoredCredentials::shared().wipe([&] { store_.reset(storage); });
}

}  // namespace orlix
