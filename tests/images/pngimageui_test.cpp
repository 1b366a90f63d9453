#include "images/pngimageui.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPixmap>
#include <string>

#include "images/pngloader.h"
#include "pngtestfiles.h"

namespace tessarin {
namespace {

PngPicture Sample(std::uint32_t width, std::uint32_t height) {
  PngPicture picture;
  picture.Width = width;
  picture.Height = height;
  for (std::uint32_t i = 0; i < width * height * 3; ++i)
    picture.Pixels.push_back(static_cast<std::uint8_t>(i * 37 + 11));
  return picture;
}

TEST(PngImageUi, QImageHoldsThePixelsInTheirColours) {
  // An odd width, so that QImage pads its lines and the picture doesn't.
  PngPicture picture = Sample(5, 3);
  QImage image = PngToQImage(picture);
  ASSERT_EQ(image.width(), 5);
  ASSERT_EQ(image.height(), 3);
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 5; ++x) {
      const std::uint8_t* bgr = picture.Row(y) + x * 3;
      EXPECT_EQ(image.pixel(x, y), qRgb(bgr[2], bgr[1], bgr[0])) << x << "," << y;
    }
  EXPECT_TRUE(PngToQImage(PngPicture{}).isNull());
}

TEST(PngImageUi, RoundTripThroughQImage) {
  PngPicture picture = Sample(7, 4);
  PngPicture back = PngFromQImage(PngToQImage(picture));
  EXPECT_EQ(back.Width, 7u);
  EXPECT_EQ(back.Height, 4u);
  EXPECT_EQ(back.Pixels, picture.Pixels);
  EXPECT_TRUE(PngFromQImage(QImage()).Empty());
}

TEST(PngImageUi, LabelShowsTheLoadedPictureAtItsPlace) {
  // A 2 x 1 picture: red, then a clear pixel over a grey background picture taken from the label.
  std::string raw("\0\xff\0\0\xff\0\0\0\0", 9);
  std::string bytes = pngtest::Signature() + pngtest::Ihdr(2, 1, 8, 6) +
                      pngtest::Chunk("IDAT", pngtest::Zlib(raw)) + pngtest::Chunk("IEND", "");
  QLabel label;
  QImage grey(4, 3, QImage::Format_RGB32);
  grey.fill(qRgb(90, 90, 90));
  label.setPixmap(QPixmap::fromImage(grey));
  PngPicture background = PngFromQImage(label.pixmap().toImage());

  PngLabelTarget target(&label);
  LoadPNG loader;
  loader.PicBox(&target);
  loader.SetToBkgrnd(true, 1, 2);
  loader.BackgroundPicture(&background);
  loader.SetAlpha(true);
  loader.OpenPNGData(bytes);
  ASSERT_EQ(loader.ErrorNumber(), 0);

  QImage shown = label.pixmap().toImage();
  ASSERT_EQ(shown.size(), QSize(4, 3));
  EXPECT_EQ(shown.pixel(1, 2), qRgb(255, 0, 0));
  EXPECT_EQ(shown.pixel(2, 2), qRgb(90, 90, 90));
  EXPECT_EQ(shown.pixel(0, 0), qRgb(90, 90, 90));

  // A label that shows nothing gets the picture alone.
  QLabel empty;
  PngLabelTarget alone(&empty);
  LoadPNG plain;
  plain.PicBox(&alone);
  plain.OpenPNGData(bytes);
  EXPECT_EQ(empty.pixmap().size(), QSize(2, 1));
  EXPECT_EQ(empty.pixmap().toImage().pixel(0, 0), qRgb(255, 0, 0));
}

}  // namespace
}  // namespace tessarin

int main(int argc, char** argv) {
  // Test discovery runs this binary without the test's environment: never look for a display.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
