// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QQuickImageProvider>
#include <memory>

#include "orlixkit/ports/Bundle.h"

namespace orlix::shell {

/// Provides images from the host's resources, `image://orlix/<name>`: the SVG when there is one,
/// else a PNG. `<name>@rrggbb` is the same shape in one colour. A missing image is empty, with a
/// warning. Any thread.
class ResourceImages : public QQuickImageProvider {
 public:
  explicit ResourceImages(std::shared_ptr<const Bundle> bundle)
      : QQuickImageProvider(QQuickImageProvider::Image), bundle_(std::move(bundle)) {}

  /// Scaled to fit into `requestedSize`, preserving the aspect ratio; original size when none is
  /// given.
  QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

 private:
  const std::shared_ptr<const Bundle> bundle_;
};

}  // namespace orlix::shell
