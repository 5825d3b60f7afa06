#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/memory/MemoryHost.h"
#include "orlixkit/platform/ui/TableView.h"
#include "tests/platform/UrlConnectionsContract.h"

namespace orlix {

namespace {

using namespace std::chrono_literals;

std::shared_ptr<UrlConnection> pay(MemoryHost& host, std::shared_ptr<UrlConnectionDelegate> to) {
  UrlRequest request;
  request.url = "https://server.example/vello/pay";
  request.method = "POST";
  auto connection = host.connections().newConnection(request, std::move(to));
  connection->setDelegateQueue(host.backgroundQueues().newOperationQueue());
  connection->start();
  return connection;
}

/// Why the user cannot do it; empty when it was done.
std::string obstacle(const Task& touch) {
  try {
    touch();
  } catch (const std::logic_error& reason) {
    return reason.what();
  }
  return {};
}

TEST(MemoryHost, AUserReachesWhatTheTopScreenShowsAndNothingElse) {
  struct Form : ViewController, TableViewDataSource {
    Form() {
      setIdentifier("Form");
      outlet<TextField>("pin", outlet<View>("group"))->superview()->setHidden(true);
      outlet<TextField>("name")->setEnabled(false);
      outlet<Button>("pay")->setEnabled(false);
      outlet<Button>("send")->onTouchUpInside = note("sent");
      outlet<Label>("link")->onTap = note("link");
      outlet<Label>("text");
      outlet<TableView>("table")->setDataSource(this);
      action("leaveAction", note("left"));
    }
    Task note(const std::string& what) {
      return [this, what] { done += what + ", "; };
    }
    std::size_t numberOfRows() override { return 2; }
    TableCell cellForRow(std::size_t row) override {
      TableCell cell;
      cell.button = row == 1 ? std::make_shared<Button>() : nullptr;
      if (cell.button) {
        cell.button->onTouchUpInside = note("row's button");
      }
      return cell;
    }
    void didSelectRow(std::size_t) override { done += "row, "; }
    std::shared_ptr<TextField> code = outlet<TextField>("code");
    std::shared_ptr<TextField> mail = outlet<TextField>("mail");
    std::string done;
  };
  MemoryHost host;
  const auto form = std::make_shared<Form>();
  host.root()->present(form, true);
  host.runUntilScreen("Form");
  form->code->setText("old");
  form->code->setCaret(0);
  host.type("code", "æx");
  host.user().erase("code", 1);
  EXPECT_EQ(form->code->text(), "oldæ") << "the cursor goes behind the text";
  host.tap("mail");
  EXPECT_TRUE(form->mail->editing() && !form->code->editing());
  host.user().replaceAll("mail", "new");
  EXPECT_EQ(form->mail->text(), "new");
  const auto alert = std::make_shared<AlertController>("Warning", "");
  alert->addAction({"Ok", AlertActionStyle::cancel, {}});
  const std::pair<Task, std::string> rows[] = {
      {[&] { host.type("pin", "1"); }, "the outlet pin cannot be seen"},
      {[&] { host.type("name", "1"); }, "the field name is disabled"},
      {[&] { host.type("pay", "1"); }, "the outlet pay is of another kind"},
      {[&] { host.type("other", "1"); }, "the top screen Form has no outlet other"},
      {[&] { host.tap("pay"); }, "the button pay is disabled"},
      {[&] { host.tap("text"); }, "the top screen Form has nothing to tap named text"},
      {[&] { host.tap("send"); }, ""},
      {[&] { host.tap("link"); }, ""},
      {[&] { host.tap("leaveAction"); }, ""},
      {[&] { host.user().chooseRow("table", 0); }, ""},
      {[&] { host.user().tapRowButton("table", 1); }, ""},
      {[&] { host.user().tapRowButton("table", 0); }, "row 0 of table has no button"},
      {[&] { host.pressAlert("Ok"); }, "no alert is on top, so there is no button Ok"},
      {[&] { form->present(alert, false); }, ""},
      {[&] { host.pressAlert("Retry"); }, "the alert \"Warning\" has no button Retry"},
      {[&] { host.tap("link"); }, "the top screen  has nothing to tap named link"},
      {[&] { host.pressAlert("Ok"); }, ""},
      {[&] { host.runUntilIdle(); }, ""},
      {[&] { host.application().progressIndicator().show("Wait", ProgressMask::gradient); }, ""},
      {[&] { host.tap("leaveAction"); },
       "the progress indicator holds back the touch on leaveAction"},
  };
  for (const auto& [touch, reason] : rows) {
    EXPECT_EQ(obstacle(touch), reason);
  }
  EXPECT_EQ(form->done, "sent, link, left, row, row's button, ");
}

TEST(MemoryHost, AStoreOutlivesItsHostAndCanRefuse) {
  const auto store = std::make_shared<MemoryUserDefaults>();
  MemoryHost({.userDefaults = store}).userDefaults()->setString("test.customerId", "C1");
  store->setFailing(true);
  EXPECT_THROW(store->setString("test.customerId", "C2"), std::runtime_error);
  EXPECT_THROW(store->setInteger("test.lastUsedCard", 7), std::runtime_error);
  store->setFailing(false);
  store->setData("test.data", toBytes("a1234b"));
  store->setInteger("test.lastUsedCard", 56789);
  for (const char* text : {"C1", "1234", "678"}) {
    EXPECT_TRUE(store->holds(text)) << text;
  }
  EXPECT_FALSE(store->holds("4321"));
  EXPECT_EQ(store->keys().size(), 3u);
}

TEST(MemoryHost, AServersAnswerComesInTimeAndEachByteStartsTheTimeOutAnew) {
  const struct {
    ServerReply reply;
    Events events;
    int seconds;
  } rows[] = {
      {ServerReply().after(3s).status(200).body("a").after(2s).body("b"),
       {"response 200", "data", "finish"},
       5},
      {ServerReply().silence(), {"fail"}, 60},
      {ServerReply().after(5s).status(200).silence(), {"response 200", "fail"}, 65},
      {ServerReply().after(50s).status(200).after(50s).body("a").after(60s).body("b"),
       {"response 200", "data", "finish"},
       160},
      {ServerReply().after(50s).after(50s).status(200), {"fail"}, 60},
  };
  for (const auto& row : rows) {
    MemoryHost host;
    host.connections().on("/vello", row.reply);
    const auto delegate = std::make_shared<RecordingDelegate>(host.mainQueue());
    const SteadyTime start = host.clock().steadyNow();
    const auto connection = pay(host, delegate);
    delegate->await();
    EXPECT_EQ(delegate->events, row.events);
    EXPECT_EQ((host.clock().steadyNow() - start) / 1s, row.seconds);
    EXPECT_EQ(host.connections().underWay(), 0u);
  }
}

TEST(MemoryHost, EndsInTheMiddleOfEverythingAndCallsNobodyBack) {
  std::vector<std::string> calls;
  std::weak_ptr<RecordingDelegate> delegate;
  std::weak_ptr<FakeWebView> page;
  {
    MemoryHost host;
    host.connections().on("", ServerReply().status(200).silence());
    const auto made = std::make_shared<RecordingDelegate>(host.mainQueue());
    delegate = made;
    made->onResponse = [&] { calls.emplace_back("response"); };
    const auto connection = pay(host, made);
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
  EXPECT_EQ(calls, (std::vector<std::string>{"response"}));
  EXPECT_TRUE(delegate.expired() && page.expired());
  EXPECT_THROW(Host::current(), std::logic_error);
}

}  // namespace

}  // namespace orlix
