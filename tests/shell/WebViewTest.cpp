// SPDX-License-Identifier: Apache-2.0

#include <QGuiApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>
#include <csignal>
#include <filesystem>

#include "orlixkit/testing/MemoryHost.h"
#include "shell/PageInput.h"
#include "tests/shell/WebStage.h"

namespace orlix {
// Its header is here for what a server sees, not for the contract.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(HttpClientContract);
}  // namespace orlix

namespace orlix::shell {
namespace {

using Heard = std::vector<std::string>;

std::string html(const std::string& body, const std::string& fields = "", int status = 200) {
  return httpAnswer(status, "Content-Type: text/html\r\n" + fields, body);
}

/// A site that remembers what it was asked.
class Site {
 public:
  using Answer = std::function<std::string(const SeenRequest&)>;

  explicit Site(Answer answer, const Identity& identity = makeIdentity({}, &testRoot()))
      : server_(identity, [this, answer = std::move(answer)](TlsConnection& connection) {
          while (const std::optional<SeenRequest> request = connection.read()) {
            {
              const std::lock_guard guard(lock_);
              requests_.push_back(*request);
            }
            connection.write(answer(*request));
          }
        }) {}
  std::string address(const std::string& path, const std::string& host = "127.0.0.1") const {
    return server_.address(path, host);
  }
  std::int64_t connections() const { return server_.connections(); }
  std::vector<SeenRequest> requests() {
    const std::lock_guard guard(lock_);
    return requests_;
  }

 private:
  std::mutex lock_;
  std::vector<SeenRequest> requests_;
  TlsServer server_;
};

/// The engine's views over TLS.
class QtPages : public WebStage {
 public:
  std::string address(const std::string& path) { return site_.address(path); }
  /// A port that was listened at until now.
  static std::string deadAddress() {
    return Site([](const SeenRequest&) { return ""; }).address("/");
  }
  static std::string endlessScript(WebView&) { return "for (;;);"; }
  void leave(WebView& view) {
    view.evaluateJavaScript("location = '" + address("/next") + "'", {});
  }
  static void kill(WebView& view) {
    QQuickItem* const item = static_cast<QtWebView&>(view).item();
    ::kill(static_cast<pid_t>(item->property("renderProcessPid").toLongLong()), SIGKILL);
  }

