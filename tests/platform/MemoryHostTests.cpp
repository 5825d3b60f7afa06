#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/memory/MemoryHost.h"
#include "orlixkit/platform/ui/TableView.h"

namespace orlix {

namespace {

using namespace std::chrono_literals;

/// A screen with one of each thing that a user can touch.
class Form : public ViewController, public TextFieldDelegate, public TableViewDataSource {
 public:
  Form() {
    setIdentifier("Form");
    pin->setDelegate(this);
    table->setDataSource(this);
    pay->onTouchUpInside = [this] { did("pay"); };
    link->onTap = [this] { did("link"); };
    action("cancelAction", [this] { did("cancel"); });
    action("breakAction", [] { throw std::runtime_error("it broke"); });
  }
  bool textFieldShouldChangeCharacters(TextField&, TextRange, const std::string& key) override {
    return key != "x";
  }
  std::size_t numberOfRows() override { return 2; }
  TableCell cellForRow(std::size_t row) override {
    TableCell cell;
    if (row == 1) {
      cell.button = std::make_shared<Button>();
      cell.button->onTouchUpInside = [this] { did("row button"); };
    }
    return cell;
  }
  void didSelectRow(std::size_t row) override { did("row " + std::to_string(row)); }
  void did(const std::string& what) { done.push_back(what); }

