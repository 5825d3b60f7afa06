// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

class Application;
class ViewController;

/// `none` lets the user's touches through to the screen; `gradient` dims it and holds them back.
enum class ProgressMask { none, gradient };
/// `information` is the style for a lookup that the user waits for; it shows the status alike.
enum class ProgressStyle { activity, information };

/// The one heads-up display that says what the library is busy with.
///
/// It belongs to the controller that showed it last and goes when that one leaves the screen or
/// presents another screen. It is visible, and its mask holds touches back, until its fade has
/// ended. Every completion given to a dismissal runs once: when the fade has ended, or at once when
/// another `show` ends the fade. What a completion throws is logged. Main thread only.
class ProgressIndicator {
 public:
  /// Owned by the application.
  explicit ProgressIndicator(Application& application) : application_(application) {}

  /// Replaces what is shown. `owner` is not held; without one it stays until it is dismissed.
  void show(std::string status, ProgressMask mask = ProgressMask::none,
            ProgressStyle style = ProgressStyle::activity,
            const std::shared_ptr<ViewController>& owner = nullptr);

  /// Fades it out, whichever owner it has; `completion` runs when it is gone, at once when it was
  /// not shown.
  void dismiss(Task completion = {});
  /// The same if `owner` showed it last, otherwise `completion` runs at once.
  void dismissFor(const ViewController& owner, Task completion = {});

  bool visible() const { return state_ != State::hidden; }
  /// True while it is shown for this controller and not fading out.
  bool isShownFor(const ViewController& owner) const;
  const std::string& status() const { return status_; }
  ProgressStyle style() const { return style_; }
  /// True while the user's touches are held back. An owner that is in no window holds none back.
  bool blocksInput() const;

 private:
  friend class Application;
  friend class ModalPresentation;
  friend class ViewController;
  enum class State { hidden, shown, fading };
  struct Completion {
    Task task;
    std::uint64_t fade;  ///< the one it waits for
  };
  bool belongsTo(const ViewController& owner) const;
  void end(std::uint64_t fade);
  /// Without a fade: its owner has left the screen.
  void cutFor(const ViewController& owner);
  /// Fades it out when its owner is no more.
  void dismissOrphan();
  void runCompletions();
  /// Forgets everything, completions included.
  void abandon();

  Application& application_;
  State state_ = State::hidden;
  std::string status_;
  ProgressMask mask_ = ProgressMask::none;
  ProgressStyle style_ = ProgressStyle::activity;
  bool owned_ = false;
  std::weak_ptr<ViewController> owner_;
  std::uint64_t fade_ = 0;  ///< counts them
  std::deque<Completion> completions_;
};

}  // namespace orlix
