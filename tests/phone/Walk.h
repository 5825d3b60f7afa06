// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "orlixkit/OrlixKit.h"
#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/testing/DeclarationCheck.h"
#include "orlixkit/testing/MemoryHost.h"
#include "tests/phone/HostApp.h"
#include "tests/phone/TroubledPorts.h"
#include "tests/phone/WalletServer.h"

namespace orlix::test {

/// One entry call, and what is known of its flow.
struct Flow {
  int number = 0;
  OXSystem system = kTestSystem;
  std::string libKey;
  std::string code;
  std::string msisdn;
  std::shared_ptr<HostApp> app = std::make_shared<HostApp>();
  std::weak_ptr<OXOrlix> facade;
  std::shared_ptr<ViewController> controller;
  bool ended = false;     ///< by a return operation
  bool replaced = false;  ///< before it had ended, or never begun: no callback
  bool silent = false;    ///< has reached one of the ends without a callback
  bool sawProduct = false;
  bool fixesAmount = false;  ///< so that a code with an amount of its own cannot be paid

  int startsAllowed = 1;
  std::set<std::string> refusedSessions;
  std::string refusedKind;       ///< of the last request that was refused with 403
  std::size_t newestLookup = 0;  ///< of those answered
  bool lookupRetried = false;
  bool lookupsAreMixed = false;  ///< one was sent again or not usable: their order does not show

  // The payment.
  bool wanted = false;    ///< the user has asked for a purchase that has not been sent
  bool resent = false;    ///< a purchase was refused with 403 and is to be sent again
  bool accepted = false;  ///< the server has taken a purchase
  bool polling = false;   ///< between two requests for the receipt
  int refusals = 0;       ///< of the purchase, with 403, in a row
  SteadyTime pollsSince{};
  std::string shownCard;
  std::string shownAmount;
  std::optional<std::string> same;  ///< what a retry has to send
  std::string lastPurchase;
  std::map<std::size_t, std::string> purchases;  ///< how each that arrived was answered, by number
  std::set<std::string> returnedPages;
};

/// A phone on which everything that can happen has a name: touches, answers, alerts, pages, entry
/// calls, what the host application and its observer do, time. Each event is possible at certain
/// moments; after each one the rules are checked that hold in every order.
///
/// Answers are held back until an event releases them. Animations end at once, unless an event has
/// asked for the next one to take its time. An event whose name ends in " &" is followed by the
/// next one before any task that it has queued.
class Walk : private UiObserver {
 public:
  struct Offer {
    std::string name;
    double weight = 1;
    Task happen;
  };

  /// Rules that count, by the letter in front; all of them when empty.
  static std::string rules;
  /// Rules that do not: those that hold one of these texts.
  static std::vector<std::string> ignored;
  /// Events that do not happen at random: those whose name holds one of these texts.
  static std::vector<std::string> excluded;

  /// With a chooser that lets threads overtake each other, rules that compare a moment in one
  /// thread with a moment in another are left out.
  explicit Walk(Chooser chooser = {}, bool preemptive = false);
  ~Walk() override;

  /// What can happen now.
  std::vector<Offer> offers();
  /// False when it is not possible now.
  bool happen(const std::string& name);
  void happen(const Offer& offer, bool settle);
  /// All of them as tasks of one moment.
  void happenAtOnce(const std::vector<std::string>& names);
  /// Answers everything as usual; the user pays or leaves. The flow has to end.
  void goOn(bool pays);
  /// The application's end, after which nothing is called and nothing is left.
  void end();

  /// The first rule that was broken, with details after a colon; empty when none was.
  const std::string& broken() const { return broken_; }
  std::size_t requests() const { return server_->sent(); }
  /// Screens, alerts, indicator, unanswered requests and callbacks, for a reader.
  std::string picture() const;
  /// For a test that wants to look.
  MemoryHost& host() { return *host_; }

 private:
  using Controller = std::shared_ptr<ViewController>;
  struct Animation {
    Controller controller;
    Task done;
  };

  // What is there. The chain of a controller: itself and all that is presented on it, from below;
  // what is being dismissed is left out.
  static std::vector<Controller> chain(const Controller& root);
  static Controller top(const Controller& root) { return chain(root).back(); }
  std::vector<Controller> roots() const { return {host_->root(), otherRoot_}; }
  std::vector<std::shared_ptr<AlertController>> alerts() const;
  /// The flow's topmost screen below its alerts; none when it has none.
  Controller screen() const;
  Controller asker(const std::string& kind) const;
  bool isShown(const void* controller) const;
  std::string describe() const;
  ProgressIndicator& indicator() const { return host_->application().progressIndicator(); }
  Flow& flow() { return flows_.back(); }
  Flow& current() { return flows_[static_cast<std::size_t>(current_)]; }
  const Flow& current() const { return flows_[static_cast<std::size_t>(current_)]; }
  bool hasFlow() const { return current_ >= 0; }
  bool live() const { return hasFlow() && OXSession::currentSession()->isLive(); }
  std::shared_ptr<FakeWebView> page() const { return host_->webViews().last(); }
  std::size_t unanswered(const std::vector<std::string>& kinds) const;
  bool isPaying() const;
  bool goesOn() const;

