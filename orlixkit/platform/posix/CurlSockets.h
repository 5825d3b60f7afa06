#pragma once

#include <map>

#include <curl/curl.h>

namespace orlix {

/// The sockets of one multi handle. libcurl tells a callback which ports a connection uses, not
/// which socket; and it takes a connection for alive whose server has said that it closes it.
class CurlSockets {
 public:
  curl_socket_t open(const curl_sockaddr& address);
  /// CURLOPT_CLOSESOCKETFUNCTION; `self` is the CurlSockets.
  static int onClose(void* self, curl_socket_t socket);

  /// Whether the connection between these ports is open and has brought nothing that waits to be
  /// read: before a request there is nothing to come but the server's closing words.
  bool isIdle(int localPort, int serverPort);

 private:
  /// Zero until somebody has asked for them once the socket was connected.
  struct Ports {
    int local = 0;
    int server = 0;
  };
  std::map<curl_socket_t, Ports> sockets_;
};

}  // namespace orlix
