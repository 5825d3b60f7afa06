#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "orlixkit/platform/Secret.h"
#include "orlixkit/protocol/NetworkInterface.h"
#include "orlixkit/protocol/Platform.h"
#include "orlixkit/protocol/RequestBody.h"
#include "orlixkit/protocol/RequestFailure.h"
#include "orlixkit/protocol/RequestTurn.h"
#include "orlixkit/protocol/Serial.h"
#include "orlixkit/records/CardInfoResponse.h"
#include "orlixkit/records/Failures.h"
#include "orlixkit/records/MTApiResponse.h"
#include "orlixkit/records/MTBinInfo.h"
#include "orlixkit/records/MTCardList.h"
#include "orlixkit/records/MTCardResponse.h"
#include "orlixkit/records/MTCardValidateResponse.h"
#include "orlixkit/records/MTCodeResponse.h"
#include "orlixkit/records/MTPinResponse.h"
#include "orlixkit/records/MTReceipt.h"
#include "orlixkit/records/MTSecureCodeURLResponse.h"
#include "orlixkit/records/MTSmsResponse.h"
#include "orlixkit/records/PurchaseRequest.h"
#include "orlixkit/records/VelloSecureCodeData.h"
#include "orlixkit/security/DataStore.h"
#include "orlixkit/security/StorageInterface.h"

namespace orlix {

class AnswerReader;

/// The client of the wallet server: one operation per request, each a POST of a JSON object to a
/// path under the server's base address. Opens the session when there is none and renews it when
/// the server has forgotten it (403), as often as that happens.
///
/// Thread: any but the main thread; operations block, up to 60 seconds per exchange. Several
/// callers may ask at once; only the opening of a session is one caller's at a time. At the host's
/// shutdown every operation under way or waiting fails.
///
/// Errors: an operation throws NetworkException (without name and reason) for whatever goes wrong
/// on the way to the server, there and back, a session that cannot be opened included; offer the
/// user a retry. A body that cannot be built (an absent required text) throws std::invalid_argument
/// or std::out_of_range before anything is sent. A refusal by the server is no exception: it is the
/// status of the returned record.
class KCVelloConnection {
 public:
  /// `url`: base address without a trailing slash. `node`: name of the calling system, last segment
  /// of most paths. `appVersion`: the device text. `timeZone`: such as "+02:00".
  /// Throws std::invalid_argument when storage or transport is null.
  KCVelloConnection(std::string url, std::string node, Serial serial,
                    std::shared_ptr<StorageInterface> storageInterface,
                    std::shared_ptr<NetworkInterface> networkInterface, std::string appVersion,
                    Platform platform, std::string timeZone);

  /// Version of the protocol, "3.1".
  static std::string getApiVersion();
  /// JSON text of the fields; "{}" when they cannot be written.
  static std::string toJSONFrom(const RequestBody& fields);
  // Nothing reads these two, so that their unit is nobody's business; hosts may ask for them.
  std::int32_t getSmsTimeout() const { return 300000; }
  std::int32_t getReceiptTimeout() const { return 300000; }

  /// Opens a session and keeps its tokens and PIN key. Besides NetworkException throws, in this
  /// order of tests: SMSException (device not activated), AppOutOfDateException (refused, or a
  /// notice while the session is usable), TcOutOfDateException (usable; new terms to accept). The
  /// tokens are kept in all of these cases.
  void establishSession();

  MTSmsResponse sendMsisdn(const std::string& msisdn);
  /// The record's status (SmsResponseStatus). On success the wallet token has been stored; a
  /// failure of the store reaches the caller as it is.
  std::int32_t processActivationCode(const std::string& code);

  MTCardList getCardList();
  /// Fills absent fields of the caller's record with empty texts.
  /// Throws std::invalid_argument without a card number, or with a month but no year.
  MTCardResponse linkCard(CardInfoResponse& card);
  MTCardResponse delinkCard(std::int64_t cardId);
  MTCardValidateResponse validateCard(bool validate, std::int64_t cardId,
                                      const std::string& inputValue);
  /// Throws std::out_of_range when the number has fewer than 9 characters.
  MTBinInfo getBinInfo(const std::string& cardNumber);
  MTApiResponse updateTC();
  /// Makes the stored record unreadable for this device; nothing is sent.
  void reset(StorageInterface& storage);

