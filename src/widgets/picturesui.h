#pragma once

// The program's own pictures, drawn as vectors at the device's pixel ratio so that they stay
// sharp at any scaling. They stand where the original kept bitmaps in a hidden window.

#include <QIcon>
#include <QPixmap>

class QWidget;

namespace tessarin {

// The panel's three icon sets: red (entries 0 to 6), yellow (options), white (quit).
enum class PanelIconSet { Red, Yellow, White };

// A panel icon, `size` device-independent pixels square; `down` is the pressed picture.
QPixmap PanelIconPicture(PanelIconSet set, bool down, int size, qreal devicePixelRatio);
// Frame 0 to 20 of the progress picture (0 empty, 20 full).
QPixmap ProgressPicture(int frame, QSize size, qreal devicePixelRatio);
// The arcade stick that stands for Tessarin: window icon, working and wizard pictures.
QPixmap StickPicture(int size, qreal devicePixelRatio);
QIcon AppIcon();
// A radio button or check box indicator as the platform draws it, for the custom rows.
QPixmap IndicatorPicture(const QWidget* styleSource, bool radio, bool on);

}  // namespace tessarin
