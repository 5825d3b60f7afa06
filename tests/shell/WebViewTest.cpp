#include <QGuiApplication>
#include <csignal>

#include "tests/shell/WebStage.h"

namespace orlix {
// Its header is here for what a server sees, not for the contract.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(UrlConnectionsContract);
}  // namespace orlix

namespace orlix::shell {
namespace {

using Heard = std::vector<std::string>;

const std::string kMarkup = "document.documentElement.outerHTML";

TEST(QtWebView, TellsOfEveryPageAndAnswersForTheOneThatStands) {
  WebStage stage;
  Site site([](const SeenRequest& request) {
    // A page that forbids evaluation to its own scripts.
    return htmlAnswer("<p id=said>" + request.method + " " + request.body + "</p>",
                      "Content-Security-Policy: default-src 'none'\r\n");
  });
  const auto view = stage.newView();
  EXPECT_EQ(stage.ask(*view, "1"), "failed: There is no page.");
  view->loadHtmlString("<body onload='document.f.submit()'><form name=f method=POST action='" +
                       site.address("/acs") + "'><input name=PaReq value='a+b'></form>");
  EXPECT_TRUE(stage.reader->heard.empty()) << "never from inside the call";
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
  struct Row {
    const char* name;
    Identity identity;
    const char* host;
    bool trusted;
  };
  for (const Row& row : std::initializer_list<Row>{
           {"of the anchor, by address", issued({}), "127.0.0.1", true},
           {"of the anchor, by name", issued({}), "localhost", true},
           {"by way of an intermediate", longChain, "127.0.0.1", true},
           {"for another host", issued({.names = "DNS:wallet.example"}), "127.0.0.1", false},
           {"for the address, asked by name", issued({.names = "IP:127.0.0.1"}), "localhost",
            false},
           {"expired", issued({.validToHours = -1}), "127.0.0.1", false},
           {"not valid yet", issued({.validFromHours = 1, .validToHours = 2}), "127.0.0.1", false},
           {"of an unknown issuer", selfSigned, "127.0.0.1", false},
           {"for clients only", issued({.purpose = "clientAuth"}), "127.0.0.1", false}}) {
    SCOPED_TRACE(row.name);
    Site site([](const SeenRequest&) { return htmlAnswer("<p>hello"); }, row.identity);
    const auto view = stage.newView();
    view->loadRequest(site.address("/", row.host));
    const std::string heard = stage.heardNext();
    EXPECT_EQ(heard == "finished", row.trusted) << heard;
    EXPECT_EQ(heard.substr(0, 7) == "failed:", !row.trusted) << heard;
    EXPECT_EQ(site.requests().empty(), !row.trusted);
  }
  // Others on a trusted page are judged by the same rule.
  Site stranger([](const SeenRequest&) { return htmlAnswer("<p>stranger"); }, selfSigned);
  Site site([&](const SeenRequest&) {
    return htmlAnswer("<img src='" + stranger.address("/i.png") + "'><iframe src='" +
                      stranger.address("/frame") + "'></iframe>");
  });
  stage.newView()->loadRequest(site.address("/"));
  const auto view = stage.newView();
  view->loadRequest(site.address("/"));
  EXPECT_EQ(stage.heardNext(), "finished");
  EXPECT_TRUE(stranger.requests().empty());
}

TEST(QtWebView, LeavesNothingOfAPageForTheNext) {
  WebStage stage;
  Site site([](const SeenRequest&) {
    return htmlAnswer(
        "<script>document.title = localStorage.seen || 'new';"
        "localStorage.seen = 'again';</script>",
        "Set-Cookie: holder=known; Max-Age=86400; Secure\r\nCache-Control: max-age=900\r\n");
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
  Site site([&](const SeenRequest& request) {
    if (request.path.starts_with("/to/")) {
      return httpAnswer(302, "Location: http://bank.example/\r\n", "");
    }
    return htmlAnswer(
        "<a id=a>a</a><form id=f></form><iframe id=i></iframe><input id=u type=file>");
  });
  const std::string secret = "file:///etc/passwd";
  struct Row {
    const char* name;
    std::string does;   // in the page's own script, after it has loaded
    std::string heard;  // after that; empty: nothing
    std::size_t requests = 1;
  };
  const std::string plain = "failed: The address http://bank.example/ is not secure.";
  for (const Row& row : std::vector<Row>{
           {"a window by script", "window.open('/opened')", ""},
           {"a window by a link", "a.target = '_blank'; a.href = '/opened'; a.click()", ""},
           {"a window by a form", "f.target = '_blank'; f.action = '/opened'; f.submit()", ""},
           {"a file in a frame", "i.src = '" + secret + "'", ""},
           {"a file by request", "fetch('" + secret + "').catch(function(){})", ""},
           {"the user's file", "u.click()", ""},
           {"a question", "alert('?'); confirm('?'); prompt('?')", ""},
           {"another program", "location = 'mailto:nobody@bank.example'", ""},
           {"a plain frame", "i.src = 'http://bank.example/'", ""},
           {"a plain address", "location = 'http://bank.example/'", plain, 1},
           {"a plain redirect", "location = '/to/plain'", plain, 2},
           {"a secure address", "location = '/opened'", "finished", 2}}) {
    SCOPED_TRACE(row.name);
    stage.reader->heard.clear();
    const std::size_t before = site.requests().size();
    const auto windows = QGuiApplication::topLevelWindows().size();
    const auto view = stage.newView();
    view->loadRequest(site.address("/page"));
    EXPECT_EQ(stage.heardNext(), "finished");
    // As a script of the page's own.
    stage.ask(*view, "var s = document.createElement('script'); s.textContent = \"" + row.does +
                         "\"; document.body.append(s)");
    stage.settle();
    EXPECT_EQ(stage.reader->heard, row.heard.empty() ? Heard{} : Heard{row.heard});
    EXPECT_EQ(site.requests().size() - before, row.requests);
    EXPECT_EQ(QGuiApplication::topLevelWindows().size(), windows);
    EXPECT_EQ(stage.ask(*view,
                        "var i = document.getElementById('i');"
                        "i && i.contentDocument ? i.contentDocument.body.innerText : ''"),
              "");
  }
  stage.reader->heard.clear();
  const auto view = stage.newView();
  for (const char* address : {"file:///etc/passwd", "http://bank.example/", "javascript:1",
                              "chrome://version", "data:text/html,x", "no address", ""}) {
    view->loadRequest(address);
    EXPECT_EQ(stage.heardNext(), "failed: The address " + std::string(address) + " is not secure.");
  }
}

TEST(QtWebView, ShowsAPageOfAnySizeThatItCanAndSaysWhenItCannot) {
  WebStage stage;
  const auto view = stage.newView();
  const std::string large(1'400'000, 'x');
  view->loadHtmlString("<p>one</p><!--" + large + "-->");
  EXPECT_EQ(stage.heardNext(), "finished");
  EXPECT_GT(stage.ask(*view, kMarkup).size(), large.size());
  view->loadHtmlString("<p>one</p><!--" + large + large);
  EXPECT_EQ(stage.heardNext(), "failed: A page of 2800014 bytes is too large to be shown.");
  const std::string escaped(900'000, '<');  // three times as long on its way
  view->loadHtmlString(escaped);
  EXPECT_EQ(stage.heardNext(), "failed: A page of 900000 bytes is too large to be shown.");
  Site site([](const SeenRequest&) {
    return htmlAnswer("<p>Sorry<!--" + std::string(5'000'000, '.') + "-->", "", 500);
  });
  view->loadRequest(site.address("/"));
  EXPECT_EQ(stage.heardNext(), "finished") << "an error that the server words itself is a page";
  EXPECT_GT(stage.ask(*view, kMarkup).size(), 5'000'000u);
}

TEST(QtWebView, FailsWithoutAServerAndLoadsTheSameAddressAgain) {
  WebStage stage;
  const auto view = stage.newView();
  std::string address;
  {
    Site gone([](const SeenRequest&) { return htmlAnswer("<p>"); });
    address = gone.address("/");
  }
  for (int i = 0; i < 2; ++i) {
    view->loadRequest(address);
    EXPECT_EQ(stage.heardNext().substr(0, 8), "failed: ");
  }
  Site site([](const SeenRequest&) { return htmlAnswer("<p>"); });
  for (int i = 0; i < 2; ++i) {
    view->loadRequest(site.address("/"));
    EXPECT_EQ(stage.heardNext(), "finished");
  }
  EXPECT_EQ(site.requests().size(), 2u);
}

/// What becomes of a script that is under way when the page ends in some manner.
TEST(QtWebView, AnswersForAScriptWhateverBecomesOfItsPage) {
  WebStage stage;
  Site site([](const SeenRequest&) { return htmlAnswer("<p>another"); });
  struct Row {
    const char* name;
    std::function<void(std::shared_ptr<QtWebView>&)> end;
    std::string answer;
    Heard heard;
  };
  for (const Row& row : std::vector<Row>{
           {"released", [](auto& view) { view.reset(); }, "The page view was released.", {}},
           {"stopped", [](auto& view) { view->stopLoading(); }, "Loading was stopped.", {}},
           {"left",
            [&](auto& view) { view->loadRequest(site.address("/")); },
            "The page was left before it answered.",
            {"finished"}},
           {"its process died",
            [](auto& view) {
              ::kill(static_cast<pid_t>(view->item()->property("renderProcessPid").toLongLong()),
                     SIGKILL);
            },
            "The page's process has ended.",
            {"died"}}}) {
    SCOPED_TRACE(row.name);
    stage.reader->heard.clear();
    auto view = stage.newView();
    view->loadHtmlString("<p>one");
    ASSERT_EQ(stage.heardNext(), "finished");
    std::vector<std::string> answers;
    view->evaluateJavaScript("for (;;);", [&answers](const ScriptResult& result) {
      answers.push_back(result.value.value_or(result.error));
    });
    row.end(view);
    EXPECT_TRUE(answers.empty()) << "never from inside the call";
    EXPECT_TRUE(stage.runUntil(
        [&] { return !answers.empty() && stage.reader->heard.size() >= row.heard.size(); }));
    stage.settle();
    EXPECT_EQ(answers, Heard{row.answer});
    EXPECT_EQ(stage.reader->heard, row.heard);
  }
}

TEST(QtWebView, TellsNothingOfALoadThatWasStoppedOrReplaced) {
  WebStage stage;
  const auto view = stage.newView();
  Site site([](const SeenRequest& request) { return htmlAnswer("<p>" + request.path); });
  view->loadRequest(site.address("/stopped"));
  view->stopLoading();
  stage.settle();
  EXPECT_EQ(stage.reader->heard, Heard{});
  view->loadRequest(site.address("/replaced"));
  view->loadRequest(site.address("/last"));
  EXPECT_EQ(stage.heardNext(), "finished");
  stage.settle();
  EXPECT_EQ(stage.reader->heard, Heard{});
  EXPECT_EQ(stage.ask(*view, "document.body.innerText"), "/last");
  // A stopped page may go on by itself; nobody is told, and it reaches nobody.
  view->loadHtmlString("<script>setTimeout(function(){location='" + site.address("/late") +
                       "'},20)</script>");
  EXPECT_EQ(stage.heardNext(), "finished");
  view->stopLoading();
  stage.settle();
  EXPECT_EQ(stage.reader->heard, Heard{});
  EXPECT_NE(site.requests().back().path, "/late");
}

}  // namespace
}  // namespace orlix::shell
