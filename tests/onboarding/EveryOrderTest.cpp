#include "tests/phone/EveryOrder.h"

namespace orlix::test {

namespace {

/// From the moment on at which the number has been sent.
class ActivationFlow : public OrderedFlow {
 public:
  explicit ActivationFlow(const MemoryHostSettings& settings) : OrderedFlow(settings, 0) {
    for (const char* screen : {"Activation", "ActivationCode"}) {
      touch(screen, "proceedAction");
      touch(screen, "cancelAction", [this] { cancelled(); });
    }
    answer("refused", answers::kFailed);
    phone_->beginActivation(Entry::checkout, "0821234567");
    begin();
    phone_->tap("proceedButton");
  }
};

/// From the moment on at which the form has been filled in, in the wallet.
class AddCardFlow : public OrderedFlow {
 public:
  explicit AddCardFlow(const MemoryHostSettings& settings) : OrderedFlow(settings, 0) {
    touch("AddCard", "proceedAction", [this] { linked_.reset(); });
    touch("AddCard", "cancelAction", [this] { linked_ = phone_->wallet.asked("/card/link/"); });
    touch("MsisdnRelink", "proceedAction");
    touch("MsisdnRelink", "back");
    answer("the number is to be confirmed", answers::kRelink);
    phone_->beginAddCard(Entry::wallet);
    begin();
    phone_->proceedWithCard();
    phone_->host.runUntilIdle();
  }

 private:
  void retried(const std::string&) override { linked_.reset(); }
  void checkMore() const override {
    if (linked_) {
      EXPECT_EQ(phone_->wallet.asked("/card/link/"), *linked_) << "for a form that was left";
    }
  }

  /// Links asked for when the user left the form; none once he has asked for another.
  std::optional<std::size_t> linked_;
};

}  // namespace

TEST(EveryOrder, OfAnActivationPaysNothingAndCallsEachHostOnceAtMost) {
  walkEveryOrder("activation", 5, flow<ActivationFlow>());
}

TEST(EveryOrder, OfAddingACardPaysNothingAndCallsEachHostOnceAtMost) {
  walkEveryOrder("adding a card", 5, flow<AddCardFlow>());
}

}  // namespace orlix::test
