#include "shell/optionsdialog.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"

namespace tessarin {

namespace {
// Shows a path from its beginning, where the part that tells it apart usually is.
void SetBoxText(QLineEdit* box, const QString& text) {
  box->setText(text);
  box->setCursorPosition(0);
}

QString Plain(const std::string& caption) {
  QString text = ToQt(caption);
  text.remove(QLatin1Char('&'));
  return text.trimmed();
}
}  // namespace

OptionsDialog::OptionsDialog(QWidget* parent, AppContext& ctx, SiteTablesAccess sites)
    : QDialog(parent), m_ctx(ctx), m_model(ctx, std::move(sites)) {
  setObjectName(QStringLiteral("Form12"));
  const Messages& m = ctx.messages;
  setWindowTitle(Plain(m.Lng(15)));
  setWindowIcon(AppIcon());
  const int em = fontMetrics().averageCharWidth();

  auto label = [this](const std::string& text, QWidget* buddy) {
    auto* l = new QLabel(ToQt(text), this);
    l->setBuddy(buddy);
    return l;
  };
  auto edit = [this](const char* name) {
    auto* e = new QLineEdit(this);
    e->setObjectName(QString::fromLatin1(name));
    return e;
  };
  auto combo = [this](const char* name) {
    auto* c = new QComboBox(this);
    c->setObjectName(QString::fromLatin1(name));
    c->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    return c;
  };

  m_language = combo("Combo1");
  m_emulator = edit("Text1");
  m_roms = edit("Text2");
  m_dataFiles = combo("Combo2");
  m_dataFilePath = edit("Text3");
  m_imageKinds = combo("Combo3");
  m_imagePath = edit("Text4");
  m_onlineKinds = combo("Combo4");
  m_onlinePattern = edit("Text5");
  m_sites = combo("Combo5");
  m_siteAddress = edit("Text6");
  for (QLineEdit* e :
       {m_emulator, m_roms, m_dataFilePath, m_imagePath, m_onlinePattern, m_siteAddress}) {
    e->setMinimumWidth(em * 50);
  }

  // Each caption stands above its fields, so long captions (and French ones) never push the
  // fields apart; the lists share one column and the boxes stretch.
  auto* grid = new QGridLayout;
  grid->setColumnStretch(1, 1);
  grid->setVerticalSpacing(fontMetrics().height() / 4);
  int row = 0;
  auto caption = [&](const std::string& text, QWidget* buddy) {
    if (row > 0) grid->setRowMinimumHeight(row++, fontMetrics().height() / 3);
    grid->addWidget(label(text, buddy), row++, 0, 1, 3);
  };
  caption(m.Lng(307), m_language);
  grid->addWidget(m_language, row++, 0);
  caption(m.Lng(83), m_emulator);
  grid->addWidget(m_emulator, row, 0, 1, 2);
  QPushButton* browseEmulator = BrowseButton("Command1");
  grid->addWidget(browseEmulator, row++, 2);
  caption(m.Lng(36), m_roms);
  grid->addWidget(m_roms, row, 0, 1, 2);
  QPushButton* browseRoms = BrowseButton("Command2");
  grid->addWidget(browseRoms, row++, 2);
  caption(m.Lng(86), m_dataFiles);
  grid->addWidget(m_dataFiles, row, 0);
  grid->addWidget(m_dataFilePath, row, 1);
  QPushButton* browseData = BrowseButton("Command3");
  grid->addWidget(browseData, row++, 2);
  caption(m.Lng(308), m_imageKinds);
  grid->addWidget(m_imageKinds, row, 0);
  grid->addWidget(m_imagePath, row, 1);
  QPushButton* browseImages = BrowseButton("Command4");
  grid->addWidget(browseImages, row++, 2);
  caption(m.Lng(393), m_onlineKinds);
  grid->addWidget(m_onlineKinds, row, 0);
  grid->addWidget(m_onlinePattern, row++, 1, 1, 2);
  caption(m.Lng(394), m_sites);
  grid->addWidget(m_sites, row, 0);
  grid->addWidget(m_siteAddress, row, 1);
  QPushButton* addSite = BrowseButton("Command7");
  addSite->setText(QStringLiteral("+"));
  addSite->setToolTip(Plain(m.Lng(396)));
  grid->addWidget(addSite, row++, 2);
  for (QComboBox* c : {m_language, m_dataFiles, m_imageKinds, m_onlineKinds, m_sites}) {
    c->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    c->setMinimumContentsLength(18);
  }

  auto* save = new QPushButton(ToQt(m.Lng(402)), this);
  save->setObjectName(QStringLiteral("Command5"));
  save->setDefault(true);
  auto* cancel = new QPushButton(ToQt(m.Lng(401)), this);
  cancel->setObjectName(QStringLiteral("Command6"));
  cancel->setAutoDefault(false);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(save);
  buttons->addWidget(cancel);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(grid);
  layout->addSpacing(fontMetrics().height() / 2);
  layout->addLayout(buttons);

  connect(save, &QPushButton::clicked, this, &OptionsDialog::OnSave);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(addSite, &QPushButton::clicked, this, &OptionsDialog::OnAddSite);
  connect(browseEmulator, &QPushButton::clicked, this, [this] {
    const Messages& msg = m_ctx.messages;
    const std::string chosen = FileDialog(this, FromQt(m_emulator->text()), false,
                                          msg.Lng(32) + "|*.exe;mame*|" + msg.Lng(33) + "|*");
    if (!chosen.empty()) m_emulator->setText(ToQt(chosen));
  });
  connect(browseRoms, &QPushButton::clicked, this, [this] {
    const std::string chosen = BrowseFolderDialog(this, FromQt(m_roms->text()), {}, true);
    if (!chosen.empty()) m_roms->setText(ToQt(chosen));
  });
  connect(browseData, &QPushButton::clicked, this, [this] {
    const Messages& msg = m_ctx.messages;
    const std::string chosen =
        FileDialog(this, FromQt(m_dataFilePath->text()), false,
                   msg.Lng(34) + "|*.dat|" + msg.Lng(35) + "|*.ini|" + msg.Lng(33) + "|*");
    if (!chosen.empty()) {
      m_dataFilePath->setText(ToQt(chosen));
      Q_EMIT m_dataFilePath->textEdited(m_dataFilePath->text());
    }
  });
  connect(browseImages, &QPushButton::clicked, this, [this] {
    const std::string chosen = BrowseFolderDialog(this, FromQt(m_imagePath->text()), {}, true);
    if (!chosen.empty()) {
      m_imagePath->setText(ToQt(chosen));
      Q_EMIT m_imagePath->textEdited(m_imagePath->text());
    }
  });

  // Each list shows the value of its entry in the box beside it; an edit goes back at once
  // (into the working copy, or straight into the site tables).
  connect(m_dataFiles, &QComboBox::currentIndexChanged, this, [this](int i) {
    SetBoxText(m_dataFilePath,
               i >= 0 ? ToQt(m_model.DataFiles[static_cast<size_t>(i)]) : QString());
  });
  connect(m_dataFilePath, &QLineEdit::textEdited, this, [this](const QString& text) {
    const int i = m_dataFiles->currentIndex();
    if (i >= 0) m_model.DataFiles[static_cast<size_t>(i)] = FromQt(text);
  });
  connect(m_imageKinds, &QComboBox::currentIndexChanged, this, [this](int i) {
    SetBoxText(m_imagePath, i >= 0 ? ToQt(m_model.ImagePaths[static_cast<size_t>(i)]) : QString());
  });
  connect(m_imagePath, &QLineEdit::textEdited, this, [this](const QString& text) {
    const int i = m_imageKinds->currentIndex();
    if (i >= 0) m_model.ImagePaths[static_cast<size_t>(i)] = FromQt(text);
  });
  connect(m_onlineKinds, &QComboBox::currentIndexChanged, this,
          [this](int i) { SetBoxText(m_onlinePattern, ToQt(m_model.OnlineImage(i))); });
  connect(m_onlinePattern, &QLineEdit::textEdited, this, [this](const QString& text) {
    m_model.SetOnlineImage(m_onlineKinds->currentIndex(), FromQt(text));
  });
  connect(m_sites, &QComboBox::currentIndexChanged, this,
          [this](int i) { SetBoxText(m_siteAddress, ToQt(m_model.SearchEngineAddress(i))); });
  connect(m_siteAddress, &QLineEdit::textEdited, this, [this](const QString& text) {
    m_model.SetSearchEngineAddress(m_sites->currentIndex(), FromQt(text));
  });

  setTabOrder(m_language, m_emulator);
  setTabOrder(m_emulator, browseEmulator);
  setTabOrder(browseEmulator, m_roms);
  setTabOrder(m_roms, browseRoms);
  setTabOrder(browseRoms, m_dataFiles);
  setTabOrder(m_dataFiles, m_dataFilePath);
  setTabOrder(m_dataFilePath, browseData);
  setTabOrder(browseData, m_imageKinds);
  setTabOrder(m_imageKinds, m_imagePath);
  setTabOrder(m_imagePath, browseImages);
  setTabOrder(browseImages, m_onlineKinds);
  setTabOrder(m_onlineKinds, m_onlinePattern);
  setTabOrder(m_onlinePattern, m_sites);
  setTabOrder(m_sites, m_siteAddress);
  setTabOrder(m_siteAddress, addSite);
  setTabOrder(addSite, save);
  setTabOrder(save, cancel);

  Fill();
  SelectAllOnFocus(this);
}

QPushButton* OptionsDialog::BrowseButton(const char* name) {
  auto* button = new QPushButton(QStringLiteral("..."), this);
  button->setObjectName(QString::fromLatin1(name));
  button->setAutoDefault(false);
  button->setMaximumWidth(fontMetrics().averageCharWidth() * 6);
  return button;
}

void OptionsDialog::Fill() {
  m_model.Load();
  m_language->clear();
  for (const std::string& item : m_model.LanguageList) m_language->addItem(ToQt(item));
  const QString current = ToQt(m_model.LanguageText);
  if (m_language->findText(current) < 0) m_language->addItem(current);
  m_language->setCurrentText(current);
  SetBoxText(m_emulator, ToQt(m_model.EmulatorPath));
  SetBoxText(m_roms, ToQt(m_model.RomPath));
  m_dataFiles->clear();
  for (std::string_view name : kOptionDataFiles) {
    m_dataFiles->addItem(ToQt(name));
  }
  m_imageKinds->clear();
  m_onlineKinds->clear();
  for (std::string_view kind : kImageKinds) {
    m_imageKinds->addItem(ToQt(kind));
    m_onlineKinds->addItem(ToQt(kind));
  }
  m_sites->clear();
  for (const std::string& name : m_model.SearchEngineNames()) m_sites->addItem(ToQt(name));
}

void OptionsDialog::OnSave() {
  m_model.LanguageText = FromQt(m_language->currentText());
  m_model.EmulatorPath = FromQt(m_emulator->text());
  m_model.RomPath = FromQt(m_roms->text());
  if (m_model.Save() && LanguageChanged) LanguageChanged();
  accept();
}

void OptionsDialog::OnAddSite() {
  const Messages& m = m_ctx.messages;
  bool ok = false;
  const QString name = QInputDialog::getText(this, ToQt(m.Lng(396)), MessageText(m.Lng(395)),
                                             QLineEdit::Normal, QString(), &ok);
  if (!ok || name.isEmpty()) return;
  const QString address = QInputDialog::getText(
      this, QStringLiteral("URL"), MessageText(m.Lng(397)), QLineEdit::Normal, QString(), &ok);
  if (!ok || address.isEmpty()) return;
  if (m_model.AddSearchSite(FromQt(name), FromQt(address))) m_sites->addItem(name);
}

void OptionsDialog::done(int result) {
  if (!m_unloaded) {
    m_unloaded = true;
    m_model.Unload();
  }
  QDialog::done(result);
}

}  // namespace tessarin
