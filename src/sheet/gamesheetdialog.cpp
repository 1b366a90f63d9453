#include "sheet/gamesheetdialog.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "app/context.h"
#include "core/settings.h"
#include "core/work.h"
#include "images/pngimageui.h"
#include "images/pngloader.h"
#include "online/urllist.h"
#include "sheet/gamedetails.h"
#include "sheet/sheettext.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {

// The picture pane, in device-independent pixels: room for the usual title and snap pictures
// (320 x 240, 256 x 224...) as they are, and for the tall flyers made smaller.
constexpr int kPaneWidth = 400;
constexpr int kPaneHeight = 330;
// The top margin of the picture in the pane (a hundred twips).
constexpr int kTopMargin = 7;

QPushButton* MakeButton(QWidget* parent, const QString& name, const QString& text) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  button->setAutoDefault(false);
  return button;
}

QPlainTextEdit* MakeBox(QWidget* parent, int number) {
  auto* box = new QPlainTextEdit(parent);
  box->setObjectName(QStringLiteral("Text%1").arg(number));
  box->setReadOnly(true);
  box->setLineWrapMode(QPlainTextEdit::WidgetWidth);
  box->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // Read-only boxes still take the focus, so that the keyboard scrolls and copies.
  box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  return box;
}

// The boxes get valid UTF-8 from the display layout.
QString Shown(const std::string& utf8) { return QString::fromStdString(utf8); }

bool IsSet(const std::string& value) { return !value.empty() && value != "-1"; }

// What the sheets opened from one window share: the details loader with its clone index, and
// the directories of the picture zips. It lives as long as that window.
class SheetSession final : public QObject {
 public:
  SheetSession(QObject* parent, AppContext& ctx)
      : QObject(parent),
        context(&ctx),
        loader(std::make_shared<GameDetailsLoader>(ctx)),
        zips(std::make_shared<ArtworkZipCache>()) {
    setObjectName(QStringLiteral("GameSheetSession"));
  }
  AppContext* context;
  std::shared_ptr<GameDetailsLoader> loader;
  std::shared_ptr<ArtworkZipCache> zips;
};

SheetSession* SessionFor(QWidget* parent, AppContext& ctx) {
  if (parent == nullptr) return nullptr;
  for (QObject* child : parent->children()) {
    auto* session = dynamic_cast<SheetSession*>(child);
    if (session != nullptr && session->context == &ctx) return session;
  }
  return new SheetSession(parent, ctx);
}

}  // namespace

// Receives what the PNG loader paints and gives it to the sheet.
class GameSheetDialog::PictureTarget final : public PngPaintTarget {
 public:
  void PaintPng(const PngPicture& picture, int, int) override { image = PngToQImage(picture); }
  QImage image;
};

