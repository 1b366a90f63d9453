#include "widgets/messagedialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace tessarin {

MessageDialog::MessageDialog(QWidget* parent, const QString& text, const QString& title, int icon)
    : QDialog(parent) {
  setObjectName(QStringLiteral("Form11"));
  setWindowTitle(title);
  m_icon = new QLabel(this);
  m_icon->setObjectName(QStringLiteral("Image1"));
  QStyle::StandardPixmap standard = QStyle::SP_MessageBoxInformation;
  if (icon == 16) standard = QStyle::SP_MessageBoxCritical;
  if (icon == 32) standard = QStyle::SP_MessageBoxQuestion;
  if (icon == 48) standard = QStyle::SP_MessageBoxWarning;
  const int extent = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
  m_icon->setPixmap(style()->standardIcon(standard, nullptr, this).pixmap(extent, extent));
  m_icon->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
  m_text = new QLabel(text, this);
  m_text->setObjectName(QStringLiteral("Label1"));
  m_text->setWordWrap(true);
  m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_text->setMinimumWidth(fontMetrics().averageCharWidth() * 36);
  m_text->setMaximumWidth(fontMetrics().averageCharWidth() * 90);
  m_ok = new QPushButton(QStringLiteral("OK"), this);
  m_ok->setObjectName(QStringLiteral("Command1"));
  m_ok->setDefault(true);
  connect(m_ok, &QPushButton::clicked, this, &QDialog::accept);

  auto* row = new QHBoxLayout;
  row->addWidget(m_icon);
  row->addSpacing(fontMetrics().averageCharWidth() * 2);
  row->addWidget(m_text, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(m_ok);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(row);
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace tessarin
