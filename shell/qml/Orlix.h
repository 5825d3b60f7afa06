// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>

#include "shell/OrlixShell.h"
#include "shell/qml/OrlixCheckout.h"

namespace orlix::shell {

/// QML singleton `Orlix`: the settings of the library, and the library itself, which is installed
/// by the first entry call of an OrlixCheckout. Set what is needed before that: later changes are
/// refused with a warning. One QML engine in a process can use it.
///
/// The screens are drawn over the window of the first entry call. When that window is destroyed all
/// work ends and the library is uninstalled; no window can take its place.
class Orlix : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  /// Base address (https) of the live wallet server, and of the one for tests.
  Q_PROPERTY(QString liveAddress READ liveAddress WRITE setLiveAddress NOTIFY changed)
  Q_PROPERTY(QString testAddress READ testAddress WRITE setTestAddress NOTIFY changed)
  /// The page of the terms.
  Q_PROPERTY(QString termsAddress READ termsAddress WRITE setTermsAddress NOTIFY changed)
  /// Path of a certificate (DER or PEM) to trust besides the system's roots; none by default.
  Q_PROPERTY(QString anchorFile READ anchorFile WRITE setAnchorFile NOTIFY changed)
  /// By default that of the application object.
  Q_PROPERTY(QString applicationName READ applicationName WRITE setApplicationName NOTIFY changed)
  /// Where the device's data are kept, by default in the user's folder for this application's data
  /// (QStandardPaths::AppDataLocation). It must belong to this user only.
  Q_PROPERTY(QString stateDirectory READ stateDirectory WRITE setStateDirectory NOTIFY changed)

 public:
  explicit Orlix(QObject* parent = nullptr);
  ~Orlix() override;
  Orlix(const Orlix&) = delete;
  Orlix& operator=(const Orlix&) = delete;

  QString liveAddress() const { return liveAddress_; }
  QString testAddress() const { return testAddress_; }
  QString termsAddress() const { return termsAddress_; }
  QString anchorFile() const { return anchorFile_; }
  QString applicationName() const;
  QString stateDirectory() const;
  void setLiveAddress(const QString& address) { set(liveAddress_, address, "liveAddress"); }
  void setTestAddress(const QString& address) { set(testAddress_, address, "testAddress"); }
  void setTermsAddress(const QString& address) { set(termsAddress_, address, "termsAddress"); }
  void setAnchorFile(const QString& path) { set(anchorFile_, path, "anchorFile"); }
  void setApplicationName(const QString& name) { set(applicationName_, name, "applicationName"); }
  void setStateDirectory(const QString& path) { set(stateDirectory_, path, "stateDirectory"); }

  /// Makes this device unknown to the wallet of the last entry call's system, when a customer
  /// leaves; see `OXOrlix`. Does nothing before the first entry call. Throws a JavaScript Error
  /// when the store could not be wiped.
  Q_INVOKABLE void deregisterUser();

  using EntryCall = std::function<void(const std::shared_ptr<ViewController>& controller)>;

  /// Installs the library, if it is not, and makes the entry call of a checkout. Throws what the
  /// call throws, and std::runtime_error when the library cannot be installed or is in use over
  /// another window.
  void enter(OrlixCheckout& checkout, QQuickWindow& window, OXSystem system, const EntryCall& call);
  /// The flow of this checkout has ended.
  void left(const OrlixCheckout& checkout);

 Q_SIGNALS:
  void changed();

 private:
  void set(QString& setting, const QString& value, const char* name);
  void install(QQuickWindow& window);
  void screenDismissed(const std::shared_ptr<ViewController>& controller);
  void emptied();
  void replaceRunning(OrlixCheckout* checkout);

  QString liveAddress_, testAddress_, termsAddress_, anchorFile_, applicationName_, stateDirectory_;
  QPointer<QQuickWindow> window_;
  bool wasInstalled_ = false;
  std::unique_ptr<OrlixShell> shell_;
  std::uint64_t flow_ = 0;  ///< counts the entry calls
  QPointer<OrlixCheckout> running_;
};

}  // namespace orlix::shell
