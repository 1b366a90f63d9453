#include "images/pngimageui.h"

#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <cstring>

namespace tessarin {

QImage PngToQImage(const PngPicture& picture) {
  if (picture.Empty()) return QImage();
  const int width = static_cast<int>(picture.Width);
  const int height = static_cast<int>(picture.Height);
  QImage image(width, height, QImage::Format_BGR888);
  if (image.isNull()) return QImage();  // too large for this machine
  const std::size_t rowBytes = static_cast<std::size_t>(picture.Width) * 3;
  // QImage pads its lines to 4 bytes, the picture doesn't: copy line by line.
  for (int y = 0; y < height; ++y)
    std::memcpy(image.scanLine(y), picture.Row(static_cast<std::uint32_t>(y)), rowBytes);
  return image;
}

PngPicture PngFromQImage(const QImage& image) {
  PngPicture picture;
  if (image.isNull()) return picture;
  const QImage converted = image.convertToFormat(QImage::Format_BGR888);
  picture.Width = static_cast<std::uint32_t>(converted.width());
  picture.Height = static_cast<std::uint32_t>(converted.height());
  const std::size_t rowBytes = static_cast<std::size_t>(picture.Width) * 3;
  picture.Pixels.resize(rowBytes * picture.Height);
  for (int y = 0; y < converted.height(); ++y)
    std::memcpy(picture.Pixels.data() + rowBytes * static_cast<std::size_t>(y),
                converted.constScanLine(y), rowBytes);
  return picture;
}

void PngLabelTarget::PaintPng(const PngPicture& picture, int x, int y) {
  if (m_label == nullptr) return;
  const QImage image = PngToQImage(picture);
  const QPixmap current = m_label->pixmap();
  if (current.isNull() || (x == 0 && y == 0 && image.size() == current.size())) {
    m_label->setPixmap(QPixmap::fromImage(image));
    return;
  }
  // A plain copy over what the label shows: the loader has already mixed in the background.
  QPixmap canvas = current;
  QPainter painter(&canvas);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.drawImage(x, y, image);
  painter.end();
  m_label->setPixmap(canvas);
}

}  // namespace tessarin
