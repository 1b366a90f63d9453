// Feeds arbitrary bytes to the loader, as OpenPNG does with the bytes of a file, under every
// combination of its transparency settings and with a background picture, so that the mixing
// paths run too.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "images/pngloader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static tessarin::PngPicture background = [] {
    tessarin::PngPicture picture;
    picture.Width = 16;
    picture.Height = 9;
    picture.Pixels.assign(16 * 9 * 3, 0x80);
    return picture;
  }();
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  // The last byte picks the settings, so that the fuzzer can steer them.
  unsigned pick = size > 0 ? data[size - 1] : 0;
  tessarin::LoadPNG loader;
  loader.SetTrans((pick & 1) != 0);
  loader.SetAlpha((pick & 2) != 0);
  if ((pick & 4) != 0) {
    loader.BackgroundPicture(&background);
    loader.SetToBkgrnd(true, static_cast<int>(pick >> 4) - 4, 3);
  } else {
    loader.SetOwnBkgndColor(true, (pick & 8) != 0 ? 0x00123456 : 0);
  }
  loader.OpenPNGData(bytes);
  const tessarin::PngPicture& picture = loader.Picture();
  // The picture must be exactly as large as it says.
  if (picture.Pixels.size() != static_cast<std::size_t>(picture.Width) * picture.Height * 3)
    __builtin_trap();
  return 0;
}
