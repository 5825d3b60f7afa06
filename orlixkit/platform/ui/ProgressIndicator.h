#pragma once

#include <string>

#include "orlixkit/platform/Bytes.h"

namespace orlix {

/// `none` lets the user's touches through to the screen; `gradient` dims it and holds them back.
enum class ProgressMask { none, gradient };
/// `information` is the style for a lookup that the user waits for; it shows the status alike.
enum class ProgressStyle { activity, information };

/// The one heads-up display that says what the library is busy with. Main thread only.
class ProgressIndicator {
 public:
  void show(std::string status, ProgressMask mask = ProgressMask::none,
            ProgressStyle style = ProgressStyle::activity);
  /// Fades out; `completion` runs when it is gone, at once when it was not shown.
  void dismiss(Task completion = {});

  bool visible() const { return visible_; }
  const std::string& status() const { return status_; }
  ProgressStyle style() const { return style_; }
  /// True while the user's touches are held back.
  bool blocksInput() const { return visible_ && mask_ == ProgressMask::gradient; }

 private:
  bool visible_ = false;
  std::string status_;
  ProgressMask mask_ = ProgressMask::none;
  ProgressStyle style_ = ProgressStyle::activity;
};

}  // namespace orlix
