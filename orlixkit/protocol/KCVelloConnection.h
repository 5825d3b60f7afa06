// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "orlixkit/ports/Secret.h"
#include "orlixkit/protocol/NetworkInterface.h"
#include "orlixkit/protocol/Platform.h"
#include "orlixkit/protocol/RequestBody.h"
#include "orlixkit/protocol/RequestFailure.h"
#include "orlixkit/protocol/RequestScope.h"
#include "orlixkit/protocol/Serial.h"
#include "orlixkit/protocol/WalletSession.h"
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

/// The client of the wallet server: one operation per request, each a POST of a JSON object to a
/// path under the server's base address. Opens the session when there is none and renews it when
/// the server has forgotten it (403), as often as that happens.
///
/// Thread: any. Requests block, up to 60 seconds per exchange and longer when sessions have to be
/// renewed, so call them from the background; only the changed-terms screen calls one (`updateTC`)
/// on the main thread. `reset` waits for no exchange. Concurrent calls are allowed; one caller at a
/// time opens a session. At the host's shutdown all pending operations fail.
///
/// Errors: a request throws NetworkException (without name and reason) when the exchange fails, the
/// answer cannot be read or no session can be opened, and logs the cause; offer the user a retry. A
/// body that cannot be built (an absent required text) throws std::invalid_argument or
/// std::out_of_range before anything is sent. A refusal by the server is not an exception but the
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
  // Unused by the library, and of unspecified unit; kept for hosts.
  std::int32_t getSmsTimeout() const { return 300000; }
  std::int32_t getReceiptTimeout() const { return 300000; }

  /// Opens a session and stores its tokens and PIN key. Besides NetworkException throws, tested in
  /// this order: SMSException (device not activated), AppOutOfDateException (refused, or a notice
  /// while the session is usable), TcOutOfDateException (usable; new terms to accept). The tokens
  /// are stored in all of these cases.
  void establishSession();

  MTSmsResponse sendMsisdn(const std::string& msisdn);
  /// Returns the record's status (SmsResponseStatus). On success stores the wallet token, unless
  /// the credentials were wiped meanwhile; exceptions of the store propagate unchanged.
  std::int32_t processActivationCode(const std::string& code);

  MTCardList getCardList();
  /// Fills absent fields of the caller's record with empty texts.
  /// Throws std::invalid_argument without a card number, or with a month but no year.
  MTCardResponse linkCard(CardInfoResponse& card);
  MTCardResponse delinkCard(std::int64_t cardId);
  MTCardValidateResponse validateCard(bool validate, std::int64_t cardId,
                                      const std::string& inputValue);
  /// Throws std::out_of_range when the number has fewer than 9 characters.
  MTBinInfo getBinInfo(std::string_view cardNumber);
  MTApiResponse updateTC();
  /// Makes the stored record unreadable for this device, without a request. A pending activation no
  /// longer stores its token. Any thread.
  void reset(StorageInterface& storage);

  /// Looks a code up. Throws std::invalid_argument without a code.
  MTCodeResponse getCodeInfoV2(const std::optional<std::string>& code, const std::string& method);
  MTSecureCodeURLResponse getSecureCodeUrl(std::int64_t cardId,
                                           const std::optional<std::string>& code,
                                           const std::optional<std::string>& amount);
  MTSecureCodeURLResponse get3DAuthSecureCodeUrl(std::int64_t cardId);

  /// Pays with the wallet PIN, which is sent only as a PIN block encrypted with the session's key.
  /// Throws std::invalid_argument when the session has no PIN key of at least 16 bytes, or when no
  /// block can be made from the PIN.
  MTPinResponse purchaseAMT(const PurchaseRequest& request, const SecretString& pin);
  /// Pays without PIN. The misspelt name is kept for existing callers.
  MTPinResponse puchaseCNP(const PurchaseRequest& request);
  MTPinResponse purchaseSecureCode(const PurchaseRequest& request,
                                   const VelloSecureCodeData& secureCodeData);
  MTPinResponse auth3DsCard(const PurchaseRequest& request,
                            const VelloSecureCodeData& secureCodeData);
  /// Requests the receipt once. Absent while it is not ready.
  std::optional<MTReceipt> pollForReceipt(std::int64_t transactionId);

  /// Returns this client bound to a scope (one flow or one round of polling); all share the
  /// session. Once the scope has ended, requests send nothing and throw RequestEnded.
  KCVelloConnection within(RequestScope scope) const;
  const RequestScope& scope() const { return scope_; }

  /// A copy of the session values and of the record in memory. Any thread.
  DataStore dataStore() const { return session_->values().store; }
  /// Any thread.
  Serial serial() const { return session_->serial(); }

 private:
  KCVelloConnection(std::shared_ptr<WalletSession> session, RequestScope scope)
      : session_(std::move(session)), scope_(std::move(scope)) {}

  /// Makes the body for one send in that session. `keepPinBlock`: the session was renewed for this
  /// request more than once in a row.
  using BodyMaker = std::function<std::optional<SecretBytes>(const WalletSession::Values& session,
                                                             bool keepPinBlock)>;

  /// Sends and, after a 403, renews the session and re-sends. Returns the body of the answer;
  /// absent when it was truncated after the header.
  std::optional<SecretBytes> deliver(const std::string& path, const BodyMaker& bodyFor) const;
  std::optional<SecretBytes> _send(const std::string& path, const RequestBody& fields) const;
  /// `keyedIn`: number of the session whose key encrypted the PIN block in `fields`.
  std::optional<SecretBytes> _sendPurchaseAMT(const std::string& path, RequestBody& fields,
                                              const SecretString& pin, std::uint64_t keyedIn) const;
  /// Throws std::invalid_argument for a key that is absent or too short, and for a PIN from which
  /// no block can be made.
  static RequestBody _pinData(const std::optional<SecretBytes>& pinKey, const SecretString& pin);
  MTPinResponse _purchase(const PurchaseRequest& request, RequestBody builder,
                          const std::string& url) const;
  std::string withNode(const std::string& path) const { return path + session_->node(); }

  /// Sends, and parses the answer into a new record.
  template <class Record>
  Record request(const std::string& path, const RequestBody& fields) const {
    return withNetworkException(path, [&] { return parsed<Record>(path, _send(path, fields)); });
  }
  /// An absent body reads as an empty one, which the parsers refuse.
  template <class Record>
  static Record parsed(const std::string& path, const std::optional<SecretBytes>& answer) {
    return withNetworkException(path + " (HTTP 200)", [&] {
      Record record;
      record.parseFromData(answer ? answer->reveal() : ByteView());
      return record;
    });
  }

  std::shared_ptr<WalletSession> session_;
  RequestScope scope_;
};

}  // namespace orlix
