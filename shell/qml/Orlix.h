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

/// QML singleton `Orlix`: the library's settings. The first entry call of an OrlixCheckout installs
/// the library with them; later changes are refused with a warning. Only one QML engine of a
/// process can use it.
///
/// The screens are drawn over the window of the first entry call. When that window is destroyed,
/// all work ends and the library is uninstalled for the rest of the process.
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
  /// Folder of the device's data, QStandardPaths::AppDataLocation by default. Must belong to this
  /// user only.
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

  /// Wipes this device's credentials for the last entry call's system; call it when a customer logs
  /// out, see `OXOrlix`. Does nothing before the first entry call. Throws a JavaScript Error when
  /// the store could not be wiped.
  Q_INVOKABLE void deregisterUser();

  using EntryCall = std::function<void(const std::shared_ptr<ViewController>& controller)>;

  /// Installs the library if necessary and makes the entry call of a checkout. Throws what the call
  /// throws, and std::runtime_error when the library cannot be installed or is used by another
  /// window.
  void enter(OrlixCheckout& checkout, QQuickWindow& window, OXSystem system, const EntryCall& call);
  /// Call when the flow of this checkout has ended.
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
