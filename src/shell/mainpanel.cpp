#include "shell/mainpanel.h"

#include <QEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>

#include "app/context.h"
#include "widgets/windowhelpersui.h"

namespace tessarin {

MainPanel::MainPanel(QWidget* parent, AppContext& ctx, const std::function<bool(int)>& available)
    : QWidget(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form1"));
  setWindowTitle(QStringLiteral("Tessarin"));
  setFocusPolicy(Qt::StrongFocus);
  const int line = fontMetrics().height();
  m_iconSize = qRound(line * 2.4);
  const int em = fontMetrics().averageCharWidth();

  auto* layout = new QVBoxLayout(this);
  layout->setSpacing(line / 4);
  layout->setContentsMargins(em * 2, line, em * 2, line);
  for (int i = 0; i < kEntries; ++i) {
    Entry& e = m_entries[static_cast<size_t>(i)];
    e.set = i <= 6 ? PanelIconSet::Red : i == 7 ? PanelIconSet::Yellow : PanelIconSet::White;
    e.row = new QWidget(this);
    e.row->setObjectName(QStringLiteral("Entry_%1").arg(i));
    e.row->setAutoFillBackground(true);
    e.row->setCursor(Qt::PointingHandCursor);
    e.icon = new QLabel(e.row);
    e.icon->setObjectName(QStringLiteral("Image_%1").arg(i));
    e.icon->setFixedSize(m_iconSize, m_iconSize);
    e.title = new QLabel(e.row);
    e.title->setObjectName(QStringLiteral("Title_%1").arg(i));
    QFont bold = e.title->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.15);
    e.title->setFont(bold);
    e.title->setTextFormat(Qt::PlainText);
    e.subtitle = new QLabel(e.row);
    e.subtitle->setObjectName(QStringLiteral("Subtitle_%1").arg(i));
    e.subtitle->setTextFormat(Qt::PlainText);
    auto* grid = new QGridLayout(e.row);
    grid->setContentsMargins(em, line / 5, em * 2, line / 5);
    grid->setHorizontalSpacing(em * 2);
    grid->setVerticalSpacing(0);
    grid->addWidget(e.icon, 0, 0, 2, 1, Qt::AlignVCenter);
    grid->addWidget(e.title, 0, 1, Qt::AlignBottom);
    grid->addWidget(e.subtitle, 1, 1, Qt::AlignTop);
    grid->setColumnStretch(1, 1);
    for (QWidget* w : {e.row, static_cast<QWidget*>(e.icon), static_cast<QWidget*>(e.title),
                       static_cast<QWidget*>(e.subtitle)}) {
      w->installEventFilter(this);
    }
    e.row->setEnabled(available(i));
    layout->addWidget(e.row);
  }
  // Titles and subtitles by entry: the messages run in pairs, but the first two entries swap
  // theirs (the search stands first on the panel, the database second).
  static constexpr int kTitles[kEntries] = {3, 1, 5, 7, 9, 11, 13, 15, 17};
  for (int i = 0; i < kEntries; ++i) {
    Entry& e = m_entries[static_cast<size_t>(i)];
    QString title = ToQt(ctx.messages.Lng(kTitles[i]));
    title.replace(QStringLiteral("&&"), QStringLiteral("&"));
    e.title->setText(title);
    e.subtitle->setText(ToQt(ctx.messages.Lng(kTitles[i] + 1)));
    PaintEntry(i);
  }
  m_databaseLabel = new QLabel(this);
  m_databaseLabel->setObjectName(QStringLiteral("Label1"));
  m_databaseLabel->setAlignment(Qt::AlignCenter);
  m_databaseLabel->setWordWrap(true);
  layout->addSpacing(line / 2);
  layout->addWidget(m_databaseLabel);
  RefreshDatabaseLabel();
}