GameSheetDialog::GameSheetDialog(QWidget* parent, AppContext& ctx, const std::string& romName)
    : FormDialog(parent),
      m_ctx(ctx),
      m_target(std::make_unique<PictureTarget>()),
      m_currentRom(romName) {
  setObjectName(QStringLiteral("Form5"));
  if (SheetSession* session = SessionFor(parent, ctx)) {
    m_loader = session->loader;
    m_zips = session->zips;
  } else {
    m_loader = std::make_shared<GameDetailsLoader>(ctx);
    m_zips = std::make_shared<ArtworkZipCache>();
  }
  setWindowFlag(Qt::Window);
  setModal(false);
  const auto lng = [&](int n) { return ToQt(ctx.messages.Lng(n)); };

  for (int i = 0; i < 3; ++i) {
    m_frames[static_cast<size_t>(i)] = new QWidget(this);
    m_frames[static_cast<size_t>(i)]->setObjectName(QStringLiteral("Frame1_%1").arg(i));
  }
  for (int i = 1; i <= 8; ++i) {
    const int frame = i <= 2 || i == 8 ? 0 : (i == 3 ? 1 : 2);
    m_text[static_cast<size_t>(i)] = MakeBox(m_frames[static_cast<size_t>(frame)], i);
  }

  // Page 0: the title, the game and its roms.
  QWidget* page0 = m_frames[0];
  m_label1 = new QLabel(page0);
  m_label1->setObjectName(QStringLiteral("Label1"));
  m_label1->setWordWrap(true);
  m_label1->setTextInteractionFlags(Qt::TextSelectableByMouse);
  QFont titleFont = m_label1->font();
  titleFont.setBold(true);
  titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
  m_label1->setFont(titleFont);
  auto* next0 = MakeButton(page0, QStringLiteral("Command1"), lng(82));
  auto* close0 = MakeButton(page0, QStringLiteral("Command2"), lng(78));
  auto* grid0 = new QGridLayout;
  grid0->addWidget(m_text[1], 0, 0);
  grid0->addWidget(m_text[2], 0, 1);
  grid0->addWidget(m_text[8], 1, 0, 1, 2);
  grid0->setRowStretch(0, 3);
  grid0->setRowStretch(1, 2);
  auto* buttons0 = new QHBoxLayout;
  buttons0->addStretch();
  buttons0->addWidget(next0);
  buttons0->addWidget(close0);
  auto* layout0 = new QVBoxLayout(page0);
  layout0->setContentsMargins(0, 0, 0, 0);
  layout0->addWidget(m_label1);
  layout0->addLayout(grid0, 1);
  layout0->addLayout(buttons0);

  // Page 1: history and Mameinfo beside the picture pane and its kinds.
  QWidget* page1 = m_frames[1];
  m_pane = new QWidget(page1);
  m_pane->setObjectName(QStringLiteral("Image1"));
  m_pane->setFixedSize(kPaneWidth, kPaneHeight);
  m_picture1 = new QLabel(m_pane);
  m_picture1->setObjectName(QStringLiteral("Picture1"));
  m_picture2 = new QLabel(page1);
  m_picture2->setObjectName(QStringLiteral("Picture2"));
  m_picture2->setPixmap(StickPicture(96, devicePixelRatioF()));
  m_picture2->hide();
  m_label2 = new QLabel(m_pane);
  m_label2->setObjectName(QStringLiteral("Label2"));
  m_label2->setWordWrap(true);
  m_label2->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  m_label2->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_label2->setGeometry(8, 110, kPaneWidth - 16, kPaneHeight - 118);
  m_label2->hide();
  m_image2 = new QLabel(page1);
  m_image2->setObjectName(QStringLiteral("Image2"));
  m_image2->setFixedSize(kPaneWidth, 14);
  auto* kinds = new QGridLayout;
  for (int i = 0; i < 6; ++i) {
    m_kindButtons[static_cast<size_t>(i)] =
        MakeButton(page1, QStringLiteral("Command5_%1").arg(i), lng(178 + i));
    kinds->addWidget(m_kindButtons[static_cast<size_t>(i)], i / 3, i % 3);
    connect(m_kindButtons[static_cast<size_t>(i)], &QPushButton::clicked, this,
            [this, i] { ShowKind(i); });
  }
  auto* download = MakeButton(page1, QStringLiteral("Command6"), QStringLiteral("Download"));
  auto* previous1 = MakeButton(page1, QStringLiteral("Command4"), lng(80));
  auto* next1 = MakeButton(page1, QStringLiteral("Command10"), lng(82));
  auto* close1 = MakeButton(page1, QStringLiteral("Command3"), lng(78));
  auto* side = new QVBoxLayout;
  side->addWidget(m_pane);
  side->addWidget(m_image2);
  side->addLayout(kinds);
  side->addWidget(download);
  side->addStretch();
  auto* body1 = new QHBoxLayout;
  body1->addWidget(m_text[3], 1);
  body1->addLayout(side);
  auto* buttons1 = new QHBoxLayout;
  buttons1->addStretch();
  buttons1->addWidget(previous1);
  buttons1->addWidget(next1);
  buttons1->addWidget(close1);
  auto* layout1 = new QVBoxLayout(page1);
  layout1->setContentsMargins(0, 0, 0, 0);
  layout1->addLayout(body1, 1);
  layout1->addLayout(buttons1);

  // Page 2: bios sets, chips, dip switches and disks.
  QWidget* page2 = m_frames[2];
  auto* previous2 = MakeButton(page2, QStringLiteral("Command8"), lng(80));
  auto* close2 = MakeButton(page2, QStringLiteral("Command9"), lng(78));
  auto* grid2 = new QGridLayout;
  grid2->addWidget(m_text[4], 0, 0);
  grid2->addWidget(m_text[5], 0, 1);
  grid2->addWidget(m_text[6], 1, 0);
  grid2->addWidget(m_text[7], 1, 1);
  auto* buttons2 = new QHBoxLayout;
  buttons2->addStretch();
  buttons2->addWidget(previous2);
  buttons2->addWidget(close2);
  auto* layout2 = new QVBoxLayout(page2);
  layout2->setContentsMargins(0, 0, 0, 0);
  layout2->addLayout(grid2, 1);
  layout2->addLayout(buttons2);

  // The three pages lie at the same place; one shows at a time.
  auto* layout = new QGridLayout(this);
  for (QWidget* frame : m_frames) layout->addWidget(frame, 0, 0);

  connect(next0, &QPushButton::clicked, this, [this] {
    ShowPage(1);
    ShowArtwork(m_currentRom, m_currentParent, m_currentArtwork);
  });
  connect(next1, &QPushButton::clicked, this, [this] { ShowPage(2); });
  connect(previous2, &QPushButton::clicked, this, [this] { ShowPage(1); });
  connect(previous1, &QPushButton::clicked, this, [this] { ShowPage(0); });
  connect(download, &QPushButton::clicked, this, &GameSheetDialog::Download);
  for (QPushButton* close : {close0, close1, close2}) {
    connect(close, &QPushButton::clicked, this, &QDialog::close);
  }

  // Load.
  SetProgress(0);
  resize(fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 36);
  const int top = ctx.settings.InfReadNumber("Form5Top");
  const int left = ctx.settings.InfReadNumber("Form5Left");
  if (top > -1 || left > -1) {
    const QPoint stored(left > -1 ? left : pos().x(), top > -1 ? top : pos().y());
    if (!ApplyStoredPosition(this, stored.x(), stored.y())) CenterForm(this, parent);
  } else {
    CenterForm(this, parent);
  }
  m_currentArtwork = ctx.settings.InfRead("Frm5Artwork");
  if (!IsSet(m_currentArtwork)) m_currentArtwork = "Titles";
  ApplyFonts();
  setWindowTitle(lng(177));
  setWindowIcon(AppIcon());
  ShowPage(0);
  ShowGame();
}

