// SPDX-License-Identifier: Apache-2.0

#include "shell/qml/OrlixCheckout.h"

#include <QQuickItem>
#include <stdexcept>
#include <string>
#include <utility>

#include "shell/qml/Orlix.h"

namespace orlix::shell {

namespace {

Orlix* libraryOf(QQmlEngine& engine) {
  return engine.singletonInstance<Orlix*>(
      qmlTypeId("OrlixKit", ORLIXKIT_VERSION_MAJOR, ORLIXKIT_VERSION_MINOR, "Orlix"));
}

/// A conversion would replace invalid Unicode by other characters.
std::string utf8(const QString& text, const char* name) {
  if (!text.isValidUtf16()) {
    throw std::invalid_argument("OrlixCheckout: " + std::string(name) + " is not valid Unicode");
  }
  return text.toStdString();
}

}  // namespace

/// Of one flow. The library keeps it until the flow has ended.
struct OrlixCheckout::Outcome : OXOrlixDelegate {
  explicit Outcome(OrlixCheckout& checkout) : checkout_(&checkout) {}

  void orlixPaymentSucceededWithTransactionReference(const std::string& reference) override {
    end([this, &reference] { Q_EMIT checkout_->paymentSucceeded(reference.c_str()); });
  }
  void orlixPaymentFailedWithTransactionReference(const std::string& reference) override {
    end([this, &reference] { Q_EMIT checkout_->paymentFailed(reference.c_str()); });
  }
  void orlixError(int code) override {
    end([this, code] { Q_EMIT checkout_->errorOccurred(code); });
  }
  void orlixUserDidCancel() override {
    end([this] { Q_EMIT checkout_->cancelled(); });
  }
  void orlixUserRegistered() override {
    end([this] { Q_EMIT checkout_->registered(); });
  }
  void orlixUserCompletedWallet() override {
    end([this] { Q_EMIT checkout_->walletClosed(); });
  }
  void orlixInvalidCode() override {
    end([this] { Q_EMIT checkout_->invalidCode(); });
  }

 private:
  void end(const std::function<void()>& signal) {
    if (checkout_) {
      checkout_->end(signal);
    }
  }

  const QPointer<OrlixCheckout> checkout_;
};

QQuickWindow* OrlixCheckout::window() const {
  if (window_) {
    return window_;
  }
  for (QObject* one = parent(); one != nullptr; one = one->parent()) {
    if (const auto* item = qobject_cast<QQuickItem*>(one)) {
      return item->window();
    }
    if (auto* window = qobject_cast<QQuickWindow*>(one)) {
      return window;
    }
  }
  return nullptr;
}

void OrlixCheckout::setWindow(QQuickWindow* window) {
  window_ = window;
  Q_EMIT requestChanged();
}

void OrlixCheckout::setRunning(bool running) {
  if (std::exchange(running_, running) != running) {
    Q_EMIT runningChanged();
  }
}

void OrlixCheckout::endWithoutOutcome() {
  end([this] { Q_EMIT endedWithoutOutcome(); });
}

EntryRequest OrlixCheckout::request() const {
  EntryRequest made{.apiKey = utf8(apiKey_, "apiKey"), .system = system_};
  if (!preMSISDN_.isEmpty()) {
    made.preMSISDN = PreMSISDN{utf8(preMSISDN_, "preMSISDN")};
  }
  if (!customer_.isEmpty()) {
    made.customerId = CustomerId{utf8(customer_, "customer")};
  }
  return made;
}

void OrlixCheckout::checkout() {
  enter([this](OXOrlix& facade, const EntryRequest& entry) {
    facade.checkout({.code = utf8(code_, "code"),
                     .amount = amount_,
                     .apiKey = entry.apiKey,
                     .system = entry.system,
                     .controller = entry.controller,
                     .delegate = entry.delegate,
                     .preMSISDN = entry.preMSISDN,
                     .customerId = entry.customerId});
  });
}

void OrlixCheckout::preRegister() {
  enter([](OXOrlix& facade, const EntryRequest& entry) { facade.preRegister(entry); });
}

void OrlixCheckout::walletManagement() {
  enter([](OXOrlix& facade, const EntryRequest& entry) { facade.walletManagement(entry); });
}

void OrlixCheckout::enter(const Begin& begin) {
  QQmlEngine* const engine = qmlEngine(this);
  Orlix* const library = engine != nullptr ? libraryOf(*engine) : nullptr;
  if (library == nullptr) {
    qWarning("OrlixCheckout: this object was not made by a QML engine");
    return;
  }
  try {
    EntryRequest entry = request();
    QQuickWindow* const over = window();
    if (over == nullptr) {
      throw std::runtime_error("OrlixCheckout: there is no window to show it in; set \"window\"");
    }
    const auto facade = OXOrlix::make();
    entry.delegate = std::make_shared<Outcome>(*this);
    library->enter(*this, *over, entry.system, [&](const std::shared_ptr<ViewController>& screen) {
      entry.controller = screen;
      begin(*facade, entry);
      facade_ = facade;
    });
  } catch (const std::exception& error) {
    engine->throwError(QString::fromUtf8(error.what()));
  }
}

void OrlixCheckout::end(const std::function<void()>& signal) {
  if (QQmlEngine* const engine = qmlEngine(this)) {
    libraryOf(*engine)->left(*this);
  }
  // The outcome first: a handler of either signal may begin the next flow, or destroy this object.
  running_ = false;
  const QPointer<OrlixCheckout> self(this);
  signal();
  if (self && !running_) {
    Q_EMIT runningChanged();
  }
}

OrlixCheckout::PurchaseState OrlixCheckout::purchaseState() const {
  switch (facade_ ? facade_->purchaseStatus().state : orlix::PurchaseState::none) {
    case orlix::PurchaseState::none:
      return NoPurchase;
    case orlix::PurchaseState::unknown:
      return PurchaseUnknown;
    case orlix::PurchaseState::refused:
      return PurchaseRefused;
    case orlix::PurchaseState::paid:
      return Paid;
  }
  return PurchaseUnknown;
}

QString OrlixCheckout::purchaseReference() const {
  return facade_ ? QString::fromStdString(facade_->purchaseStatus().reference.value_or(""))
                 : QString();
}

bool OrlixCheckout::pinRefused() const { return facade_ && facade_->purchaseStatus().pinRefused; }

}  // namespace orlix::shell
