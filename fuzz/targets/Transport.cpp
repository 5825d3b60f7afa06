// SPDX-License-Identifier: Apache-2.0

// Bytes that a server sends, from the TLS connection to what the client is given. An input is the
// server's answers, one for each connection, with "\n====\n" between them.

#include <algorithm>
#include <cctype>
#include <fstream>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "fuzz/LocalNetwork.h"
#include "fuzz/RawServer.h"
#include "fuzz/Target.h"
#include "orlixkit/posix/PosixPorts.h"
#include "orlixkit/protocol/OMNetwork.h"
#include "tests/TemporaryFolder.h"

namespace orlix::fuzz {

namespace {

constexpr std::string_view kBetween = "\n====\n";
constexpr std::string_view kSent = R"({"pinBlock":"0123456789ABCDEF"})";

/// Says nothing; looks at what would be said.
class CheckedLog : public SystemLog {
 public:
  void write(std::string_view line) override {
    const std::string written = PosixSystemLog::escaped(line);
    check(std::none_of(written.begin(), written.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }),
          "a message is one line");
  }
};

/// The phone and its server, for as long as the process lives.
class World {
 public:
  World() {
    std::ofstream(anchor()) << root_.pem();
    Ports ports = makePosixPorts({.applicationName = "fuzz",
                                  .stateDirectory = folder_.path(),
                                  .anchorFile = anchor(),
                                  .resourceDirectories = {},
                                  .bundles = {},
                                  .logTarget = LogTarget::stderrOnly,
                                  .location = {}});
    ports.log = std::make_shared<CheckedLog>();
    Host::install(std::make_shared<Host>(std::move(ports), Deployment{base(), base(), base()}));
    leadEverywhereTo(static_cast<std::uint16_t>(server_.port()));
  }
  ~World() { Host::uninstall(); }
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  RawServer& server() { return server_; }
  std::string origin() const { return fmt::format("127.0.0.1:{}", server_.port()); }
  std::string base() const { return "https://" + origin() + "/vello"; }

 private:
  std::filesystem::path anchor() const { return folder_.path() / "root.pem"; }

  const Identity root_ = makeIdentity({.commonName = "Fuzzing root", .authority = true});
  const test::TemporaryFolder folder_;
  RawServer server_{makeIdentity({}, &root_)};
};

std::vector<std::string> answersOf(std::string_view text) {
  std::vector<std::string> answers;
  while (true) {
    const std::size_t end = text.find(kBetween);
    answers.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) {
      return answers;
    }
    text.remove_prefix(end + kBetween.size());
  }
}

bool holdsLocation(std::string answer) {
  std::transform(answer.begin(), answer.end(), answer.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return answer.find("location:") != std::string::npos;
}

/// A payment is in these requests.
void isSentOnce(const std::vector<sandbox::HttpRequest>& requests,
                const std::vector<std::string>& answers, const std::string& origin) {
  for (std::size_t i = 0; i < requests.size(); ++i) {
    const sandbox::HttpRequest& request = requests[i];
    check(i == 0 || (i <= answers.size() && holdsLocation(answers[i - 1])),
          "only a redirect sends a request again");
    const bool posted = request.method == "POST";
    check(i > 0 || posted, "what is sent is a POST");
    check(request.body == (posted ? kSent : ""), "a POST has the body, a GET has none");
    const bool tokens = request.sessionToken1() == "T1";
    const bool own = request.header("Host") == origin;
    check(i > 0 || (own && tokens), "the server is sent the session's tokens");
    check(own || !tokens, "nobody else is sent the session's tokens");
  }
}

/// Of a plain answer the client is given the body to the byte.
void isPlainAnswer(const std::string& answer, const NetworkResult& result) {
  constexpr std::string_view kStart = "HTTP/1.1 200 OK\r\nContent-Length: ";
  if (!answer.starts_with(kStart)) {
    return;
  }
  const std::string rest = answer.substr(kStart.size());
  const std::size_t digits = rest.find_first_not_of("0123456789");
  if (digits == 0 || digits > 6 || rest.compare(digits, 4, "\r\n\r\n") != 0) {
    return;
  }
  const std::size_t length = std::stoul(rest.substr(0, digits));
  const std::string_view body = std::string_view(rest).substr(digits + 4);
  check(result.responseCode == 200, "a plain answer has its code");
  check(result.payload.has_value() == (body.size() >= length), "only a whole body is handed out");
  check(!result.payload || textOf(result.payload->reveal()) == body.substr(0, length),
        "a plain answer has its body");
}

}  // namespace

void transport(ByteView input) {
  static World world;
  const std::vector<std::string> answers = answersOf(textOf(input));
  world.server().prepare(answers);
  DataStore store(SecretBytes(16, 0));
  store.sessionId = "T1";
  const NetworkResult result =
      OMNetwork().post(world.base() + "/purchase", SecretBytes(toBytes(kSent)), store);
  const std::vector<sandbox::HttpRequest> requests = world.server().requests();
  check(!requests.empty(), "the server is reached");
  isSentOnce(requests, answers, world.origin());
  check(result.responseCode >= 0 && result.responseCode <= 999, "a code has three digits");
  check(!result.payload || result.responseCode >= 100, "a body comes with its code");
  check(!result.payload || result.payload->size() <= input.size(), "no body comes from nowhere");
  isPlainAnswer(answers[0], result);
}

}  // namespace orlix::fuzz
