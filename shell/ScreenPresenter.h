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

#include "orlixkit/platform/Bundle.h"
#include "orlixkit/platform/ui/Application.h"
#include "shell/DrawnScreen.h"
#include "shell/ProgressAdapter.h"

namespace orlix::shell {

/// Draws what the library presents over the host's window: cards over the dimmed host, screens that
/// fill it, alerts above them, the progress indicator above all; and keeps the keyboard with what
/// stands on top. What it presents fades in and out; touches wait until it has arrived.
///
/// Main thread. Made after the library has been put on its host, released before the host is
/// uninstalled.
class ScreenPresenter : public QObject, public UiObserver {
  Q_OBJECT

 public:
  static constexpr std::chrono::milliseconds kFade{220};

  /// `engine` has been prepared by `prepareEngine`; it and `window` must outlive the presenter.
  ScreenPresenter(QQmlEngine& engine, QQuickWindow& window, std::chrono::milliseconds fade = kFade);
  ~ScreenPresenter() override;

  void didPresent(const std::shared_ptr<ViewController>& controller) override;
  void didDismiss(const std::shared_ptr<ViewController>& controller) override;
  void progressChanged(const ProgressIndicator& indicator) override;
  bool animate(const std::shared_ptr<ViewController>& controller, Transition transition,
               const Task& done) override;

  bool isAnimating() const { return !fades_.empty(); }
  /// The drawn screen or alert on top; none while nothing is presented.
  const DrawnScreen* top() const { return drawn_.empty() ? nullptr : drawn_.back().get(); }
  QQuickWindow& window() const { return window_; }

 Q_SIGNALS:
  /// Nothing of the library is drawn any more; it may be between two screens.
  void emptied();

 protected:
  /// Keys of the window, before its items get them.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  using Drawn = std::vector<std::unique_ptr<DrawnScreen>>;
  struct Fade;

  DrawnScreen& draw(const std::shared_ptr<ViewController>& controller);
  Drawn::iterator find(const ViewController& controller);
  /// Plays from 0 to 1 and tells `step`; then `done` is the main queue's next task. Not played when
  /// the fade takes no time.
  void play(const std::function<void(double)>& step, const Task& done);
  void end(const QVariantAnimation* animation);
  void resized();
  void stackChanged();
  void maskChanged();
  void focusMoved();
  bool isMasked() const;
  std::vector<QQuickItem*> itemsInReachUnderMask() const;
  bool moveFocus(bool forward);

  /// Lets the drawings be compiled in the background, so that the first use of none holds up a
  /// touch.
  void warmUp();

  QQmlEngine& engine_;
  QQuickWindow& window_;
  std::vector<std::unique_ptr<QQmlComponent>> warm_;  ///< holds what is compiled
  const std::chrono::milliseconds fade_;
  ProgressAdapter progress_;
  QPointer<QQuickItem> layers_;
  QPointer<QQuickItem> mask_;
  QPointer<QQuickItem> indicator_;
  QPointer<QQuickItem> hostFocus_;  ///< had the keyboard before anything was presented
  std::unique_ptr<QQuickItem> lingering_;
  Drawn drawn_;                               ///< from the bottom up
  std::vector<std::unique_ptr<Fade>> fades_;  ///< being played
  unsigned indicatorShown_ = 0;  ///< counts its changes: the fade of an earlier one plays no more
};

/// What the shell's drawings need of the engine that they are made in: where components are found,
/// the pictures, and the brand's fonts. Once for each engine, before a presenter is made.
void prepareEngine(QQmlEngine& engine, const std::shared_ptr<const Bundle>& bundle);

}  // namespace orlix::shell
