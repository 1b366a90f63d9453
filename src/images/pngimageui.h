#pragma once

#include <QImage>

#include "images/pngloader.h"

class QLabel;

namespace tessarin {

// A copy of the picture in a QImage of 24-bit pixels; a null QImage for an empty picture.
QImage PngToQImage(const PngPicture& picture);

// A copy of a QImage as a picture, to give LoadPNG as its BackgroundPicture (what lies under a
// control); an empty picture for a null QImage. Alpha in the image is dropped.
PngPicture PngFromQImage(const QImage& image);

// Paints loaded pictures into a label: the picture is placed at x, y of what the label shows
// (a label that shows nothing gets the picture alone), and becomes the label's pixmap.
class PngLabelTarget final : public PngPaintTarget {
 public:
  explicit PngLabelTarget(QLabel* label) : m_label(label) {}
  void PaintPng(const PngPicture& picture, int x, int y) override;

 private:
  QLabel* m_label;
};

}  // namespace tessarin