 private:
  Site site_{[](const SeenRequest& request) { return html("<p>" + request.path); }};
};

TEST(QtWebView, TellsOfEveryPageAndAnswersForTheOneThatStands) {
  WebStage stage;
  Site site([](const SeenRequest& request) {
    // A page that forbids evaluation to its own scripts.
    return html("<p id=said>" + request.method + " " + request.body,
                "Content-Security-Policy: default-src 'none'\r\n");
  });
  const auto view = stage.newView();
  view->loadHtmlString("<body onload='document.f.submit()'><form name=f method=POST action='" +
                       site.address("/acs") + "'><input name=PaReq value='a+b'></form>");
  EXPECT_EQ(stage.heardNext(), "finished");
  if (site.requests().empty()) {
    EXPECT_EQ(stage.heardNext(), "finished");
  }
  EXPECT_EQ(stage.ask(*view, kMarkup),
            "<html><head></head><body><p id=\"said\">POST PaReq=a%2Bb</p></body></html>");
  EXPECT_EQ(stage.ask(*view, "1 + 1"), "2");
  EXPECT_EQ(stage.ask(*view, "'\"\\n\\u2028</script>'"), "\"\n\u2028</script>");
  EXPECT_EQ(stage.ask(*view, "nobody.knows"), "failed: ReferenceError: nobody is not defined");
  EXPECT_EQ(stage.ask(*view, "1 +").substr(0, 20), "failed: SyntaxError:");
}

TEST(QtWebView, TrustsWhatTheTransportTrustsAndNothingElse) {
  WebStage stage;
  const auto issued = [](const CertificateDraft& draft) {
    return makeIdentity(draft, &testRoot());
  };
  const Identity intermediate = issued({.commonName = "Intermediate", .authority = true});
  Identity longChain = makeIdentity({}, &intermediate);
  longChain.intermediates = {intermediate.certificate};
  const Identity selfSigned = makeIdentity({.commonName = "On its own"});
  const std::string ip = "127.0.0.1";
  struct Row {
    const char* name;
    Identity identity;
    std::string host;
    bool trusted;
  };
  const Row rows[] = {
      {"of the anchor, by address", issued({}), ip, true},
      {"of the anchor, by name", issued({}), "localhost", true},
      {"by a name that ends with a dot", issued({}), "localhost.", true},
      {"by an internationalised name", issued({.names = "DNS:xn--bcher-kva.localhost"}),
       "b\u00FCcher.localhost", true},
      {"by way of an intermediate", longChain, ip, true},
      {"by the subject alone", issued({.commonName = "localhost", .names = ""}), "localhost",
       false},
      {"for another host", issued({.names = "DNS:wallet.example"}), ip, false},
      {"for the address, asked by name", issued({.names = "IP:127.0.0.1"}), "localhost", false},
      {"expired", issued({.validToHours = -1}), ip, false},
      {"not valid yet", issued({.validFromHours = 1, .validToHours = 2}), ip, false},
      {"of an unknown issuer", selfSigned, ip, false},
      {"for clients only", issued({.purpose = "clientAuth"}), ip, false}};
  const auto view = stage.newView();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Site site([](const SeenRequest&) { return html("<p>"); }, row.identity);
    view->loadRequest(site.address("/", row.host));
    EXPECT_EQ(stage.heardNext() == "finished", row.trusted);
    EXPECT_EQ(site.requests().empty(), !row.trusted);
  }
  // Others on a trusted page are judged by the same rule.
  Site stranger([](const SeenRequest&) { return html("<p>"); }, selfSigned);
  view->loadHtmlString("<img src='" + stranger.address("/i") + "'><iframe src='" +
                       stranger.address("/f") + "'></iframe>");
  EXPECT_EQ(stage.heardNext(), "finished");
  EXPECT_GT(stranger.connections(), 0);
  EXPECT_TRUE(stranger.requests().empty());
}

TEST(QtWebView, JudgesACertificateByTheHostsNameInAscii) {
  for (const auto& [address, host] : Fields{{"https://b\u00FCcher.de/", "xn--bcher-kva.de"},
                                            {"https://xn--bcher-kva.de:444/", "xn--bcher-kva.de"},
                                            {"https://wallet.example./x", "wallet.example."},
                                            {"https://127.0.0.1:1/", "127.0.0.1"},
                                            {"https://[::1]:1/", "::1"}}) {
    EXPECT_EQ(QtWebView::certificateHostOf(QUrl(QString::fromStdString(address))), host);
  }
}

TEST(QtWebView, LeavesNothingOfAPageForTheNext) {
  WebStage stage;
  Site site([](const SeenRequest&) {
    return html(
        "<script>document.title = localStorage.seen || 'new'; localStorage.seen = 'again'"
        "</script>",
        "Set-Cookie: holder=known; Max-Age=86400\r\nCache-Control: max-age=900\r\n");
  });
  const auto visit = [&](QtWebView& view) {
    view.loadRequest(site.address("/"));
    EXPECT_EQ(stage.heardNext(), "finished");
    return site.requests().back().field("Cookie").value_or("none") + ", " +
           stage.ask(view, "document.title");
  };
  auto view = stage.newView();
  EXPECT_EQ(visit(*view), "none, new");
  EXPECT_EQ(visit(*view), "holder=known, again") << "while it lives it is a browser as any";
  EXPECT_EQ(visit(*stage.newView()), "none, new") << "beside it";
  view.reset();
  EXPECT_EQ(visit(*stage.newView()), "none, new") << "after it";
  EXPECT_EQ(site.requests().size(), 4u) << "nothing is kept to be shown again";
}

TEST(QtWebView, TakesNothingFromTheEnvironmentAndSendsNoLanguage) {
  WebStage stage;
  Site site([](const SeenRequest& request) {
    return html(request.path == "/" ? "<img src=/i><iframe src=/f></iframe><script>fetch('/x');"
                                      "new WebSocket('wss://' + location.host + '/w')</script>"
                                    : "");
  });
  const auto view = stage.newView();
  view->loadHtmlString("<body onload='f.submit()'><form id=f method=POST action='" +
                       site.address("/") + "'></form>");
  while (site.requests().size() < 5) {
    stage.ask(*view, "1");  // the engine goes on meanwhile
  }
  for (const SeenRequest& request : site.requests()) {
    EXPECT_EQ(request.field("User-Agent").value_or("spy").find("spy"), std::string::npos);
    EXPECT_EQ(request.field("Accept-Language"), std::nullopt) << request.path;
  }
  const QList<QByteArray> spy = qgetenv("ORLIX_TEST_SPY").split(' ');
  EXPECT_FALSE(std::filesystem::exists(spy[1].toStdString())) << "session keys";
  QTcpSocket debugger;
  debugger.connectToHost("127.0.0.1", spy[0].split(':')[1].toUShort());
  EXPECT_FALSE(debugger.waitForConnected(5000)) << "the debugging port is open";
}

TEST(QtWebView, LeavesAPageNoPeerConnectionAndNoneOverUdpInAnyCase) {
  WebStage stage;
  QUdpSocket udp;
  udp.bind(QHostAddress::LocalHost);
  const std::string connect =
      "const c = new Peer({iceServers: [{urls: 'turn:127.0.0.1:" + std::to_string(udp.localPort()) +
      "', username: 'u', credential: 'p'}]});"
      "c.onicegatheringstatechange = function() {"
      "  if (c.iceGatheringState === 'complete') document.title = 'gathered' };"
      "c.createDataChannel('d'); c.createOffer().then(function(o) { c.setLocalDescription(o) });";
  const std::string frame = "const f = document.createElement('iframe');";
  const std::string shadow = "const s = document.createElement('p'); body.append(s);" + frame +
                             "s.attachShadow({mode: 'open'}).append(f);";
  struct Row {
    const char* name;
    std::string peer;  // how the page comes by the interface
    const char* found = "undefined";
  };
  const Row rows[] = {
      {"of the page", "Peer = window.RTCPeerConnection"},
      {"by its former name", "Peer = window.webkitRTCPeerConnection"},
      {"of a frame", "Peer = frames[0].RTCPeerConnection"},
      {"of a frame with a text", "Peer = frames[1].RTCPeerConnection"},
      {"of an empty frame", frame + "body.append(f); Peer = frames[2].RTCPeerConnection"},
      {"of a frame in a text",
       "body.innerHTML = '<iframe></iframe>'; Peer = frames[0].RTCPeerConnection"},
      {"of a hidden frame", shadow + "Peer = f.contentWindow.RTCPeerConnection"},
      {"of a hidden frame's page",
       shadow + "Peer = f.contentDocument.defaultView.RTCPeerConnection"},
      // The engine gives no notice of it before the page's own script goes on.
      {"of a frame that is written",
       "document.write('<iframe></iframe>'); Peer = frames[2].RTCPeerConnection", "gathered"}};
  const auto view = stage.newView();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    view->loadHtmlString(
        "<body id=body><iframe></iframe><iframe srcdoc='<p>'></iframe><script>"
        "let Peer; {" +
        row.peer + "} document.title = typeof Peer;" + "if (Peer) {" + connect + "}</script>");
    EXPECT_EQ(stage.heardNext(), "finished");
    std::string found;
    while ((found = stage.ask(*view, "document.title")) == "function") {
    }
    EXPECT_EQ(found, row.found);
    EXPECT_FALSE(udp.hasPendingDatagrams());
  }
  EXPECT_EQ(stage.ask(*view, "typeof WebTransport"), "undefined");
}

