#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "orlixkit/platform/memory/MemoryHost.h"
#include "tests/platform/UrlConnectionsContract.h"

namespace orlix {

namespace {

using namespace std::chrono_literals;

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
  struct Form : ViewController {
    Form() {
      setIdentifier("Form");
      action("breakAction", [] { throw std::runtime_error("it broke"); });
    }
    std::shared_ptr<View> group = outlet<View>("group");
    std::shared_ptr<TextField> pin = outlet<TextField>("pin", group);
    std::shared_ptr<TextField> name = outlet<TextField>("name");
    std::shared_ptr<Button> pay = outlet<Button>("pay");
  };
  MemoryHost host;
  const auto form = std::make_shared<Form>();
  host.root()->present(form, true);
  host.runUntilScreen("Form");
  form->name->setText("old");
  form->name->setCaret(0);
  host.type("name", "erx");
  host.user().erase("name", 1);
  EXPECT_EQ(form->name->text(), "older") << "the cursor goes behind the text";
  host.tap("pin");
  EXPECT_TRUE(form->pin->editing() && !form->name->editing());
  host.tap("breakAction");
  EXPECT_TRUE(host.log().contains("it broke"));

  form->group->setHidden(true);
  form->name->setEnabled(false);
  form->pay->setEnabled(false);
  const auto alert = std::make_shared<AlertController>("Warning", "");
  alert->addAction({"Ok", AlertActionStyle::cancel, {}});
  const std::pair<Task, std::string> rows[] = {
      {[&] { host.type("pin", "1"); }, "the outlet pin cannot be seen"},
      {[&] { host.type("name", "1"); }, "the field name is disabled"},
      {[&] { host.type("pay", "1"); }, "the outlet pay is of another kind"},
      {[&] { host.type("other", "1"); }, "the top screen Form has no outlet other"},
      {[&] { host.tap("pay"); }, "the button pay is disabled"},
      {[&] { host.pressAlert("Ok"); }, "no alert is on top, so there is no button Ok"},
      {[&] { form->present(alert, false); }, ""},
      {[&] { host.pressAlert("Retry"); }, "the alert \"Warning\" has no button Retry"},
      {[&] { host.tap("link"); }, "the top screen  has nothing to tap named link"},
      {[&] { host.pressAlert("Ok"); }, ""},
      {[&] { host.runUntilIdle(); }, ""},
      {[&] { host.application().progressIndicator().show("Wait", ProgressMask::gradient); }, ""},
      {[&] { host.tap("breakAction"); },
       "the progress indicator holds back the touch on breakAction"},
  };
  for (const auto& [touch, reason] : rows) {
    EXPECT_EQ(obstacle(touch), reason);
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
  EXPECT_EQ(calls, (std::vector<std::string>{"response"}));
  EXPECT_TRUE(delegate.expired() && page.expired());
  EXPECT_THROW(Host::current(), std::logic_error);
}

}  // namespace

}  // namespace orlix
