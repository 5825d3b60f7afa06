#include "orlixkit/protocol/KCVelloConnection.h"

#include <mutex>
#include <stdexcept>

#include <fmt/format.h>

#include "orlixkit/platform/Host.h"
#include "orlixkit/protocol/MessageBuilder.h"
#include "orlixkit/protocol/RequestFailure.h"
#include "orlixkit/records/AnswerReader.h"
#include "orlixkit/records/KCVelloUtil.h"
#include "orlixkit/security/Base64.h"
#include "orlixkit/security/PinBlock.h"

namespace orlix {

namespace {

constexpr std::int64_t codeOk = 200;
constexpr std::int64_t codeSessionUnknown = 403;

template <class Pointer>
Pointer present(Pointer pointer, const std::string& what) {
  if (!pointer) {
    throw std::invalid_argument("KCVelloConnection needs a " + what);
  }
  return pointer;
}

std::optional<SecretBytes> payloadOf(NetworkResult result) {
  if (result.responseCode != codeOk) {
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
    : storageInterface_(present(std::move(storageInterface), "storage")),
      network_(present(std::move(networkInterface), "transport")),
      url_(std::move(url)),
      node_(std::move(node)),
      serial_(std::move(serial)),
      dataStore_(PinBlock::nibblePackSerial(serial_.phoneId.value_or(""))),
      appVersion_(std::move(appVersion)),
      platform_(std::move(platform)),
      timeZone_(std::move(timeZone)) {}

std::string KCVelloConnection::getApiVersion() { return "3.1"; }

std::string KCVelloConnection::toJSONFrom(const RequestBody& fields) {
  try {
    const SecretBytes json = fields.write();
    return {json.reveal().begin(), json.reveal().end()};
  } catch (const std::invalid_argument&) {
    return "{}";
  }
}

void KCVelloConnection::establishSession() {
  const std::lock_guard turn(turn_);
  _establishSession();
}

void KCVelloConnection::_establishSession() {
  const std::shared_ptr<PersistableObject> record = dataStore_.load(*storageInterface_);
  std::string serial = serial_.buildSerial();
  if (serial.empty()) {
    serial_.uid = DataStore::assignSerial(*storageInterface_);
    serial = serial_.buildSerial();
  }
  const std::optional<SecretBytes> body =
      MessageBuilder::buildEstablishSession(appVersion_, serial, record, platform_, timeZone_);

  const JsonObject object = withNetworkException([&] {
    const std::string url = fmt::format("{}/session/new/{}", url_, node_);
    const NetworkResult result = network_->post(url, body, dataStore_);
    if (!result.payload) {
      // Nobody has answered. Read as an answer without keys it would ask an activated device to
      // activate once more; as a lost request it leaves the former tokens and offers a retry.
      throw NetworkException();
    }
    // The code is not looked at: a refusal brings a readable answer with any code.
    return KCVelloUtil::getJson(result.payload->reveal());
  });
  keepSession(AnswerReader(object));
  judgeSession(AnswerReader(object));
}

/// Comes before every check: the requests of the activation are sent with the tokens of an answer
/// that says that the device is not activated.
void KCVelloConnection::keepSession(const AnswerReader& answer) {
  withNetworkException([&] {
    dataStore_.sessionId = answer.text("sessionId");
    dataStore_.sessionId2 = answer.text("sessionId2");
    const std::optional<SecretString> pinKey = answer.secretText("pinKey");
    dataStore_.pinKey = pinKey ? Base64::decode(pinKey->text()) : std::nullopt;
  });
}

/// The order of the tests is binding: activation, then the notice, then the terms.
void KCVelloConnection::judgeSession(const AnswerReader& answer) {
  const auto isTrue = [&answer](std::string_view key) {
    return withNetworkException([&] { return answer.boolean(key); });
  };
  if (!isTrue("activated")) {
    throw SMSException();
  }
  const bool allowConnection = isTrue("allowConnection");
  std::optional<std::string> message = withNetworkException([&] { return answer.text("message"); });
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

void KCVelloConnection::_ensureSession() {
  if (!dataStore_.sessionId && !dataStore_.sessionId2) {
    _establishSession();
  }
}

NetworkResult KCVelloConnection::_post(Turn& turn, const std::string& path,
                                       const std::optional<SecretBytes>& body) {
  const DataStore session = dataStore_;
  turn.unlock();
  NetworkResult result = network_->post(url_ + path, body, session);
  turn.lock();
  return result;
}

std::optional<SecretBytes> KCVelloConnection::_send(Turn& turn, const std::string& path,
                                                    const RequestBody& fields) {
  _ensureSession();
  const SecretBytes body = fields.write();
  // No limit on purpose: a server that forgets sessions as fast as they are opened is asked until
  // it stops doing so, opening a session fails, or the host shuts down (the transport then fails).
  for (;;) {
    NetworkResult result = _post(turn, path, body);
    if (result.responseCode != codeSessionUnknown) {
      return payloadOf(std::move(result));
    }
    _establishSession();
    _ensureSession();
  }
}

std::optional<SecretBytes> KCVelloConnection::_sendPurchaseAMT(Turn& turn, const std::string& path,
                                                               RequestBody& fields,
                                                               const SecretString& pin) {
  _ensureSession();
  std::optional<SecretBytes> body;
  try {
    body = fields.write();
  } catch (const std::invalid_argument& failure) {
    log(failure.what());
  }
  NetworkResult result = _post(turn, path, body);
  if (result.responseCode != codeSessionUnknown) {
    return payloadOf(std::move(result));
  }
  _establishSession();
  fields.set("pinData", _pinData(pin));
  // A further 403 in there re-sends this block as it is, although its key has been replaced: such a
  // block can only be refused, and the user is then asked for the PIN once more.
  return _send(turn, path, fields);
}

void KCVelloConnection::reset(StorageInterface& storage) {
  const std::lock_guard turn(turn_);
  withNetworkException([&] { dataStore_.reset(storage); });
}

}  // namespace orlix