void MainPanel::RefreshDatabaseLabel() {
  const std::string& version = m_ctx.store.DatabaseVersion;
  if (version.empty()) {
    m_databaseLabel->clear();
    m_databaseLabel->hide();
    return;
  }
  m_databaseLabel->setText(ToQt(m_ctx.messages.Lng(325) + " : " + version));
  m_databaseLabel->show();
}

bool MainPanel::ShowsDownPicture(int entry) const {
  return entry >= 0 && entry < kEntries && m_entries[static_cast<size_t>(entry)].down;
}

void MainPanel::PaintEntry(int i) {
  Entry& e = m_entries[static_cast<size_t>(i)];
  e.icon->setPixmap(PanelIconPicture(e.set, e.down, m_iconSize, devicePixelRatioF()));
  // The current entry stands out: its row in the selection colour and its title in the
  // window's colour; the others have the button text colour on the panel's background.
  const bool current = i == m_cursor.Current();
  QPalette rowPalette = palette();
  rowPalette.setColor(QPalette::Window, current ? palette().color(QPalette::Highlight)
                                                : palette().color(QPalette::Window));
  e.row->setPalette(rowPalette);
  // Only the active and inactive groups: a disabled entry keeps the style's disabled colours.
  QPalette titlePalette = palette();
  QPalette subtitlePalette = palette();
  for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
    titlePalette.setColor(
        group, QPalette::WindowText,
        current ? palette().color(QPalette::Window) : palette().color(QPalette::ButtonText));
    subtitlePalette.setColor(group, QPalette::WindowText,
                             current ? palette().color(QPalette::HighlightedText)
                                     : palette().color(QPalette::PlaceholderText));
  }
  e.title->setPalette(titlePalette);
  e.subtitle->setPalette(subtitlePalette);
}

void MainPanel::SetDown(int entry, bool down) {
  Entry& e = m_entries[static_cast<size_t>(entry)];
  if (e.down == down) return;
  e.down = down;
  PaintEntry(entry);
}

int MainPanel::EntryOf(QObject* object) const {
  for (int i = 0; i < kEntries; ++i) {
    const Entry& e = m_entries[static_cast<size_t>(i)];
    if (object == e.row || object == e.icon || object == e.title || object == e.subtitle) {
      return i;
    }
  }
  return -1;
}

bool MainPanel::eventFilter(QObject* watched, QEvent* event) {
  const int entry = EntryOf(watched);
  if (entry < 0) return QWidget::eventFilter(watched, event);
  const Entry& e = m_entries[static_cast<size_t>(entry)];
  switch (event->type()) {
    case QEvent::MouseButtonPress:
      if (e.row->isEnabled() && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        m_pressed = entry;
        SetDown(entry, true);
        return true;
      }
      break;
    case QEvent::MouseButtonRelease:
      if (m_pressed == entry) {
        m_pressed = -1;
        SetDown(entry, false);
        const QPoint at =
            e.row->mapFromGlobal(static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
        if (e.row->rect().contains(at)) Q_EMIT EntryActivated(entry);
        return true;
      }
      break;
    default:
      break;
  }
  return QWidget::eventFilter(watched, event);
}

void MainPanel::keyPressEvent(QKeyEvent* event) {
  PanelCursor::Key key = PanelCursor::Key::Other;
  switch (event->key()) {
    case Qt::Key_Up:
      key = PanelCursor::Key::Up;
      break;
    case Qt::Key_Down:
      key = PanelCursor::Key::Down;
      break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      key = PanelCursor::Key::Enter;
      break;
    default:
      break;
  }
  const PanelCursor::Outcome outcome = m_cursor.OnKey(key);
  if (outcome.Previous >= 0) PaintEntry(outcome.Previous);
  if (outcome.Current >= 0) PaintEntry(outcome.Current);
  event->accept();
  if (outcome.Run >= 0 && m_entries[static_cast<size_t>(outcome.Run)].row->isEnabled()) {
    Q_EMIT EntryActivated(outcome.Run);
  }
}

void MainPanel::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
    for (int i = 0; i < kEntries; ++i) PaintEntry(i);
  }
}

}  // namespace tessarin