TEST(QtWebView, ReportsAPageThatItsOwnScriptLeavesByTheOneThatItLeadsToOnly) {
  WebStage stage;
  Site site([](const SeenRequest& request) { return html("<p>" + request.path); });
  const auto view = stage.newView();
  const std::string address = site.address("/next");
  for (const std::string& leave : Heard{"location = '" + address + "'",
                                        "onload = function() { location = '" + address + "' }"}) {
    view->loadHtmlString("<script>" + leave + "</script><p>left");
    EXPECT_EQ(stage.heardNext(), "finished");
    EXPECT_NE(stage.ask(*view, kMarkup).find("/next"), std::string::npos) << leave;
    stage.settle();
    EXPECT_EQ(stage.reader->heard, Heard{});
  }
}

TEST(QtWebView, RefusesWhatAPageHasNoBusinessWith) {
  WebStage stage;
  MemoryHost host;  // for its log
  Site elsewhere([](const SeenRequest&) { return html("<p>"); });
  // This machine, but by a name that any page of the world may use.
  const std::string plain = "http://0.0.0.0" + elsewhere.address("/", "").substr(8);
  Site site(
      [&plain](const SeenRequest&) { return httpAnswer(302, "Location: " + plain + "\r\n", ""); });
  const std::string told = "The address " + plain + " is not secure.";
  const std::string secret = "'file:///etc/passwd'";
  struct Row {
    const char* name;
    std::string does;  // in the page's own script
    std::string logged = {};
  };
  const Row rows[] = {
      {"a window by script", "window.open(other)"},
      {"a window by a link", "a.target = '_blank'; a.href = other; a.click()"},
      {"a window by a form", "f.target = '_blank'; f.action = other; f.submit()"},
      {"a file in a frame", "i.src = " + secret},
      {"a file by request", "fetch(" + secret + ").then(function() { location = other })"},
      {"a file in its place", "location = " + secret,
       "The address file:///etc/passwd is not secure."},
      {"a question", "alert('?'); if (confirm('?') || prompt('?')) location = other"},
      {"another program", "setTimeout(function() { location = 'mailto:nobody@bank.example' })"},
      {"a plain picture", "new Image().src = plain"},
      {"a plain request", "fetch(plain, { mode: 'no-cors' })"},
      {"a plain frame", "i.src = plain"},
      {"a plain address", "location = plain", told},
      {"a plain form", "f.method = 'POST'; f.action = plain; f.submit()", told},
      {"a redirect to a plain address", "location = '" + site.address("/") + "'", told},
      {"a plain address while it is read", "}; location = plain; {", told}};
  const auto view = stage.newView();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto windows = QGuiApplication::topLevelWindows().size();
    view->loadHtmlString("<a id=a>a</a><form id=f></form><iframe id=i></iframe><script>other = '" +
                         elsewhere.address("/") + "'; plain = '" + plain +
                         "'; onload = function() {" + row.does + "}</script>");
    stage.runUntil([&] { return !stage.reader->heard.empty(); });
    stage.settle();
    EXPECT_EQ(stage.reader->heard, Heard{"finished"}) << "the page itself, which stays";
    EXPECT_NE(stage.ask(*view, kMarkup).find("id=\"a\""), std::string::npos);
    EXPECT_TRUE(row.logged.empty() || host.log().contains(row.logged)) << host.log().text();
    host.log().clear();
    stage.reader->heard.clear();
    EXPECT_EQ(elsewhere.connections(), 0);
    EXPECT_EQ(QGuiApplication::topLevelWindows().size(), windows);
  }
}

