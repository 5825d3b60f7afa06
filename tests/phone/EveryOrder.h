#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/phone/HeldAnswers.h"
#include "tests/phone/Phone.h"

namespace orlix::test {

/// A flow in which touches, answers, alerts, a page, a second entry call and the application's end
/// can meet in any order. A flow says which events it has and when each is possible; this class
/// knows those that every flow has, and what holds after each of them. The answers to all requests
/// are held back until an event lets them go.
class OrderedFlow {
 public:
  struct Event {
    std::string name;
    std::function<bool()> possible;
    Task happen;
  };
  virtual ~OrderedFlow() = default;

  const std::vector<Event>& events() const { return events_; }
  /// The event, with all that comes of it.
  void happen(const Event& event);
  /// These events, so that each meets what is still to come of the others.
  void happenAtOnce(const std::vector<std::string>& names);
  /// Answers everything and leaves by whatever way there is: one callback tells of it.
  void leave();
  /// The application's end, after which nobody is called back and nothing is alive.
  void end();

 protected:
  /// `strayTouches`: how many touches of an order may come to a screen that something stands over,
  /// or that has been left.
  explicit OrderedFlow(MemoryHostSettings settings, int strayTouches = 1);

  /// The flow stands where every order begins.
  void begin();
  void event(const std::string& name, std::function<bool()> possible, Task happen) {
    events_.push_back({name, std::move(possible), std::move(happen)});
  }
  /// The request that has waited longest is answered so.
  void answer(const std::string& name, const std::string& body);
  /// A second entry call, by a new facade or by the one that is there.
  void secondCall(const std::string& name, bool sameFacade);
  /// A touch on the last screen of that name, filled in; once in an order also when something
  /// stands over it or it has been left. `before` says what the user means by it.
  void touch(const std::string& screen, const std::string& action, Task before = {});

  /// The user wants one purchase more, or an authentication that counts like one.
  void wantPurchase() { ++wanted_; }
  /// He has neither cancelled nor heard how it ended, as far as he knows.
  bool goesOn() const { return !cancelled_ && phone_->app->heard.empty(); }
  void cancelled() { cancelled_ = true; }
  /// The network alert of that request was answered so.
  virtual void retried(const std::string& /*path*/) {}
  virtual void givenUp(const std::string& /*path*/) {}
  /// A second entry call was made.
  virtual void replaced() {}
  /// What else holds after every event.
  virtual void checkMore() const {}

  std::unique_ptr<Phone> phone_;
  std::optional<HeldAnswers> answers_;
  /// What the next network alert tells of.
  std::string failure_;

 private:
  using Alerts = std::map<std::weak_ptr<AlertController>, std::string, std::owner_less<>>;

  void addCommonEvents();
  void letGo(bool newest = false, std::optional<ServerReply> instead = {});
  void pressAlert(const std::string& button);
  void noteGivenUp(const std::shared_ptr<AlertController>& alert);
  bool isOnTop(const std::string& screen);
  void look();
  void check() const;

  std::vector<Event> events_;
  std::vector<std::shared_ptr<HostApp>> hosts_;
  std::map<std::string, std::weak_ptr<ViewController>> screens_;
  std::map<std::string, std::weak_ptr<ViewController>> former_;  ///< before the second entry call
  Alerts alerts_;
  std::vector<std::weak_ptr<void>> mortals_;
  std::size_t wanted_ = 0;
  std::shared_ptr<ViewController> mustStay_;  ///< on top, when the event is a stale answer
  int strayTouches_;
  bool cancelled_ = false;
  bool endsInSilence_ = false;
};

using BeginFlow = std::function<std::unique_ptr<OrderedFlow>(const MemoryHostSettings&)>;

template <class Flow>
BeginFlow flow() {
  return [](const MemoryHostSettings& settings) { return std::make_unique<Flow>(settings); };
}

/// Every order of up to `depth` events, each of them possible when it comes; after each order the
/// application ends, after those of full length once the user has left. Prints how many there are.
void walkEveryOrder(const std::string& name, std::size_t depth, const BeginFlow& begin);

/// These events at once, in every order of the first tasks that come of them and then by lot, where
/// threads overtake one another as well.
void meetAtOnce(const std::vector<std::string>& events, const BeginFlow& begin);

}  // namespace orlix::test