  /// Looks a code up. Throws std::invalid_argument without a code.
  MTCodeResponse getCodeInfoV2(const std::optional<std::string>& code, const std::string& method);
  MTSecureCodeURLResponse getSecureCodeUrl(std::int64_t cardId,
                                           const std::optional<std::string>& code,
                                           const std::optional<std::string>& amount);
  MTSecureCodeURLResponse get3DAuthSecureCodeUrl(std::int64_t cardId);

  /// Pays with the wallet PIN, which leaves the device only as a PIN block under the session's key.
  /// Throws std::invalid_argument when no session has brought a PIN key yet, or when no block can
  /// be made of the PIN.
  MTPinResponse purchaseAMT(const PurchaseRequest& request, const SecretString& pin);
  /// Pays without PIN. The name lacks its r for the sake of those who call it.
  MTPinResponse puchaseCNP(const PurchaseRequest& request);
  MTPinResponse purchaseSecureCode(const PurchaseRequest& request,
                                   const VelloSecureCodeData& secureCodeData);
  MTPinResponse auth3DsCard(const PurchaseRequest& request,
                            const VelloSecureCodeData& secureCodeData);
  /// Asks once. None while the receipt is not ready.
  std::optional<MTReceipt> pollForReceipt(std::int64_t transactionId);

  /// The session values and the record in memory. Only while no operation runs.
  const DataStore& dataStore() const { return dataStore_; }
  const Serial& serial() const { return serial_; }

 private:
  /// The right to use the session values.
  using Turn = std::unique_lock<RequestTurn>;

  // The operations with an underscore expect the caller to have taken the turn.
  void _establishSession();
  void keepSession(const AnswerReader& answer);
  void judgeSession(const AnswerReader& answer);
  /// Opens a session when there is neither token.
  void _ensureSession();
  /// The body of the answer; none when it was cut off after its header.
  std::optional<SecretBytes> _send(Turn& turn, const std::string& path, const RequestBody& fields);
  std::optional<SecretBytes> _sendPurchaseAMT(Turn& turn, const std::string& path,
                                              RequestBody& fields, const SecretString& pin);
  /// Posts with the tokens of the moment. Gives the turn up meanwhile: an answer that the server
  /// holds back must not hold back the other requests, least of all one on the main thread.
  NetworkResult _post(Turn& turn, const std::string& path, const std::optional<SecretBytes>& body);
  MTPinResponse _purchase(Turn& turn, const PurchaseRequest& request, RequestBody builder,
                          const SecretString* pin, const std::string& url);
  RequestBody _pinData(const SecretString& pin) const;
  std::string withNode(const std::string& path) const { return path + node_; }

  /// Sends, and parses the answer into a new record.
  template <class Record>
  Record _request(Turn& turn, const std::string& path, const RequestBody& fields) {
    return withNetworkException([&] {
      const std::optional<SecretBytes> answer = _send(turn, path, fields);
      Record record;
      record.parseFromData(bytesOf(answer));
      return record;
    });
  }
  template <class Record>
  Record request(const std::string& path, const RequestBody& fields) {
    Turn turn(turn_);
    return _request<Record>(turn, path, fields);
  }
  /// An absent body reads as an empty one, which the parsers refuse.
  static ByteView bytesOf(const std::optional<SecretBytes>& answer) {
    return answer ? answer->reveal() : ByteView();
  }

  std::shared_ptr<StorageInterface> storageInterface_;
  std::shared_ptr<NetworkInterface> network_;
  std::string url_;
  std::string node_;
  Serial serial_;
  DataStore dataStore_;
  std::string appVersion_;
  Platform platform_;
  std::string timeZone_;
  RequestTurn turn_;
};

}  // namespace orlix
