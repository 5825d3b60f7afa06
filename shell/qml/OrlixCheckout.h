// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QString>
#include <functional>
#include <memory>

#include "orlixkit/Version.h"
#include "orlixkit/checkout/OXOrlix.h"

namespace orlix::shell {

/// QML type `OrlixCheckout`: a payment, a registration or a visit to the wallet, presented over the
/// window that it is declared in. Each of the three functions is an entry call and begins a flow,
/// which ends with one of the signals.
///
/// One flow at a time: an entry call takes the place of a flow that is still on screen, also of one
/// of another OrlixCheckout, which then emits nothing. A call that cannot begin a flow throws a
/// JavaScript Error; nothing has begun then, and a flow that was there goes on. An object that is
/// destroyed during its flow does not end it; the outcome is then lost.
class OrlixCheckout : public QObject {
  Q_OBJECT
  QML_ELEMENT
  /// What is to be paid for; for `checkout` only.
  Q_PROPERTY(QString code MEMBER code_ NOTIFY requestChanged)
  /// In currency units; 0 leaves the amount to code and user. For `checkout` only.
  Q_PROPERTY(double amount MEMBER amount_ NOTIFY requestChanged)
  Q_PROPERTY(QString apiKey MEMBER apiKey_ NOTIFY requestChanged)
  Q_PROPERTY(System system MEMBER system_ NOTIFY requestChanged)
  /// The customer as the application knows him; empty for none. Another one than the last makes the
  /// stored credentials unreadable, with an exception for the first call of a process: see
  /// `OXOrlix` and `Orlix.deregisterUser`.
  Q_PROPERTY(QString customer MEMBER customer_ NOTIFY requestChanged)
  /// A mobile number to suggest when the device is enrolled; empty for none.
  Q_PROPERTY(QString preMSISDN MEMBER preMSISDN_ NOTIFY requestChanged)
  /// By default the window that contains this object.
  Q_PROPERTY(QQuickWindow* window READ window WRITE setWindow NOTIFY requestChanged)
  /// From an entry call to its end, or until another one has taken its place.
  Q_PROPERTY(bool running READ running NOTIFY runningChanged)

 public:
  enum System { Live = 0, Test = 1 };
  Q_ENUM(System)
  /// As `orlix::PurchaseState`.
  enum PurchaseState { NoPurchase, PurchaseUnknown, PurchaseRefused, Paid };
  Q_ENUM(PurchaseState)

  explicit OrlixCheckout(QObject* parent = nullptr) : QObject(parent) {}

  QQuickWindow* window() const;
  void setWindow(QQuickWindow* window);
  bool running() const { return running_; }
  void setRunning(bool running);
  void endWithoutOutcome();

  Q_INVOKABLE void checkout();
  Q_INVOKABLE void preRegister();
  Q_INVOKABLE void walletManagement();

  /// What is known of the purchases of the last flow, in a signal's handler and after it. Only
  /// `NoPurchase` and `PurchaseRefused` mean that nothing was taken; when it is `PurchaseUnknown`
  /// the application's server asks the wallet server, by the reference or, without one, by the
  /// code.
  Q_INVOKABLE PurchaseState purchaseState() const;
  /// The server's transaction number; empty when it has sent none.
  Q_INVOKABLE QString purchaseReference() const;
  /// Of the last refusal: the server did not accept the PIN.
  Q_INVOKABLE bool pinRefused() const;

 Q_SIGNALS:
  void requestChanged();
  void runningChanged();
  // The outcomes, as in OXOrlixDelegate: after all screens are gone, one for each flow.
  void paymentSucceeded(const QString& reference);
  void paymentFailed(const QString& reference);
  void errorOccurred(int code);
  void cancelled();
  void registered();
  void walletClosed();
  void invalidCode();
  /// The flow has ended without any of these: the server has stopped this version of the library,
  /// which the user has read, or the application has removed the screens.
  void endedWithoutOutcome();

 private:
  struct Outcome;
  using Begin = std::function<void(OXOrlix&, const EntryRequest& request)>;

  void enter(const Begin& begin);
  EntryRequest request() const;
  void end(const std::function<void()>& signal);

  QString code_, apiKey_, customer_, preMSISDN_;
  double amount_ = 0;
  System system_ = Live;
  QPointer<QQuickWindow> window_;
  bool running_ = false;
  std::shared_ptr<OXOrlix> facade_;  ///< of the last flow
};

}  // namespace orlix::shell