  std::vector<std::string> done;
  std::shared_ptr<View> group = outlet<View>("group");
  std::shared_ptr<TextField> pin = outlet<TextField>("pin", group);
  std::shared_ptr<TextField> name = outlet<TextField>("name");
  std::shared_ptr<Button> pay = outlet<Button>("pay");
  std::shared_ptr<Label> link = outlet<Label>("link");
  std::shared_ptr<Label> text = outlet<Label>("text");
  std::shared_ptr<TableView> table = outlet<TableView>("table");
};

/// Why the user cannot do it; empty when it was done.
std::string obstacle(const Task& touch) {
  try {
    touch();
  } catch (const std::logic_error& reason) {
    return reason.what();
  }
  return {};
}

}  // namespace

TEST(MemoryHost, AUserTypesAndTapsWhatTheTopScreenShows) {
  MemoryHost host;
  const auto form = std::make_shared<Form>();
  host.root()->present(form, true);
  host.runUntilScreen("Form");
  host.type("pin", "1x2æ");
  EXPECT_EQ(form->pin->text(), "12æ") << "each key is put to the delegate";
  EXPECT_TRUE(form->pin->editing());
  host.user().erase("pin", 2);
  EXPECT_EQ(form->pin->text(), "1");
  host.user().erase("pin", 9);
  EXPECT_EQ(form->pin->text(), "");
  form->name->setText("old");
  form->name->setCaret(0);
  host.type("name", "er");
  EXPECT_EQ(form->name->text(), "older") << "the cursor goes behind the text";
  EXPECT_FALSE(form->pin->editing());
  host.user().replaceAll("name", "new");
  EXPECT_EQ(form->name->text(), "new");

  host.tap("pay");
  host.tap("link");
  host.tap("cancelAction");
  host.user().chooseRow("table", 0);
  host.user().tapRowButton("table", 1);
  host.tap("pin");
  EXPECT_TRUE(form->pin->editing());
  EXPECT_EQ(form->done, (std::vector<std::string>{"pay", "link", "cancel", "row 0", "row button"}));
  host.tap("breakAction");
  EXPECT_TRUE(host.log().contains("it broke"));
}

TEST(MemoryHost, AUserCannotTouchWhatCannotBeReached) {
  MemoryHost host;
  const auto form = std::make_shared<Form>();
  host.root()->present(form, false);
  form->group->setHidden(true);
  form->name->setEnabled(false);
  form->pay->setEnabled(false);
  const std::string screen = "the top screen Form has ";
  EXPECT_EQ(obstacle([&] { host.type("pin", "1"); }), "the outlet pin cannot be seen");
  EXPECT_EQ(obstacle([&] { host.type("name", "1"); }), "the field name is disabled");
  EXPECT_EQ(obstacle([&] { host.type("link", "1"); }), "the outlet link is of another kind");
  EXPECT_EQ(obstacle([&] { host.type("other", "1"); }), screen + "no outlet other");
  EXPECT_EQ(obstacle([&] { host.tap("pay"); }), "the button pay is disabled");
  EXPECT_EQ(obstacle([&] { host.tap("text"); }), screen + "nothing to tap named text");
  EXPECT_EQ(obstacle([&] { host.user().tapRowButton("table", 0); }),
            "row 0 of table has no button");
  host.application().progressIndicator().show("Please wait", ProgressMask::gradient);
  for (const char* name : {"link", "cancelAction"}) {
    EXPECT_EQ(obstacle([&] { host.tap(name); }),
              std::string("the progress indicator holds back the touch on ") + name);
  }
  host.application().progressIndicator().dismiss();

  EXPECT_EQ(obstacle([&] { host.pressAlert("Ok"); }),
            "no alert is on top, so there is no button Ok");
  const auto alert = std::make_shared<AlertController>("Warning", "");
  alert->addAction({"Ok", AlertActionStyle::cancel, {}});
  form->present(alert, false);
  EXPECT_EQ(obstacle([&] { host.pressAlert("Retry"); }),
            "the alert \"Warning\" has no button Retry");
  EXPECT_EQ(obstacle([&] { host.tap("link"); }), "the top screen  has nothing to tap named link");
  host.pressAlert("Ok");
  host.runUntilIdle();
  host.tap("link");
  EXPECT_EQ(form->done, (std::vector<std::string>{"link"}));
}

TEST(MemoryHost, AUserActsInTheMiddleOfOtherWork) {
  MemoryHost host;
  std::vector<std::string> ran;
  host.later(3s, [&] { ran.emplace_back("user"); });
  host.backgroundQueues().global(QualityOfService::high, [&] {
    for (const char* name : {"two", "four"}) {
      host.clock().sleep(2s);
      ran.emplace_back(name);
    }
  });
  host.runFor(10s);
  EXPECT_EQ(ran, (std::vector<std::string>{"two", "user", "four"}));
}

TEST(MemoryHost, AStoreOutlivesItsHostAndCanRefuse) {
  const auto store = std::make_shared<MemoryUserDefaults>();
  {
    MemoryHost host({.userDefaults = store});
    host.userDefaults()->setString("test.customerId", "C1");
    store->setFailing(true);
    EXPECT_THROW(host.userDefaults()->setString("test.customerId", "C2"), std::runtime_error);
    EXPECT_THROW(host.userDefaults()->setInteger("test.lastUsedCard", 7), std::runtime_error);
    store->setFailing(false);
  }
  MemoryHost host({.userDefaults = store});
  EXPECT_EQ(host.userDefaults()->stringForKey("test.customerId"), "C1");
  EXPECT_EQ(store->keys(), (std::vector<std::string>{"test.customerId"}));
  store->setData("test.data", toBytes("a1234b"));
  store->setInteger("test.lastUsedCard", 56789);
  EXPECT_TRUE(store->holds("1234"));
  EXPECT_TRUE(store->holds("678"));
  EXPECT_FALSE(store->holds("4321"));
}

TEST(MemoryHost, PositionsComeOnlyWhileTheyAreAskedFor) {
  struct Listener : LocationManagerDelegate {
    void didUpdateLocations(const std::vector<LocationFix>& fixes) override {
      heard += std::to_string(fixes.size()) + " ";
    }
    void didFailWithError(const std::string& description) override { heard += description + " "; }
    std::string heard;
  };
  MemoryHost host;
  Listener listener;
  host.locationManager().setDelegate(&listener);
  host.locationManager().sendFixes({{}});
  host.locationManager().startUpdatingLocation();
  host.locationManager().sendFixes({{}, {}});
  host.locationManager().sendError("denied");
  host.locationManager().stopUpdatingLocation();
  host.locationManager().sendError("late");
  EXPECT_EQ(listener.heard, "2 denied ");
}

TEST(MemoryHost, EndsInTheMiddleOfEverythingAndCallsNobodyBack) {
  struct Silent : UrlConnectionDelegate {
    explicit Silent(std::vector<std::string>& calls) : heard(calls) {}
    bool canAuthenticateAgainstProtectionSpace(AuthenticationMethod) override { return true; }
    void didReceiveAuthenticationChallenge(AuthenticationChallenge&) override {}
    void didReceiveResponse(std::int64_t) override { heard.emplace_back("response"); }
    void didReceiveData(std::span<const std::uint8_t>) override { heard.emplace_back("data"); }
    void didFinishLoading() override { heard.emplace_back("finish"); }
    void didFailWithError(const std::string&) override { heard.emplace_back("fail"); }
    std::vector<std::string>& heard;
  };
  std::vector<std::string> calls;
  std::weak_ptr<Silent> delegate;
  std::weak_ptr<FakeWebView> page;
  const auto before = std::chrono::steady_clock::now();
  {
    MemoryHost host;
    host.connections().on("", ServerReply().status(200).silence());
    const auto made = std::make_shared<Silent>(calls);
    delegate = made;
    UrlRequest request;
    request.url = "https://server.example/";
    const auto connection = host.connections().newConnection(request, made);
    connection->setDelegateQueue(host.backgroundQueues().newOperationQueue());
    connection->start();
    const auto view = host.webViews().newWebView();
    page = host.webViews().last();
    host.runUntil([&] { return !calls.empty(); });
    host.later(1s, [&] { calls.emplace_back("user"); });
    host.backgroundQueues().global(QualityOfService::background, [&, view] {
      host.clock().sleep(60s);
      host.mainQueue().async([&] { calls.emplace_back("main task"); });
    });
    host.runUntilIdle();
  }
  EXPECT_LT(std::chrono::steady_clock::now() - before, 1s);
  EXPECT_EQ(calls, (std::vector<std::string>{"response"}));
  EXPECT_TRUE(delegate.expired());
  EXPECT_TRUE(page.expired());
  EXPECT_THROW(Host::current(), std::logic_error);
}

}  // namespace orlix