GameSheetDialog::~GameSheetDialog() { Unload(); }

void GameSheetDialog::ApplyFonts() {
  Settings& settings = m_ctx.settings;
  const std::string name = settings.InfRead("Frm5FontName");
  if (IsSet(name)) {
    const int size = settings.InfReadNumber("Frm5FontSize");
    for (int i : {1, 2, 3}) {
      QFont font = m_text[static_cast<size_t>(i)]->font();
      font.setFamily(ToQt(name));
      if (size > 0) font.setPointSize(size);
      m_text[static_cast<size_t>(i)]->setFont(font);
    }
  } else {
    settings.InfWrite("Frm5FontName", "Arial");
    settings.InfWrite("Frm5FontSize", "9");
  }
  const std::string title = settings.InfRead("Frm5TitreFntName");
  if (IsSet(title)) {
    const int size = settings.InfReadNumber("Frm5TitreFntSize");
    QFont font = m_label1->font();
    font.setFamily(ToQt(title));
    if (size > 0) font.setPointSize(size);
    m_label1->setFont(font);
  } else {
    const QFont font = m_label1->font();
    settings.InfWrite("Frm5TitreFntName", FromQt(font.family()));
    settings.InfWrite("Frm5TitreFntSize", static_cast<long long>(font.pointSize()));
  }
}

