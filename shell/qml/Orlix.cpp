// SPDX-License-Identifier: Apache-2.0

#include "shell/qml/Orlix.h"

#include <QCoreApplication>
#include <QQmlInfo>
#include <QStandardPaths>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "orlixkit/ui/AlertController.h"
#include "shell/ScreenPresenter.h"

namespace orlix::shell {

Orlix::Orlix(QObject* parent) : QObject(parent) {}

Orlix::~Orlix() = default;

QString Orlix::applicationName() const {
  return applicationName_.isEmpty() ? QCoreApplication::applicationName() : applicationName_;
}

QString Orlix::stateDirectory() const {
  return stateDirectory_.isEmpty()
             ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
             : stateDirectory_;
}

void Orlix::set(QString& setting, const QString& value, const char* name) {
  if (setting == value) {
    return;
  }
  if (wasInstalled_) {
    qmlWarning(this) << "Orlix." << name << " cannot be changed after the first entry call";
    return;
  }
  setting = value;
  Q_EMIT changed();
}

void Orlix::deregisterUser() {
  if (shell_) {
    try {
      OXOrlix::make()->deregisterUser();
    } catch (const std::exception& error) {
      qmlEngine(this)->throwError(QString::fromUtf8(error.what()));
    }
  }
}

void Orlix::install(QQuickWindow& window) {
  if (shell_ && window_ == &window) {
    return;
  }
  if (wasInstalled_) {
    throw std::runtime_error(
        "Orlix: the screens are shown over the window of the first entry call only");
  }
  if (Host::isInstalled()) {
    throw std::runtime_error("Orlix: the library is in use already, by another engine or in C++");
  }
  PosixOptions options;
  options.applicationName = applicationName().toStdString();
  options.stateDirectory = stateDirectory().toStdString();
  if (!anchorFile_.isEmpty()) {
    options.anchorFile = anchorFile_.toStdString();
  }
  shell_ = std::make_unique<OrlixShell>(
      *qmlEngine(this), window, options,
      Deployment{liveAddress_.toStdString(), testAddress_.toStdString(),
                 termsAddress_.toStdString()});
  wasInstalled_ = true;
  window_ = &window;
  // The presenter needs the window until then.
  connect(&window, &QObject::destroyed, this, [this] {
    shell_.reset();
    replaceRunning(nullptr);
  });
  connect(&shell_->presenter(), &ScreenPresenter::dismissed, this, &Orlix::screenDismissed);
  connect(&shell_->presenter(), &ScreenPresenter::emptied, this, &Orlix::emptied);
}

void Orlix::enter(OrlixCheckout& checkout, QQuickWindow& window, OXSystem system,
                  const EntryCall& call) {
  if ((system == kLiveSystem ? liveAddress_ : testAddress_).isEmpty()) {
    throw std::runtime_error(
        std::string("Orlix: the address of the wallet server is not set; set ") +
        (system == kLiveSystem ? "Orlix.liveAddress" : "Orlix.testAddress"));
  }
  install(window);
  ++flow_;  // before the call, which dismisses the screens of the previous flow
  try {
    call(shell_->hostScreen());
  } catch (const std::bad_alloc&) {
    replaceRunning(nullptr);
    throw;
  } catch (const std::system_error&) {
    replaceRunning(nullptr);
    throw;
  }
  replaceRunning(&checkout);
}

void Orlix::replaceRunning(OrlixCheckout* checkout) {
  const QPointer<OrlixCheckout> former = std::exchange(running_, checkout);
  if (former && former != checkout) {
    former->setRunning(false);
  }
  if (checkout != nullptr) {
    checkout->setRunning(true);
  }
}

void Orlix::left(const OrlixCheckout& checkout) {
  if (running_ == &checkout) {
    running_.clear();
  }
}

/// The library makes no callback when the server has stopped its version, and leaves the waiting
/// screen to the host. Dismisses it when the user has closed the alert.
void Orlix::screenDismissed(const std::shared_ptr<ViewController>& controller) {
  const auto alert = std::dynamic_pointer_cast<AlertController>(controller);
  const DrawnScreen* const top = shell_->presenter().top();
  if (!alert || alert->title() != "Error" || top == nullptr ||
      top->controller()->identifier() != "Waiting") {
    return;
  }
  Host::current().ports().mainQueue->async([this, flow = flow_] {
    if (flow == flow_) {
      shell_->hostScreen()->dismiss(true);
    }
  });
}

/// An outcome is delivered on the main queue after the screens are gone, so that only a later task
/// knows that there is none.
void Orlix::emptied() {
  const std::shared_ptr<MainQueue> queue = Host::current().ports().mainQueue;
  queue->async([this, queue, flow = flow_] {
    queue->async([this, flow] {
      if (flow == flow_ && running_ && !shell_->hostScreen()->presentedViewController()) {
        running_->endWithoutOutcome();
      }
    });
  });
}

}  // namespace orlix::shell
