// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "orlixkit/ports/Bytes.h"

namespace orlix {

class Application;
class TextField;
class ViewController;

// What a user can touch, and what a touch does: one set of rules for the shell that draws, a script
// and a test. A `name` is that of an outlet or an action. Main thread.

/// Why a touch has no effect now.
enum class TouchRefusal {
  none,
  covered,   ///< the screen is being presented or dismissed, or presents another one
  masked,    ///< the progress indicator holds touches back
  hidden,    ///< the outlet cannot be seen
  disabled,  ///< the button or field
};

/// The reason in words.
const char* touchRefusalText(TouchRefusal refusal);

TouchRefusal touchRefusal(const Application& application, const ViewController& screen,
                          const std::string& name);

/// True while the progress indicator holds touches on this name back, wherever the screen is.
bool touchIsMasked(const Application& application, const ViewController& screen,
                   const std::string& name);

/// What a tap does: the button's or the view's listener, the field's editing, else the action of
/// that name. Empty when nothing listens.
Task touchTask(const std::shared_ptr<ViewController>& screen, const std::string& name);

/// A user touches a field of the screen: the field that had the cursor ends its editing, and the
/// cursor comes in behind the text. A field in editing keeps it where it is. False when the field
/// wants no editing.
bool touchField(const ViewController& screen, TextField& field);

}  // namespace orlix
