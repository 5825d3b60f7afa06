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

/// QML type `OrlixCheckout`: a payment, a registration or wallet management, presented over the
/// window in which it is declared. Each of the three functions is an entry call that starts a flow;
/// the flow ends with one of the signals.
///
/// One flow at a time: an entry call replaces a flow that is still on screen, also one of another
/// OrlixCheckout, which then emits no signal. A call that cannot start a flow throws a JavaScript
/// Error; a running flow continues. Destroying the object does not end its flow, but its outcome is
/// lost.
class OrlixCheckout : public QObject {
  Q_OBJECT
  QML_ELEMENT
  /// The code to pay; for `checkout` only.
  Q_PROPERTY(QString code MEMBER code_ NOTIFY requestChanged)
  /// In currency units; with 0 the code or the user sets the amount. For `checkout` only.
  Q_PROPERTY(double amount MEMBER amount_ NOTIFY requestChanged)
  Q_PROPERTY(QString apiKey MEMBER apiKey_ NOTIFY requestChanged)
  Q_PROPERTY(System system MEMBER system_ NOTIFY requestChanged)
  /// The application's identifier of its customer; empty for none. A change of customer makes the
  /// stored credentials unreadable, except in the first call of a process: see `OXOrlix` and
  /// `Orlix.deregisterUser`.
  Q_PROPERTY(QString customer MEMBER customer_ NOTIFY requestChanged)
  /// A mobile number to suggest when the device is enrolled; empty for none.
  Q_PROPERTY(QString preMSISDN MEMBER preMSISDN_ NOTIFY requestChanged)
  /// By default the window that contains this object.
  Q_PROPERTY(QQuickWindow* window READ window WRITE setWindow NOTIFY requestChanged)
  /// True from an entry call until its flow has ended or was replaced.
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

  /// State of the last flow's purchases, in a signal's handler and after it. Only `NoPurchase` and
  /// `PurchaseRefused` mean that no money was taken; for `PurchaseUnknown` the application's server
  /// asks the wallet server, by the reference or else by the code.
  Q_INVOKABLE PurchaseState purchaseState() const;
  /// The server's transaction number; empty when it has sent none.
  Q_INVOKABLE QString purchaseReference() const;
  /// True when the last refusal was for a wrong PIN.
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
  /// The flow ended without an outcome: the server has stopped this version of the library and the
  /// user has closed the alert, or the application has removed the screens.
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
