// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

namespace orlix {

class Application;
class ViewController;
class Window;

/// The window that the user looks at: the first key window of the foreground scenes, else their
/// first window that can be seen; without scenes what an older platform knows. None when nothing is
/// on the screen. Main thread.
std::shared_ptr<Window> activeWindow(const Application& application);

/// Follows what is presented, except what is being dismissed, and what containers show, up to
/// the controller on top. None for none.
std::shared_ptr<ViewController> topViewControllerFrom(
    const std::shared_ptr<ViewController>& controller);

/// True when the controller is in one of the application's windows, or presented there.
bool isOnScreen(const Application& application, const std::shared_ptr<ViewController>& controller);

}  // namespace orlix
