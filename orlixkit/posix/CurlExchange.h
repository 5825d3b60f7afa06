// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <string_view>

#include <curl/curl.h>
#include <openssl/x509_vfy.h>

#include "orlixkit/ports/HttpClient.h"
#include "orlixkit/posix/CurlChannel.h"
#include "orlixkit/posix/CurlRequest.h"

namespace orlix {

/// One exchange, with one hop for each redirect. All of it runs on the calling thread.
class CurlExchange {
 public:
  /// `closed`: the client has been closed. Whoever sets it wakes the channel.
  CurlExchange(const HttpRequest& request, HttpDelegate& delegate, CurlChannel& channel,
               const Clock& clock, const std::atomic<bool>& closed);

  /// To be called once. Throws std::exception for what fails outside of a transfer.
  HttpResult run(RequestTarget target);

 private:
  struct CleanUpEasy {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
  };
  /// What has happened in one hop.
  struct Hop {
    bool refused = false;  ///< the server's certificates
    bool requestSent = false;
    bool heard = false;  ///< something of an answer
    bool headerEnded = false;
  };

  template <class Value>
  void set(CURLoption option, Value value);
  void setConstantOptions();
  void setCallbacks();
  /// Sets address, method, header and body of the next hop.
  void prepareHop(RequestTarget target);
  CURLcode transfer();
  /// The transfer's result, as soon as there is one.
  bool hasEnded(CURLcode& result) const;
  void waitForNetwork() const;
  HttpResult resultOf(CURLcode result) const;
  std::string failureText(CURLcode result) const;

  bool carriesBody() const;
  long status() const;
  bool followsRedirect() const;
  /// The redirect's target, for which the request is changed.
  RequestTarget redirectTarget();

  bool isLate() const { return clock_.steadyNow() >= request_.deadline; }
  bool isOver() const { return closed_ || isLate(); }
  /// Asks the delegate by `ask` whether the exchange continues. An exception counts as no: none may
  /// pass through a callback of libcurl.
  template <class Question>
  bool goesOn(const Question& ask);

  static std::size_t onHeader(char* line, std::size_t unit, std::size_t count, void* self);
  static std::size_t onData(char* bytes, std::size_t unit, std::size_t count, void* self);
  static curl_socket_t onOpenSocket(void* self, curlsocktype purpose, curl_sockaddr* address);
  static int onRequest(void* self, char* server, char* local, int serverPort, int localPort);
  static CURLcode onTlsContext(CURL* easy, void* context, void* self);
  static int onCertificates(X509_STORE_CTX* presented, void* self);

  const HttpRequest& request_;
  HttpDelegate& delegate_;
  CurlChannel& channel_;
  const Clock& clock_;
  const std::atomic<bool>& closed_;
  // New for each exchange, so that what libcurl keeps of a request is wiped at its end.
  const std::unique_ptr<CURL, CleanUpEasy> easy_;
  HeaderList headers_;
  char errorText_[CURL_ERROR_SIZE] = "";
  std::string_view method_;
  RequestTarget target_;  // of this hop
  bool ownHost_ = true;
  int redirects_ = 0;
  bool stopped_ = false;  // by the delegate
  Hop hop_;
};

}  // namespace orlix
