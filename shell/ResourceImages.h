#pragma once

#include <QQuickImageProvider>
#include <memory>

#include "orlixkit/platform/Bundle.h"

namespace orlix::shell {

/// Pictures of the host's resources by name, `image://orlix/<name>`: the vector original when there
/// is one, else a PNG. A picture that is missing is empty, with a warning. Any thread.
class ResourceImages : public QQuickImageProvider {
 public:
  explicit ResourceImages(std::shared_ptr<const Bundle> bundle)
      : QQuickImageProvider(QQuickImageProvider::Image), bundle_(std::move(bundle)) {}

  /// Drawn to fit into `requestedSize`, its proportions kept; at its own size when none is asked
  /// for.
  QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

 private:
  const std::shared_ptr<const Bundle> bundle_;
};

}  // namespace orlix::shell
