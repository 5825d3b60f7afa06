// SPDX-License-Identifier: Apache-2.0

#include "shell/ResourceImages.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QtDebug>

namespace orlix::shell {

namespace {

void tint(QImage& image, const QColor& color) {
  image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(image.rect(), color);
}

}  // namespace

QImage ResourceImages::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
  const qsizetype at = id.indexOf(u'@');
  const QString name = at < 0 ? id : id.left(at);
  for (const char* type : {"svg", "png"}) {
    const auto resource = bundle_->resource(name.toStdString(), type);
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
    QImage image = reader.read();
    if (image.isNull()) {
      qWarning("The picture %s cannot be read: %s", qUtf8Printable(id),
               qUtf8Printable(reader.errorString()));
    }
    if (at >= 0) {
      tint(image, QColor("#" + id.mid(at + 1)));
    }
    return image;
  }
  qWarning("There is no picture %s", qUtf8Printable(id));
  return {};
}

}  // namespace orlix::shell
