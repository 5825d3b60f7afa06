// SPDX-License-Identifier: Apache-2.0

// The server byte by byte: what it makes of each form of request, and how it answers.

#include <array>
#include <chrono>
#include <unistd.h>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "sandbox/Answering.h"
#include "sandbox/UrlEncoding.h"

namespace orlix::sandbox::test {
namespace {

/// One plain connection to a port of this machine.
class RawClient {
 public:
  explicit RawClient(int port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    ::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address);
  }
  ~RawClient() { ::close(socket_); }
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;

  void send(std::string_view bytes) const {
    ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
  }
  /// Reads until these bytes have come, or the server has closed.
  std::string readUntil(std::string_view end) {
    std::array<char, 4096> piece{};
    ssize_t got = 1;
    while (received_.find(end) == std::string::npos && got > 0) {
      got = ::recv(socket_, piece.data(), piece.size(), 0);
      if (got > 0) received_.append(piece.data(), static_cast<size_t>(got));
    }
    return received_;
  }
  std::string readAll() { return readUntil("no such bytes"); }

 private:
  int socket_;
  std::string received_;
};

class Answers : public testing::Test {
 protected:
  /// Says what it was asked for.
  static HttpAnswer echo(const HttpRequest& request) {
    std::string body = fmt::format("<{} {} {}", request.method, request.path, request.body);
    for (const auto& [name, value] : request.form) body += fmt::format(" {}={}", name, value);
    return {.body = body + ">", .contentType = "text/plain"};
  }

  Shutdown shutdown_;
  HttpServer server_{{.serve = answering(&echo, shutdown_), .longestBody = 100}, shutdown_};
  const int port_ = server_.start();
};

TEST_F(Answers, EveryFormOfRequestIsUnderstoodOrRefused) {
  const std::string form = "Content-Type: application/x-www-form-urlencoded\r\n";
  struct Row {
    const char* name;
    std::string request;
    std::string answer;  ///< Its beginning.
    std::string holds;
  };
  for (const Row& row : std::vector<Row>{
           {"a POST without a length has no body", "POST /a HTTP/1.1\r\nHost: h\r\n\r\n",
            "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 10\r\n\r\n",
            "<POST /a >"},
           {"a body", "POST /a HTTP/1.1\r\nContent-Length: 3\r\n\r\nabc", "HTTP/1.1 200",
            "<POST /a abc>"},
           {"a body in chunks",
            "POST /a HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n1\r\na\r\n2\r\nbc\r\n0\r\n\r\n",
            "HTTP/1.1 200", "<POST /a abc>"},
           {"an expectation",
            "POST /a HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 1\r\n\r\na",
            "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200", "<POST /a a>"},
           {"an encoded path and query", "GET /a%20b+c%zz?x=1+2&y=%26&z HTTP/1.1\r\n\r\n",
            "HTTP/1.1 200", "<GET /a b+c%zz  x=1 2 y=& z=>"},
           {"a posted form", "POST /a?x=1 HTTP/1.1\r\n" + form + "Content-Length: 3\r\n\r\ny=2",
            "HTTP/1.1 200", "<POST /a y=2 x=1 y=2>"},
           {"two at once", "GET /a HTTP/1.1\r\n\r\nGET /b HTTP/1.1\r\n\r\n", "HTTP/1.1 200",
            "<GET /b >"},
           {"the last one", "GET /a HTTP/1.1\r\nConnection: close\r\n\r\n",
            "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 9\r\n"
            "Connection: close\r\n\r\n",
            "<GET /a >"},
           {"an old client", "GET /a HTTP/1.0\r\n\r\n", "HTTP/1.1 200",
            "Connection: close\r\n\r\n<GET /a >"},
           {"no HTTP", "\x16\x03\x01 hello\r\n\r\n", "HTTP/1.1 400 Bad Request", "\r\n\r\n"},
           {"a length that is none", "POST /a HTTP/1.1\r\nContent-Length: x\r\n\r\n",
            "HTTP/1.1 400", "Connection: close\r\n\r\n"},
           {"a long body", "POST /a HTTP/1.1\r\nContent-Length: 101\r\n\r\n", "HTTP/1.1 413",
            "Connection: close\r\n\r\n"},
           {"a long header", "GET /a HTTP/1.1\r\nX: " + std::string(300'000, 'x'), "HTTP/1.1 431",
            "Connection: close\r\n\r\n"},
       }) {
    RawClient client(port_);
    const auto begun = std::chrono::steady_clock::now();
    client.send(row.request);
    const std::string answer = client.readUntil(row.holds);
    EXPECT_TRUE(answer.starts_with(row.answer)) << row.name << ": " << answer;
    EXPECT_NE(answer.find(row.holds), std::string::npos) << row.name << ": " << answer;
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(10)) << row.name;
  }
}

TEST_F(Answers, AHeadRequestGetsTheHeaderAlone) {
  RawClient client(port_);
  client.send("HEAD /a HTTP/1.1\r\n\r\nGET /b HTTP/1.0\r\n\r\n");
  const std::string answers = client.readAll();
  EXPECT_EQ(answers.find("<HEAD"), std::string::npos);
  EXPECT_NE(answers.find("Content-Length: 10\r\n\r\nHTTP/1.1 200"), std::string::npos) << answers;
}

TEST(HttpServer, ServesOneAddressAndSaysWhichItCannotHave) {
  Shutdown shutdown;
  const auto serve = [](Connection& connection) { return connection.write("not HTTP at all"); };
  HttpServer server({.address = "127.0.0.1", .serve = serve}, shutdown);
  const int port = server.start();
  HttpServer second({.address = "127.0.0.2", .serve = serve}, shutdown);
  EXPECT_EQ(second.start(port), port);
  EXPECT_EQ(RawClient(port).readAll(), "not HTTP at all") << "whatever bytes are wished";
  for (const char* address : {"127.0.0.2", "203.0.113.1", "no address"}) {
    HttpServer other({.address = address, .serve = serve}, shutdown);
    try {
      other.start(port);
      ADD_FAILURE() << address;
    } catch (const std::runtime_error& failure) {
      EXPECT_NE(std::string(failure.what()).find(address), std::string::npos) << failure.what();
    }
  }
}

}  // namespace
}  // namespace orlix::sandbox::test
