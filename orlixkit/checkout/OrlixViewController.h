#pragma once

#include <memory>

#include "orlixkit/checkout/OXSession.h"
#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

/// Base of the library's screens: the brand's colours and fonts, the ribbon at the bottom, and the
/// session that the screen belongs to.
class OrlixViewController : public ViewController {
 public:
  OrlixViewController();
  void viewDidLoad() override;
  void viewWillAppear() override;
  void viewDidAppear() override;
  void viewWillDisappear() override;

  void addBottomRibbon();
  void removeBottomRibbon();
  static void changeFontForView(const std::shared_ptr<View>& view);
  static void changeFontForLabel(Label& label);
  /// Writes the names of the brand's fonts to the log.
  static void debugPrintFonts();

 protected:
  /// The session that was current when the screen was made; none when it has been replaced or has
  /// ended. An action registered by `action` finds it present.
  std::shared_ptr<OXSession> session() const;
  /// Registers an action that runs only while the screen's session is live.
  void action(const std::string& name, Task operation);
  /// The secure code screens leave their frame alone in landscape.
  virtual bool isSecureScreen() const { return false; }

 private:
  std::weak_ptr<OXSession> session_;
  std::shared_ptr<ImageView> ribbonView_;
};

}  // namespace orlix
