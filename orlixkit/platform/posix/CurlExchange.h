#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <curl/curl.h>
#include <openssl/x509_vfy.h>

#include "orlixkit/platform/UrlConnection.h"
#include "orlixkit/platform/posix/CurlLoop.h"
#include "orlixkit/platform/posix/CurlRequest.h"

namespace orlix {

class SystemTrust;

/// One exchange, with one hop for each redirect. The application's threads start and cancel it; the
/// loop's driver does everything else and hands the callbacks to the delegate's queue.
class CurlExchange : public UrlConnection, public std::enable_shared_from_this<CurlExchange> {
 public:
  CurlExchange(UrlRequest request, std::shared_ptr<UrlConnectionDelegate> delegate,
               std::shared_ptr<CurlLoop> loop);
  ~CurlExchange() override;

  void setDelegateQueue(std::shared_ptr<OperationQueue> queue) override;
  void start() override;
  void cancel() override;

  /// Ends the exchange with an error, unless it has ended. Any thread.
  void fail(std::string_view description);
  /// Ends the exchange without a word to the delegate. Any thread.
  void abandon();
  bool isOver() const;

  /// The thread that has started it.
  std::thread::id starter() const { return starter_; }

  // From here on: the loop's driver.

  /// Makes the handle for the first hop; false when the request cannot be sent, which the delegate
  /// then has been told.
  bool prepare();
  CURL* easy() const { return easy_.get(); }
  /// The hop's transfer has ended. True when the handle is ready for a further hop.
  bool endHop(CURLcode result);
  SteadyTime silentUntil() const { return lastByte_ + request_.timeout; }
  void failSilent();
  /// Gives back the handle and the request's body.
  void release();

 private:
  using Callback = std::function<void(UrlConnectionDelegate&)>;

  template <class Value>
  void set(CURLoption option, Value value);
  void setConstantOptions();
  /// Sets address, method, header and body of the next hop. Throws when it cannot be made.
  void prepareHop(RequestTarget target);
  bool carriesBody() const;
  bool mayBeSent() const;
  bool followsRedirect() const;
  bool prepareRedirect();

  /// The delegate's queue; none once the exchange is over.
  std::shared_ptr<OperationQueue> openQueue() const;
  /// What runs the callback, unless the exchange is over by then.
  Task taskFor(Callback callback);
  /// Puts the callback on the delegate's queue, unless the exchange is over.
  void tell(Callback callback);
  /// The same for the last callback.
  void tellEnd(Callback callback);
  /// Puts the question to the delegate and waits for its answer. No answer is a refusal.
  bool isTrusted(std::shared_ptr<SystemTrust> trust);

  static std::size_t onHeader(char* line, std::size_t unit, std::size_t count, void* self);
  static std::size_t onData(char* bytes, std::size_t unit, std::size_t count, void* self);
  static curl_socket_t onOpenSocket(void* self, curlsocktype purpose, curl_sockaddr* address);
  static int onRequest(void* self, char* server, char* local, int serverPort, int localPort);
  static CURLcode onTlsContext(CURL* easy, void* context, void* self);
  static int onCertificates(X509_STORE_CTX* presented, void* self);

  const std::shared_ptr<CurlLoop> loop_;

  mutable std::mutex lock_;
  std::shared_ptr<UrlConnectionDelegate> delegate_;  // guarded by lock_; none once it is over
  std::shared_ptr<OperationQueue> queue_;            // guarded by lock_
  bool started_ = false;                             // guarded by lock_
  bool ending_ = false;                              // guarded by lock_; the last callback is owed

  std::thread::id starter_;  // written before the loop hears of the exchange

  // The loop's driver, once started.
  UrlRequest request_;
  EasyHandle easy_;
  HeaderList headers_;
  char errorText_[CURL_ERROR_SIZE] = "";
  RequestTarget target_;  // of this hop
  bool ownHost_ = true;
  int redirects_ = 0;
  // Of this hop:
  bool newConnection_ = false;
  bool stale_ = false;      // the kept connection was found closed before the request went out
  bool refused_ = false;    // the server's certificate
  bool withdrawn_ = false;  // the request may not be sent any more
  bool requestSent_ = false;
  bool headerEnded_ = false;
  SteadyTime hopBegin_;
  SteadyTime lastByte_;
};

}  // namespace orlix
