#include "widgets/picturesui.h"

#include <QApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QStyle>
#include <QStyleOptionButton>
#include <QWidget>

namespace tessarin {

namespace {

QPixmap Canvas(QSize size, qreal dpr) {
  QPixmap pixmap(size * dpr);
  pixmap.setDevicePixelRatio(dpr);
  pixmap.fill(Qt::transparent);
  return pixmap;
}

struct OrbColours {
  QColor light, mid, dark, rim, glyph;
};

OrbColours ColoursFor(PanelIconSet set) {
  switch (set) {
    case PanelIconSet::Yellow:
      return {QColor(0xFF, 0xEC, 0x8A), QColor(0xF5, 0xB8, 0x14), QColor(0xB0, 0x72, 0x00),
              QColor(0x6E, 0x47, 0x00), QColor(0x5A, 0x38, 0x00)};
    case PanelIconSet::White:
      return {QColor(0xFF, 0xFF, 0xFF), QColor(0xDC, 0xE3, 0xEA), QColor(0x98, 0xA6, 0xB4),
              QColor(0x55, 0x62, 0x70), QColor(0x3A, 0x46, 0x52)};
    case PanelIconSet::Red:
    default:
      return {QColor(0xFF, 0x8A, 0x7A), QColor(0xE0, 0x2A, 0x20), QColor(0x8E, 0x0C, 0x0C),
              QColor(0x52, 0x05, 0x05), QColor(0xFF, 0xFF, 0xFF)};
  }
}

}  // namespace

QPixmap PanelIconPicture(PanelIconSet set, bool down, int size, qreal dpr) {
  QPixmap pixmap = Canvas(QSize(size, size), dpr);
  QPainter p(&pixmap);
  p.setRenderHint(QPainter::Antialiasing);
  const OrbColours c = ColoursFor(set);
  const qreal s = size;
  const qreal margin = s * 0.08;
  // A pressed button sinks: no shadow, moved down a little, lit from below.
  const qreal shift = down ? s * 0.04 : 0.0;
  QRectF orb(margin, margin + shift, s - 2 * margin, s - 2 * margin - s * 0.04);
  if (!down) {
    QRadialGradient shadow(orb.center() + QPointF(0, s * 0.06), orb.width() * 0.55);
    shadow.setColorAt(0.8, QColor(0, 0, 0, 90));
    shadow.setColorAt(1.0, QColor(0, 0, 0, 0));
    p.setPen(Qt::NoPen);
    p.setBrush(shadow);
    p.drawEllipse(orb.adjusted(-s * 0.04, s * 0.02, s * 0.04, s * 0.08));
  }
  QRadialGradient body(orb.center() + QPointF(-orb.width() * 0.18, -orb.height() * 0.22),
                       orb.width() * 0.75);
  body.setColorAt(0.0, down ? c.mid : c.light);
  body.setColorAt(0.55, down ? c.dark : c.mid);
  body.setColorAt(1.0, down ? c.rim : c.dark);
  p.setPen(QPen(c.rim, qMax<qreal>(1.0, s * 0.03)));
  p.setBrush(body);
  p.drawEllipse(orb);
  // Glossy highlight on the upper half.
  if (!down) {
    QRectF gloss(orb.left() + orb.width() * 0.18, orb.top() + orb.height() * 0.06,
                 orb.width() * 0.64, orb.height() * 0.42);
    QLinearGradient shine(gloss.topLeft(), gloss.bottomLeft());
    shine.setColorAt(0.0, QColor(255, 255, 255, 200));
    shine.setColorAt(1.0, QColor(255, 255, 255, 0));
    p.setPen(Qt::NoPen);
    p.setBrush(shine);
    p.drawEllipse(gloss);
  }
  // A chevron that says "go".
  QPainterPath chevron;
  const QPointF centre = orb.center() + QPointF(orb.width() * 0.04, orb.height() * 0.04);
  const qreal r = orb.width() * 0.2;
  chevron.moveTo(centre + QPointF(-r * 0.6, -r));
  chevron.lineTo(centre + QPointF(r * 0.6, 0));
  chevron.lineTo(centre + QPointF(-r * 0.6, r));
  QPen glyph(down ? c.glyph.darker(115) : c.glyph, qMax<qreal>(1.5, s * 0.09), Qt::SolidLine,
             Qt::RoundCap, Qt::RoundJoin);
  p.setPen(glyph);
  p.setBrush(Qt::NoBrush);
  p.drawPath(chevron);
  return pixmap;
}

QPixmap ProgressPicture(int frame, QSize size, qreal dpr) {
  frame = qBound(0, frame, 20);
  QPixmap pixmap = Canvas(size, dpr);
  QPainter p(&pixmap);
  p.setRenderHint(QPainter::Antialiasing);
  const QRectF track(0.5, 0.5, size.width() - 1.0, size.height() - 1.0);
  const qreal radius = qMin<qreal>(size.height() * 0.3, 6.0);
  const QPalette pal = QApplication::palette();
  p.setPen(QPen(pal.color(QPalette::Mid), 1.0));
  p.setBrush(pal.color(QPalette::Base));
  p.drawRoundedRect(track, radius, radius);
  // Twenty cells; frame n lights the first n.
  const qreal pad = qMax<qreal>(2.0, size.height() * 0.15);
  const qreal gap = qMax<qreal>(1.0, size.width() / 200.0);
  const qreal inner = track.width() - 2 * pad;
  const qreal cell = (inner - gap * 19) / 20.0;
  for (int i = 0; i < 20; ++i) {
    const QRectF r(track.left() + pad + i * (cell + gap), track.top() + pad, cell,
                   track.height() - 2 * pad);
    QLinearGradient g(r.topLeft(), r.bottomLeft());
    if (i < frame) {
      g.setColorAt(0.0, QColor(0x8C, 0xE8, 0x6A));
      g.setColorAt(1.0, QColor(0x2E, 0x9A, 0x2A));
    } else {
      const QColor off = pal.color(QPalette::Mid);
      g.setColorAt(0.0, QColor(off.red(), off.green(), off.blue(), 50));
      g.setColorAt(1.0, QColor(off.red(), off.green(), off.blue(), 80));
    }
    p.setPen(Qt::NoPen);
    p.setBrush(g);
    p.drawRoundedRect(r, qMin<qreal>(2.0, cell / 3), qMin<qreal>(2.0, cell / 3));
  }
  return pixmap;
}

QPixmap StickPicture(int size, qreal dpr) {
  QPixmap pixmap = Canvas(QSize(size, size), dpr);
  QPainter p(&pixmap);
  p.setRenderHint(QPainter::Antialiasing);
  const qreal s = size;
  // Base plate.
  QRectF base(s * 0.12, s * 0.66, s * 0.76, s * 0.22);
  QLinearGradient plate(base.topLeft(), base.bottomLeft());
  plate.setColorAt(0.0, QColor(0x3A, 0x4A, 0x5C));
  plate.setColorAt(1.0, QColor(0x15, 0x1E, 0x28));
  p.setPen(QPen(QColor(0x0A, 0x10, 0x16), qMax<qreal>(1.0, s * 0.02)));
  p.setBrush(plate);
  p.drawRoundedRect(base, s * 0.06, s * 0.06);
  // Two small buttons on the plate.
  for (int i = 0; i < 2; ++i) {
    QRectF b(s * (0.58 + i * 0.14), s * 0.70, s * 0.1, s * 0.07);
    p.setBrush(i == 0 ? QColor(0xF5, 0xB8, 0x14) : QColor(0x2E, 0x9A, 0xD8));
    p.setPen(Qt::NoPen);
    p.drawEllipse(b);
  }
  // Shaft.
  QLinearGradient shaft(QPointF(s * 0.3, 0), QPointF(s * 0.38, 0));
  shaft.setColorAt(0.0, QColor(0xD8, 0xDE, 0xE4));
  shaft.setColorAt(1.0, QColor(0x70, 0x7A, 0x84));
  p.setBrush(shaft);
  p.drawRoundedRect(QRectF(s * 0.3, s * 0.36, s * 0.08, s * 0.36), s * 0.03, s * 0.03);
  // Ball top.
  QRectF ball(s * 0.16, s * 0.08, s * 0.36, s * 0.36);
  QRadialGradient red(ball.center() + QPointF(-s * 0.06, -s * 0.07), s * 0.26);
  red.setColorAt(0.0, QColor(0xFF, 0x9A, 0x8A));
  red.setColorAt(0.5, QColor(0xE0, 0x2A, 0x20));
  red.setColorAt(1.0, QColor(0x7E, 0x0A, 0x0A));
  p.setPen(QPen(QColor(0x52, 0x05, 0x05), qMax<qreal>(1.0, s * 0.02)));
  p.setBrush(red);
  p.drawEllipse(ball);
  return pixmap;
}

QIcon AppIcon() {
  QIcon icon;
  for (int size : {16, 24, 32, 48, 64, 128, 256}) icon.addPixmap(StickPicture(size, 1.0));
  return icon;
}

QPixmap IndicatorPicture(const QWidget* styleSource, bool radio, bool on) {
  QStyle* style = styleSource ? styleSource->style() : QApplication::style();
  const QStyle::PixelMetric wm =
      radio ? QStyle::PM_ExclusiveIndicatorWidth : QStyle::PM_IndicatorWidth;
  const QStyle::PixelMetric hm =
      radio ? QStyle::PM_ExclusiveIndicatorHeight : QStyle::PM_IndicatorHeight;
  const int w = style->pixelMetric(wm, nullptr, styleSource);
  const int h = style->pixelMetric(hm, nullptr, styleSource);
  const qreal dpr = styleSource ? styleSource->devicePixelRatioF() : qApp->devicePixelRatio();
  QPixmap pixmap = Canvas(QSize(w, h), dpr);
  QPainter p(&pixmap);
  QStyleOptionButton option;
  if (styleSource) option.initFrom(styleSource);
  option.rect = QRect(0, 0, w, h);
  option.state |= QStyle::State_Enabled;
  option.state &= ~(QStyle::State_On | QStyle::State_Off);
  option.state |= on ? QStyle::State_On : QStyle::State_Off;
  style->drawPrimitive(radio ? QStyle::PE_IndicatorRadioButton : QStyle::PE_IndicatorCheckBox,
                       &option, &p, styleSource);
  return pixmap;
}

}  // namespace tessarin
