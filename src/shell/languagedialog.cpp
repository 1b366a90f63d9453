#include "shell/languagedialog.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "shell/languagechoice.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"

namespace tessarin {

LanguageDialog::LanguageDialog(QWidget* parent, AppContext& ctx) : QDialog(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form2"));
  setWindowTitle(QStringLiteral("Tessarin"));
  setWindowIcon(AppIcon());
  const int line = fontMetrics().height();
  auto* picture = new QLabel(this);
  picture->setObjectName(QStringLiteral("Image1"));
  picture->setPixmap(StickPicture(line * 4, devicePixelRatioF()));
  // Both languages at once: nothing is chosen yet.
  m_label = new QLabel(QStringLiteral("Choose your language\nChoisissez votre langue"), this);
  m_label->setObjectName(QStringLiteral("Label1"));
  m_combo = new QComboBox(this);
  m_combo->setObjectName(QStringLiteral("Combo1"));
  for (const std::string& item : LanguageItems(ctx.AppFolder())) m_combo->addItem(ToQt(item));
  const bool french = QLocale::system().language() == QLocale::French;
  m_combo->setCurrentText(ToQt(DefaultLanguageItem(french)));
  m_label->setBuddy(m_combo);
  m_ok = new QPushButton(QStringLiteral("OK"), this);
  m_ok->setObjectName(QStringLiteral("Command1"));
  m_ok->setDefault(true);
  connect(m_ok, &QPushButton::clicked, this, &QDialog::accept);

  auto* right = new QVBoxLayout;
  right->addWidget(m_label);
  right->addWidget(m_combo);
  right->addStretch();
  auto* top = new QHBoxLayout;
  top->addWidget(picture, 0, Qt::AlignTop);
  top->addSpacing(fontMetrics().averageCharWidth() * 2);
  top->addLayout(right, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(m_ok);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  m_combo->setMinimumWidth(fontMetrics().averageCharWidth() * 28);
}

void LanguageDialog::accept() {
  ApplyChooserChoice(m_ctx, FromQt(m_combo->currentText()));
  QDialog::accept();
}

}  // namespace tessarin
