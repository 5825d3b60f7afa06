// SPDX-License-Identifier: Apache-2.0

#include "shell/ResourceImages.h"

#include <QBuffer>
#include <QImageReader>
#include <QtDebug>

namespace orlix::shell {

QImage ResourceImages::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
  for (const char* type : {"svg", "png"}) {
    const auto resource = bundle_->resource(id.toStdString(), type);
    if (!resource) {
      continue;
    }
    QByteArray bytes(reinterpret_cast<const char*>(resource->data()),
                     static_cast<qsizetype>(resource->size()));
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, type);
    const QSize own = reader.size();
    if (size != nullptr) {
      *size = own;
    }
    if (!requestedSize.isEmpty()) {
      reader.setScaledSize(own.scaled(requestedSize, Qt::KeepAspectRatio));
    }
    const QImage image = reader.read();
    if (image.isNull()) {
      qWarning("The picture %s cannot be read: %s", qUtf8Printable(id),
               qUtf8Printable(reader.errorString()));
    }
    return image;
  }
  qWarning("There is no picture %s", qUtf8Printable(id));
  return {};
}

}  // namespace orlix::shell
