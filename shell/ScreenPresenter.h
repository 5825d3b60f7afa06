// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QVariantAnimation>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

#include "orlixkit/ports/Bundle.h"
#include "orlixkit/ui/Application.h"
#include "shell/DrawnScreen.h"
#include "shell/ProgressAdapter.h"

namespace orlix::shell {

/// Draws what the library presents over the host's window: cards over the dimmed host, screens that
/// fill it, alerts above them, the progress indicator above all. Keeps the keyboard focus in the
/// topmost one. Presentations fade in and out; touches have no effect during a transition.
///
/// Main thread. Construct it after the library has been installed, release it before the host is
/// uninstalled.
class ScreenPresenter : public QObject, public UiObserver {
  Q_OBJECT

 public:
  static constexpr std::chrono::milliseconds kFade{220};

  /// `engine` must have been prepared by `prepareEngine`; it and `window` must outlive the
  /// presenter.
  ScreenPresenter(QQmlEngine& engine, QQuickWindow& window, std::chrono::milliseconds fade = kFade);
  ~ScreenPresenter() override;

  void didPresent(const std::shared_ptr<ViewController>& controller) override;
  void didDismiss(const std::shared_ptr<ViewController>& controller) override;
  void progressChanged(const ProgressIndicator& indicator) override;
  bool animate(const std::shared_ptr<ViewController>& controller, Transition transition,
               const Task& done) override;

  bool isAnimating() const { return !fades_.empty(); }
  /// The topmost drawn screen or alert; null while nothing is presented.
  const DrawnScreen* top() const { return drawn_.empty() ? nullptr : drawn_.back().get(); }
  QQuickWindow& window() const { return window_; }

 Q_SIGNALS:
  /// The library draws nothing any more; it may be between two screens.
  void emptied();

 protected:
  /// Filters key events of the window before its items receive them.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  using Drawn = std::vector<std::unique_ptr<DrawnScreen>>;
  struct Fade;

  DrawnScreen& draw(const std::shared_ptr<ViewController>& controller);
  Drawn::iterator find(const ViewController& controller);
  /// Animates from 0 to 1, calling `step`, then posts `done` to the main queue. Without animation
  /// when the duration is 0.
  void play(const std::function<void(double)>& step, const Task& done);
  void end(const QVariantAnimation* animation);
  void resized();
  void stackChanged();
  void maskChanged();
  void focusMoved();
  bool isMasked() const;
  std::vector<QQuickItem*> itemsInReachUnderMask() const;
  bool moveFocus(bool forward);

  /// Compiles the QML files in the background, so that their first use does not delay input.
  void warmUp();

  QQmlEngine& engine_;
  QQuickWindow& window_;
  std::vector<std::unique_ptr<QQmlComponent>> warm_;  ///< keeps the compiled components
  const std::chrono::milliseconds fade_;
  ProgressAdapter progress_;
  QPointer<QQuickItem> layers_;
  QPointer<QQuickItem> mask_;
  QPointer<QQuickItem> indicator_;
  QPointer<QQuickItem> hostFocus_;  ///< had the focus before the first presentation
  std::unique_ptr<QQuickItem> lingering_;
  Drawn drawn_;                               ///< from the bottom up
  std::vector<std::unique_ptr<Fade>> fades_;  ///< in progress
  unsigned indicatorShown_ = 0;  ///< counts its changes, to cancel the fade of an earlier one
};

/// The QML modules that the drawings import.
inline constexpr const char* kImportedModules[] = {"QtQuick", "QtQuick.Layouts",
                                                   "QtQuick.Templates"};

/// Registers component paths, images and the brand's fonts with the engine. Call it once per
/// engine, before a presenter is made. Throws std::runtime_error, whose text says what to install,
/// when one of these modules is missing.
void prepareEngine(QQmlEngine& engine, const std::shared_ptr<const Bundle>& bundle);

}  // namespace orlix::shell
