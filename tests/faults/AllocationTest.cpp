// SPDX-License-Identifier: Apache-2.0

// Flows in which memory runs out: at each allocation in turn, once and three times running.
//
// What fails is `operator new`, in the library's own tasks and entry calls. Not what other
// libraries take by malloc (libcurl, OpenSSL, SQLite), and not what the phone of this test needs
// itself.

#include <atomic>
#include <cstdlib>
#include <new>

#include <fmt/format.h>

#include "orlixkit/host/RunningTasks.h"
#include "orlixkit/security/DataStore.h"
#include "orlixkit/security/OMStorage.h"
#include "orlixkit/security/PinBlock.h"
#include "tests/faults/WrappedQueues.h"
#include "tests/phone/Phone.h"

namespace {

thread_local bool counting = false;
std::atomic<long> allocations;
std::atomic<long> firstToFail;
std::atomic<long> failures;

}  // namespace

void* operator new(std::size_t size) {
  if (counting) {
    const long number = ++allocations;
    if (number >= firstToFail && number < firstToFail + failures) {
      throw std::bad_alloc();
    }
  }
  if (void* memory = std::malloc(size)) {
    return memory;
  }
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace orlix::test {

struct Flow {
  std::string name;
  Entry entry;
  std::function<void(Phone&)> prepare;
};
void PrintTo(const Flow& flow, std::ostream* out) { *out << flow.name; }

namespace {

struct Counting {
  explicit Counting(bool on) : before(std::exchange(counting, on)) {}
  ~Counting() { counting = before; }
  Counting(const Counting&) = delete;
  Counting& operator=(const Counting&) = delete;
  const bool before;
};

Task counted(Task task) {
  return [task = std::move(task)] {
    const Counting on(true);
    task();
  };
}

/// Waiting takes no memory on a real phone.
struct UncountedWaiting : Condition {
  explicit UncountedWaiting(std::unique_ptr<Condition> of) : inner(std::move(of)) {}
  template <class Operation>
  auto quietly(const Operation& operation) {
    const Counting off(false);
    return operation();
  }
  void lock() override {
    quietly([this] { inner->lock(); });
  }
  void unlock() override {
    quietly([this] { inner->unlock(); });
  }
  void signal() override {
    quietly([this] { inner->signal(); });
  }
  bool waitUntil(SteadyTime deadline) override {
    return quietly([&] { return inner->waitUntil(deadline); });
  }
  std::unique_ptr<Condition> inner;
};

struct UncountedClock : Clock {
  explicit UncountedClock(std::shared_ptr<Clock> of) : inner(std::move(of)) {}
  SteadyTime steadyNow() const override { return inner->steadyNow(); }
  CalendarTime now() const override { return inner->now(); }
  bool sleep(Duration duration) override {
    const Counting off(false);
    return inner->sleep(duration);
  }
  std::unique_ptr<Condition> newCondition() override {
    return std::make_unique<UncountedWaiting>(inner->newCondition());
  }
  std::shared_ptr<Clock> inner;
};

/// The server takes no memory of the phone's. The client does, and the delegate.
struct UncountedServer : HttpClient {
  explicit UncountedServer(std::shared_ptr<HttpClient> of) : inner(std::move(of)) {}
  HttpResult perform(const HttpRequest& request, HttpDelegate& delegate) override {
    const HttpRequest own = request;
    CountedDelegate counted(delegate);
    const Counting off(false);
    return inner->perform(own, counted);
  }
  void close() override { inner->close(); }

  struct CountedDelegate : HttpDelegate {
    explicit CountedDelegate(HttpDelegate& of) : inner(of) {}
    bool trusts(ServerTrust* trust) override {
      const Counting on(true);
      return inner.trusts(trust);
    }
    bool mayBeSent() override {
      const Counting on(true);
      return inner.mayBeSent();
    }
    bool didReceiveResponse(std::int64_t status) override {
      const Counting on(true);
      return inner.didReceiveResponse(status);
    }
    bool didReceiveData(std::span<const std::uint8_t> data) override {
      const Counting on(true);
      return inner.didReceiveData(data);
    }
    HttpDelegate& inner;
  };
  std::shared_ptr<HttpClient> inner;
};

/// What a step waits for runs in the test's own world; the tasks in there are counted again.
struct UncountedMainQueue : WrappedMainQueue {
  using WrappedMainQueue::WrappedMainQueue;
  void runUntil(const std::function<bool()>& done) override {
    const Counting off(false);
    WrappedMainQueue::runUntil(done);
  }
};

/// Hears without allocating.
struct QuietHost : HostApp {
  int succeeded = 0, errors = 0, cancelled = 0;
  int all() const { return succeeded + errors + cancelled; }
  void orlixPaymentSucceededWithTransactionReference(const std::string&) override { ++succeeded; }
  void orlixUserRegistered() override { ++succeeded; }
  void orlixError(int) override { ++errors; }
  void orlixUserDidCancel() override { ++cancelled; }
};

const std::vector<Flow> kFlows{
    {"PinPayment", Entry::checkout, [](Phone&) {}},
    {"ActivationBySms", Entry::preRegister,
     [](Phone& phone) {
       phone.host.connections().on("/session/new/", [&phone](const RecordedRequest&) {
         const bool activated = phone.wallet.asked("/sms/activateSession") > 0;
         return ok(activated ? answers::kSession : answers::kNotActivated);
       });
     }},
    {"NewCard", Entry::preRegister, [](Phone& phone) { phone.wallet.cards.clear(); }},
    {"SecureCodePayment", Entry::checkout,
     [](Phone& phone) {
       phone.wallet.cards = {cardJson(5, "0301", R"(,"method":"SECURE_CODE")")};
       phone.wallet.always("/card/scUrl", R"({"cardSupported":true,"secureCodeId":31,)"
                                          R"("url":"https://issuer.example/","payload":"P"})");
     }},
};

/// Goes through a flow, retries what is offered, and gives up where nothing goes on.
class Customer {
 public:
  explicit Customer(const Flow& flow)
      : flow_(flow), phone_({.adapt = [this](Ports& ports) { adapt(ports); }}) {
    flow.prepare(phone_);
  }

  /// False when the entry call has thrown.
  bool walk(long from, long howMany) {
    allocations = 0;
    firstToFail = from;
    failures = howMany;
    phone_.app = app = std::make_shared<QuietHost>();
    try {
      const Counting on(true);
      phone_.begin(flow_.entry);
    } catch (const std::bad_alloc&) {
      return false;
    }
    for (int step = 0; step < 40 && app->all() == 0; ++step) {
      phone_.host.runUntilIdle();
      if (app->all() == 0 && !act()) {
        phone_.host.runFor(61s);  // until whatever was lost is given up
      }
    }
    phone_.host.runUntilIdle();
    return true;
  }
  /// The device's token is in the store or was never there, and it can be read.
  bool storeIsWhole() {
    OMStorage storage("test.data");
    const auto phoneId = phone_.host.device().vendorIdentifier();
    return storage.loadData().empty() ||
           DataStore(PinBlock::nibblePackSerial(phoneId)).load(storage) != nullptr;
  }
  bool hasLeft() {
    return phone_.host.root()->presentedViewController() == nullptr && !phone_.busy();
  }
  std::string story() {
    return std::to_string(phone_.busy()) + phone_.screen() + phone_.alert() + "\n" +
           phone_.host.log().text();
  }

  std::shared_ptr<QuietHost> app;

 private:
  void adapt(Ports& ports) {
    ports.clock = std::make_shared<UncountedClock>(ports.clock);
    ports.httpClient = std::make_shared<UncountedServer>(ports.httpClient);
    ports.mainQueue = std::make_shared<UncountedMainQueue>(ports.mainQueue, counted);
    ports.backgroundQueues =
        std::make_shared<WrappedBackgroundQueues>(ports.backgroundQueues, counted);
    const auto pages = std::make_shared<FakeWebViews>(ports.mainQueue);
    pages->onLoad = [](FakeWebView& page) {
      page.finishNavigation("<script>Vello.handle(\"PARES\")</script>");
    };
    ports.webViews = pages;
  }

  /// False when there is nothing to do but wait.
  bool act() {
    const auto alert = phone_.host.user().topAlert();
    const auto top = phone_.host.topController();
    const bool retries = alert && alert->actions().back().title == "Retry";
    const std::string& screen = top->identifier();
    if (!alert && (phone_.busy() || !top->hasAction("cancelAction"))) {
      return false;
    }
    if (!alert) {
      tries_ = top == former_ ? tries_ + 1 : 1;
      former_ = top;
    }
    runLogged([&] {
      const Counting on(true);
      TestUser& user = phone_.host.user();
      if (alert) {
        alert->press(retries ? alert->actions().size() - 1 : 0);
      } else if (tries_ > 3 || screen == "SecureCode") {
        top->performAction("cancelAction");
      } else if (screen == "Product") {
        user.outlet("pinField")->isOutOfSight() ? user.tap("proceedButton") : phone_.pay();
      } else if (screen == "AddCard") {
        phone_.proceedWithCard();
      } else {
        user.replaceAll(screen == "Activation" ? "msisdnField" : "codeField", "0821234567");
        user.tap("proceedButton");
      }
    });
    return true;
  }

  const Flow& flow_;
  Phone phone_;
  std::shared_ptr<ViewController> former_;
  int tries_ = 0;
};

}  // namespace

class Allocation : public testing::TestWithParam<Flow> {};

TEST_P(Allocation, ThatFailsEndsTheFlowAndNothingElse) {
  const Flow& flow = GetParam();
  for (const long howMany : {1, 3}) {
    bool reached = true;
    for (long from = 1; reached; ++from) {
      SCOPED_TRACE(fmt::format("allocation {}, {} in all", from, howMany));
      Customer customer(flow);
      const bool began = customer.walk(from, howMany);
      reached = allocations >= from;
      const auto first = customer.app;
      ASSERT_EQ(first->all(), began ? 1 : 0) << customer.story();
      ASSERT_TRUE(customer.hasLeft() || !began) << customer.story();
      ASSERT_TRUE(customer.storeIsWhole());
      customer.walk(0, 0);
      ASSERT_EQ(customer.app->succeeded, 1) << "the flow after it\n" << customer.story();
      ASSERT_EQ(first->all(), began ? 1 : 0) << "heard twice";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Flows, Allocation, testing::ValuesIn(kFlows),
                         [](const auto& of) { return of.param.name; });

}  // namespace orlix::test