  // Events.
  template <class Happen>
  void offer(double weight, const std::string& name, const Happen& happen) {
    if (only_ == nullptr || name == *only_) {
      offers_.push_back({name, weight, happen});
    }
  }
  void offerAnswers();
  void offerTouches();
  void offerTouchesOf(const Controller& screen, double weight);
  void offerPage();
  void offerEntries();
  void offerHost();
  void offerTrouble();
  void answer(const WalletServer::Request& request, const std::string& how);
  void noteFailure(const std::string& kind);
  void noteAnswer(const HeldRequest& request, const std::string& how);
  void notePurchase(const HeldRequest& request, const std::string& how);
  void touch(const Controller& screen, const std::string& action, bool stray);
  void fill(ViewController& screen) const;
  void notePay(ViewController& screen, bool stray);
  void press(const std::shared_ptr<AlertController>& alert, const std::string& button);
  void returnPage();
  void enter(const std::string& name);
  void callEntry(const std::string& name, Flow& flow);
  void wipe(const Task& call, bool wipes);
  void enrolBefore();
  void hostRemoves(bool alertOnly);
  void setWindow(bool present);
  void endAnimation(bool newest);
  void act(const std::string& action);
  void runHook(const std::string& hook);
  void clearTroubles();
  bool takeOneStep(bool pays);

  // What the library calls.
  std::optional<std::string> requestSent(HeldRequest& request);
  void checkSession(const HeldRequest& request, Flow& flow);
  void checkPurchase(const HeldRequest& request, Flow& flow);
  void checkStorm(const HeldRequest& request);
  void checkPurchaseStatus(const Flow& flow);
  void heard(int number);
  void didPresent(const Controller& controller) override;
  void didDismiss(const Controller& controller) override;
  void progressChanged(const ProgressIndicator& indicator) override;
  bool animate(const Controller& controller, Transition transition, const Task& done) override;

  // Rules.
  void settle();
  void look();
  void check();
  void checkHosts();
  void checkScreens();
  void checkContent(const ViewController& shown);
  void checkIndicator();
  void checkDeclared(const Controller& appearing);
  void checkAlerts();
  void checkPlaceOf(const std::shared_ptr<AlertController>& alert);
  void checkWayOut();
  void breakRule(const std::string& rule);
  /// Asked after the event has settled.
  void afterwards(std::function<void()> question) { questions_.push_back(std::move(question)); }
  void changesNothing(const std::string& rule);

  std::shared_ptr<WalletServer> server_ = std::make_shared<WalletServer>();
  std::shared_ptr<TroubledQueues> queues_;
  std::shared_ptr<TroubledStore> store_;
  std::shared_ptr<WalkLog> log_ = std::make_shared<WalkLog>();
  std::unique_ptr<MemoryHost> host_;
  Controller otherRoot_ = std::make_shared<ViewController>();
  bool preemptive_;

  std::deque<Flow> flows_;
  int current_ = -1;  ///< index of the last entry call that took effect
  std::shared_ptr<OXOrlix> facade_ = OXOrlix::make();
  std::vector<Scene> goneScenes_;
  std::shared_ptr<Window> goneWindow_;
  std::vector<Animation> animations_;
  int animationsToHold_ = 0;
  std::map<std::string, std::string> armed_;  ///< by hook: what the host does there
  std::map<std::weak_ptr<AlertController>, std::string, std::owner_less<>> causes_;
  std::string cause_;           ///< kind of the request that failed last
  bool paymentIsLost_ = false;  ///< since things were settled
  std::string termsAnswer_ = "ok";
  bool forgetful_ = false;
  int entriesRunning_ = 0;
  std::map<std::int64_t, int> wipes_;  ///< by system
  struct DeviceToken {
    std::int64_t system;
    int wipes;
  };
  std::map<std::string, DeviceToken> tokens_;
  std::map<std::size_t, int> wipesAtSending_;  ///< by number of the activation request

  std::vector<Offer> offers_;
  const std::string* only_ = nullptr;  ///< name of the one that is looked for
  std::vector<std::function<void()>> questions_;
  DeclarationCheck declarations_;
  std::vector<std::weak_ptr<ViewController>> former_;  ///< of replaced flows: to stay away
  std::map<std::string, std::weak_ptr<ViewController>> lastScreens_;
  std::vector<std::weak_ptr<void>> mustExpire_;
  std::map<std::string, int> sentNow_;
  SteadyTime sentAt_{};
  bool mainMayWait_ = false;
  bool answersLeftScreen_ = false;
  bool wasSettled_ = true;
  std::string broken_;
};

}  // namespace orlix::test
