#include <QGuiApplication>
#include <csignal>

#include "shell/PageFinger.h"
#include "tests/shell/WebStage.h"

namespace orlix {
// Its header is here for what a server sees, not for the contract.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(UrlConnectionsContract);
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
  int connections() const { return server_.connections(); }
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
      {"by way of an intermediate", longChain, ip, true},
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

TEST(QtWebView, RefusesWhatAPageHasNoBusinessWith) {
  WebStage stage;
  Site elsewhere([](const SeenRequest&) { return html("<p>"); });
  // This machine, but by a name that any page of the world may use.
  const std::string plain = "http://0.0.0.0" + elsewhere.address("/", "").substr(8);
  Site site(
      [&plain](const SeenRequest&) { return httpAnswer(302, "Location: " + plain + "\r\n", ""); });
  const std::string told = "failed: The address " + plain + " is not secure.";
  const std::string secret = "'file:///etc/passwd'";
  struct Row {
    const char* name;
    std::string does;  // in the page's own script
    std::string heard = {};
  };
  const Row rows[] = {
      {"a window by script", "window.open(other)"},
      {"a window by a link", "a.target = '_blank'; a.href = other; a.click()"},
      {"a window by a form", "f.target = '_blank'; f.action = other; f.submit()"},
      {"a file in a frame", "i.src = " + secret},
      {"a file by request", "fetch(" + secret + ").then(function() { location = other })"},
      {"a file in its place", "location = " + secret,
       "failed: The address file:///etc/passwd is not secure."},
      {"a question", "alert('?'); if (confirm('?') || prompt('?')) location = other"},
      {"another program", "setTimeout(function() { location = 'mailto:nobody@bank.example' })"},
      {"a plain picture", "new Image().src = plain"},
      {"a plain request", "fetch(plain, { mode: 'no-cors' })"},
      {"a plain frame", "i.src = plain"},
      {"a plain address", "location = plain", told},
      {"a plain form", "f.method = 'POST'; f.action = plain; f.submit()", told},
      {"a redirect to a plain address", "location = '" + site.address("/") + "'", told}};
  const auto view = stage.newView();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto windows = QGuiApplication::topLevelWindows().size();
    view->loadHtmlString("<a id=a>a</a><form id=f></form><iframe id=i></iframe><script>other = '" +
                         elsewhere.address("/") + "'; plain = '" + plain +
                         "'; onload = function() {" + row.does + "}</script>");
    stage.runUntil([&] { return !stage.reader->heard.empty(); });
    stage.settle();
    std::erase(stage.reader->heard, "finished");  // the page itself; nothing else can finish
    EXPECT_EQ(stage.reader->heard, row.heard.empty() ? Heard{} : Heard{row.heard});
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
  for (int i = 0; i < 2; ++i) {  // the same address is asked for anew
    view->loadRequest(site.address("/"));
    EXPECT_EQ(stage.heardNext(), "finished") << "a server's own account of an error is a page";
    EXPECT_GT(stage.ask(*view, kMarkup).size(), 3 * large.size());
  }
  EXPECT_EQ(site.requests().size(), 2u);
}

TEST(QtWebView, APageThatWasStoppedReachesNobody) {
  WebStage stage;
  Site site([](const SeenRequest&) { return html("<p>"); });
  const auto view = stage.newView();
  view->loadHtmlString("<script>setTimeout(function(){location='" + site.address("/late") +
                       "'},20)</script>");
  EXPECT_EQ(stage.heardNext(), "finished");
  view->stopLoading();
  stage.settle();
  EXPECT_EQ(stage.reader->heard, Heard{});
  EXPECT_EQ(site.connections(), 0);
}

TEST(PageFinger, DoesWhatAFingerCanAndSaysWhatItCannot) {
  WebStage stage;
  const auto view = stage.newView();
  PageFinger finger(stage.queue, [&] { return view; });
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