TEST(QtWebView, ShowsAPageOfAnySizeThatItCanAndSaysWhenItCannot) {
  WebStage stage;
  const auto view = stage.newView();
  const std::string large = "<p>one</p><!--" + std::string(1'400'000, 'x') + "-->";
  view->loadHtmlString(large);
  EXPECT_EQ(stage.heardNext(), "finished");
  EXPECT_GT(stage.ask(*view, kMarkup).size(), large.size());
  for (const std::string& tooLarge : {large + large, std::string(900'000, '<')}) {
    view->loadHtmlString(tooLarge);
    EXPECT_EQ(stage.heardNext(), "failed: A page of " + std::to_string(tooLarge.size()) +
                                     " bytes is too large to be shown.");
  }
  Site site([&](const SeenRequest&) { return html(large + large + large, "", 500); });
  for (int i = 0; i < 2; ++i) {  // the same address again
    view->loadRequest(site.address("/"));
    EXPECT_EQ(stage.heardNext(), "finished") << "a server's own account of an error is a page";
    EXPECT_GT(stage.ask(*view, kMarkup).size(), 3 * large.size());
  }
  EXPECT_EQ(site.requests().size(), 2u);
}

TEST(PageInput, DoesWhatAFingerCanAndSaysWhatItCannot) {
  WebStage stage;
  const auto view = stage.newView();
  PageInput finger(stage.queue, [&] { return view; });
  view->loadHtmlString(
      "<input id=t maxlength=4 oninput='h.textContent += event.data'><input id=r readonly>"
      "<button id=d disabled>d</button><p id=\"q'\" onclick='this.remove()'>q</p><p hidden "
      "id=h></p>");
  finger.wait("#h");
  finger.type("#t", "a\"b");
  finger.type("#t", "\u00e9z");
  EXPECT_EQ(stage.ask(*view, "document.getElementById('t').value + h.textContent"),
            "a\"b\u00e9a\"b\u00e9");
  finger.click("[id=\"q'\"]");
  const auto click = [&](const char* selector) { finger.click(selector); };
  const auto type = [&](const char* selector) { finger.type(selector, "x"); };
  const auto wait = [&](const char* selector) { finger.wait(selector); };
  const auto waitInVain = [&](const char* selector) {
    finger.wait(selector, std::chrono::milliseconds(60));
  };
  const std::tuple<std::function<void(const char*)>, const char*, const char*> rows[] = {
      {click, "[id=\"q'\"]", "[id=\"q'\"] is not on the page"},
      {type, "#r", "#r takes no text"},
      {click, "#d", "#d is disabled"},
      {click, "#h", "#h cannot be seen"},
      {click, "#[", "the page refuses #[: SyntaxError"},
      {wait, "#[", "the page refuses #[: SyntaxError"},
      {waitInVain, "#none", "#none has not come"}};
  for (const auto& [doing, selector, reason] : rows) {
    try {
      doing(selector);
      ADD_FAILURE() << selector << " was touched";
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(std::string(error.what()).substr(0, std::string(reason).size()), reason);
    }
  }
}

using orlix::WebViewContract;
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, WebViewContract, QtPages);

}  // namespace
}  // namespace orlix::shell
