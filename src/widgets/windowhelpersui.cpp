#include "widgets/windowhelpersui.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QStringDecoder>
#include <QTimer>
#include <QVariant>
#include <QWidget>
#include <vector>

#include "app/context.h"
#include "widgets/messagedialog.h"
#include "widgets/picturesui.h"
#include "widgets/windowrules.h"

namespace tessarin {

namespace {

// Windows-1252's printable characters at 0x80 to 0x9F; the rest of the byte range is Latin-1.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

class SelectAllFilter final : public QObject {
 public:
  explicit SelectAllFilter(QObject* parent) : QObject(parent) {}
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::FocusIn) {
      if (auto* box = qobject_cast<QLineEdit*>(watched)) {
        // After the focus event the click would place the cursor; select once it has.
        QTimer::singleShot(0, box, [box] { SelectAllText(box); });
      }
    }
    return false;
  }
};

}  // namespace

QString ToQt(std::string_view bytes) {
  QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  QString text = utf8.decode(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
  if (!utf8.hasError()) return text;
  text.clear();
  text.reserve(static_cast<qsizetype>(bytes.size()));
  for (const char ch : bytes) {
    const auto byte = static_cast<unsigned char>(ch);
    text.append(byte >= 0x80 && byte < 0xA0 ? QChar(kCp1252High[byte - 0x80])
                                            : QChar(static_cast<char16_t>(byte)));
  }
  return text;
}

QString MessageText(std::string_view message) {
  QString text = ToQt(message);
  text.replace(QLatin1Char('|'), QLatin1Char('\n'));
  return text;
}

std::string BrowseFolderDialog(QWidget* owner, const std::string& startPath,
                               const std::string& title, bool cancelKeeps) {
  const std::string caption =
      title.empty() ? std::string("S\xC3\xA9lectionner le dossier de votre choix.") : title;
  const QString chosen = QFileDialog::getExistingDirectory(
      owner, ToQt(caption), ToQt(BrowseStartFolder(startPath)), QFileDialog::ShowDirsOnly);
  return BrowseResult(FromQt(QDir::toNativeSeparators(chosen)), chosen.isEmpty(), startPath,
                      cancelKeeps);
}

std::string FileDialog(QWidget* owner, const std::string& fileName, bool save,
                       const std::string& filter, const std::string& title) {
  const QString qtFilter = ToQt(QtFilterFromPipes(filter));
  const QString chosen =
      save ? QFileDialog::getSaveFileName(owner, ToQt(title), ToQt(fileName), qtFilter)
           : QFileDialog::getOpenFileName(owner, ToQt(title), ToQt(fileName), qtFilter);
  return FromQt(QDir::toNativeSeparators(chosen));
}

void CenterForm(QWidget* form, QWidget* parent) {
  QRect area;
  if (parent) {
    area = parent->isWindow() ? parent->geometry() : parent->rect();
  } else {
    QScreen* screen = form->screen() ? form->screen() : QGuiApplication::primaryScreen();
    area = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
  }
  const QSize size = form->isWindow() ? form->frameGeometry().size() : form->size();
  int left = 0;
  int top = 0;
  CenterPosition({area.x(), area.y(), area.width(), area.height()}, size.width(), size.height(),
                 left, top);
  if (form->isWindow()) {
    form->move(area.x() + left, area.y() + top);
  } else {
    form->move(qMax(0, left), qMax(0, top));
  }
}

void SelectAllText(QLineEdit* box) {
  if (!box) return;
  const QString trimmed = box->text().trimmed();
  if (trimmed != box->text()) box->setText(trimmed);
  box->selectAll();
}

void SelectAllOnFocus(QWidget* form) {
  auto* filter = new SelectAllFilter(form);
  for (QLineEdit* box : form->findChildren<QLineEdit*>()) box->installEventFilter(filter);
}

void FlatControls(QWidget* form) {
  for (QWidget* child : form->findChildren<QWidget*>()) {
    const QString name = child->objectName();
    if (!name.contains(QStringLiteral("Text")) && !name.contains(QStringLiteral("Command"))) {
      continue;
    }
    if (auto* box = qobject_cast<QLineEdit*>(child)) box->setFrame(false);
    if (auto* button = qobject_cast<QPushButton*>(child)) button->setFlat(true);
  }
}

void BeepFor(int icon) {
  (void)BeepKindFor(icon);
  QApplication::beep();
}

bool ApplyStoredPosition(QWidget* window, int left, int top) {
  std::vector<Rect> screens;
  for (QScreen* screen : QGuiApplication::screens()) {
    const QRect g = screen->availableGeometry();
    screens.push_back({g.x(), g.y(), g.width(), g.height()});
  }
  const QSize size = window->frameGeometry().size();
  if (!PositionOnSomeScreen({left, top, size.width(), size.height()}, screens)) return false;
  window->move(left, top);
  return true;
}

void SetProgressPicture(QLabel* target, int percent) {
  const int frame = ProgressFrameIndex(percent);
  target->setProperty("ProgressFrame", frame);
  const QSize size =
      target->contentsRect().size().isEmpty() ? target->sizeHint() : target->contentsRect().size();
  target->setPixmap(ProgressPicture(frame, size, target->devicePixelRatioF()));
}

QString Tag(const QWidget* target) { return target->property("Tag").toString(); }

void SetTag(QWidget* target, const QString& tag) { target->setProperty("Tag", tag); }

void SetCheckPicture(QLabel* target, bool isRadio) {
  target->setPixmap(IndicatorPicture(target, isRadio, TagIsOn(FromQt(Tag(target)))));
}

void ToggleCheck(QLabel* target, bool isRadio) {
  SetTag(target, ToQt(ToggledTag(FromQt(Tag(target)))));
  if (!isRadio) SetCheckPicture(target, false);
}

void ShowMessage(QWidget* frame, AppContext& ctx, bool modeless, const std::string& text,
                 const std::string& title, int icon) {
  const MessageBoxArgs args = NormaliseMessageBox(text, title, icon, ctx.messages.Lng(41));
  if (frame && frame->isMinimized()) {
    const int state = RestoreStateFor(ctx.settings.InfReadNumber("MDIState"));
    if (state == 2) {
      frame->showMaximized();
    } else {
      frame->showNormal();
    }
  }
  auto* dialog = new MessageDialog(frame, ToQt(args.Text), ToQt(args.Title), args.Icon);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  if (modeless) {
    dialog->show();
    BeepFor(args.Icon);
  } else {
    BeepFor(args.Icon);
    dialog->exec();
  }
}

}  // namespace tessarin