void GameSheetDialog::Yield() {
  // Lets the sheet paint as it fills; nothing to paint before it is on the screen.
  if (isVisible()) QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void GameSheetDialog::ShowGame() {
  if (m_ctx.store.GameCount() == 0) return;
  const SheetText texts = ShowGameText(m_ctx, *m_loader, m_currentRom, SheetTextMode::Display);
  m_label1->setText(Shown(texts.Label1));
  m_currentTitle = texts.CurrentTitle;
  m_currentRom = texts.CurrentRom;
  m_currentClone = texts.CurrentClone;
  m_currentParent = texts.CurrentParent;
  m_text[1]->setPlainText(Shown(texts.Text1));
  Yield();
  m_text[2]->setPlainText(Shown(texts.Text2));
  Yield();
  m_text[3]->setPlainText(Shown(texts.Text3));
  Yield();
  m_text[4]->setPlainText(Shown(texts.Text4));
  m_text[5]->setPlainText(Shown(texts.Text5));
  m_text[6]->setPlainText(Shown(texts.Text6));
  m_text[7]->setPlainText(Shown(texts.Text7));
  Yield();
  m_text[8]->setPlainText(Shown(texts.Text8));
  Yield();
}

void GameSheetDialog::ShowPage(int page) {
  if (page < 0 || page > 2) return;
  m_page = page;
  for (int i = 0; i < 3; ++i) m_frames[static_cast<size_t>(i)]->setVisible(i == page);
}

void GameSheetDialog::SetProgress(int percent) {
  m_progressSteps.push_back(percent);
  SetProgressPicture(m_image2, percent);
}

const QImage& GameSheetDialog::ShownPicture() const { return m_target->image; }

void GameSheetDialog::ShowPicture(const QImage& image) {
  // Bigger than the pane: made smaller, whole; otherwise shown at its own size. Either way
  // drawn at the screen's pixel ratio, so that it grows with the text around it.
  QSize logical = image.size();
  if (logical.width() > kPaneWidth || logical.height() > kPaneHeight - kTopMargin) {
    logical.scale(kPaneWidth, kPaneHeight - kTopMargin, Qt::KeepAspectRatio);
  }
  const qreal ratio = devicePixelRatioF();
  const QSize device = (QSizeF(logical) * ratio).toSize();
  QPixmap pixmap =
      QPixmap::fromImage(device == image.size() ? image
                                                : image.scaled(device, Qt::IgnoreAspectRatio,
                                                               Qt::SmoothTransformation));
  pixmap.setDevicePixelRatio(ratio);
  m_picture1->setPixmap(pixmap);
  m_picture1->resize(logical);
}

void GameSheetDialog::ShowArtwork(const std::string& rom, const std::string& parent,
                                  const std::string& kind) {
  m_progressSteps.clear();
  m_image2->show();
  SetProgress(0);
  const ArtworkFile found = FindArtwork(
      m_ctx.settings, m_ctx.AppFolder(), m_ctx.TempFolder, rom, parent, kind,
      [this](int percent) { SetProgress(percent); }, m_zips.get());
  SetProgress(50);
  m_target->image = QImage();
  m_shownFile.clear();
  if (!found.path.empty()) {
    LoadPNG loader(&m_ctx.Ui());
    loader.PicBox(m_target.get());
    loader.SetToBkgrnd(false, 0, 0);
    // What shines through is the window's own background.
    const QColor back = palette().color(QPalette::Window);
    const std::uint32_t colour = static_cast<std::uint32_t>(back.blue()) << 16 |
                                 static_cast<std::uint32_t>(back.green()) << 8 |
                                 static_cast<std::uint32_t>(back.red());
    loader.BackgroundPicture(nullptr);
    loader.SetOwnBkgndColor(true, colour == 0 ? 0x010101u : colour);
    loader.SetAlpha(true);
    loader.SetTrans(true);
    loader.OpenPNG(found.path);
    if (!m_target->image.isNull()) m_shownFile = found.path;
  }
  if (!m_target->image.isNull()) {
    m_label2->hide();
    ShowPicture(m_target->image);
  } else {
    m_label2->setText(ToQt(ArtworkMissingText(m_ctx.messages, m_ctx.settings, kind)));
    m_label2->show();
    m_picture1->setPixmap(m_picture2->pixmap());
    m_picture1->resize(96, 96);
  }
  SetProgress(75);
  // A picture that doesn't fit goes left (and up) as far as it can.
  QPoint place(0, kTopMargin);
  if (place.x() + m_picture1->width() > kPaneWidth) {
    place.setX(std::max(0, kPaneWidth - m_picture1->width()));
  }
  if (place.y() + m_picture1->height() > kPaneHeight) {
    place.setY(std::max(0, kPaneHeight - m_picture1->height()));
  }
  // The default picture stands in the middle, above Label2's text.
  if (!m_label2->isHidden()) place.setX((kPaneWidth - m_picture1->width()) / 2);
  m_picture1->move(place);
  SetProgress(100);
  m_image2->hide();
}

void GameSheetDialog::ShowKind(int index) {
  if (index < 0 || index > 5) return;
  m_currentArtwork = std::string(kArtworkKinds[static_cast<size_t>(index)]);
  ShowArtwork(m_currentRom, m_currentParent, m_currentArtwork);
}

void GameSheetDialog::Download() {
  UrlTables urls;
  LoadUrlList(urls, m_ctx.AppFolder(), m_ctx.log);
  ArtworkDownloadJob job;
  job.rom = m_currentRom;
  job.title = m_currentTitle;
  job.settings = &m_ctx.settings;
  job.urls = &urls;
  job.log = &m_ctx.log;
  job.appFolder = m_ctx.AppFolder();
  QPointer<GameSheetDialog> self(this);
  job.show = [self](int kind) {
    // The download runs beside the interface; the picture is shown on the interface's thread.
    QMetaObject::invokeMethod(
        self.data(),
        [self, kind] {
          if (self) {
            self->ShowArtwork(self->m_currentRom, self->m_currentParent,
                              std::string(kDownloadKinds[static_cast<size_t>(kind)]));
          }
        },
        Qt::QueuedConnection);
  };
  RunWithWorkingDialog(this, m_ctx, "Download", [&](Work& work) { DownloadArtwork(job, work); });
  if (self) m_kindButtons[0]->click();
}

void GameSheetDialog::SaveState() {
  m_ctx.settings.InfWrite("Form5Top", pos().y());
  m_ctx.settings.InfWrite("Form5Left", pos().x());
  m_ctx.settings.InfWrite("Frm5Artwork", m_currentArtwork);
}

GameSheetDialog* OpenGameSheet(QWidget* parent, AppContext& ctx, const std::string& romName) {
  auto* sheet = new GameSheetDialog(parent, ctx, romName);
  sheet->setAttribute(Qt::WA_DeleteOnClose);
  sheet->show();
  return sheet;
}

}  // namespace tessarin
