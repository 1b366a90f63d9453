#include "shell/pathwizarddialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "app/context.h"
#include "shell/pathwizard.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"

namespace tessarin {

PathWizardDialog::PathWizardDialog(QWidget* parent, AppContext& ctx)
    : PathWizardDialog(parent, ctx, SystemWizardEnvironment()) {}

PathWizardDialog::PathWizardDialog(QWidget* parent, AppContext& ctx, const WizardEnvironment& env)
    : QDialog(parent), m_ctx(ctx), m_wizard(std::make_unique<PathWizard>(ctx, env)) {
  Build();
  Show();
}

PathWizardDialog::~PathWizardDialog() = default;

void PathWizardDialog::Build() {
  setObjectName(QStringLiteral("Form4"));
  setWindowTitle(QStringLiteral("Tessarin"));
  setWindowIcon(AppIcon());
  const Messages& m = m_ctx.messages;
  const int em = fontMetrics().averageCharWidth();
  const int line = fontMetrics().height();

  m_image1 = new QLabel(this);
  m_image1->setObjectName(QStringLiteral("Image1"));
  m_image1->setPixmap(StickPicture(line * 5, devicePixelRatioF()));
  m_image1->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
  m_image2 = new QLabel(this);
  m_image2->setObjectName(QStringLiteral("Image2"));
  m_image2->setAlignment(Qt::AlignTop | Qt::AlignHCenter);

  m_question = new QLabel(this);
  m_question->setObjectName(QStringLiteral("Label1"));
  m_question->setWordWrap(true);
  m_question->setMinimumWidth(em * 64);
  m_question->setMinimumHeight(line * 4);
  m_question->setAlignment(Qt::AlignLeft | Qt::AlignTop);

  m_text = new QLineEdit(this);
  m_text->setObjectName(QStringLiteral("Text1"));
  m_browse = new QPushButton(QStringLiteral("..."), this);
  m_browse->setObjectName(QStringLiteral("Command3"));
  m_browse->setAutoDefault(false);
  m_browse->setMaximumWidth(em * 6);
  m_question->setBuddy(m_text);

  m_previous = new QPushButton(ToQt(m.Lng(80)), this);
  m_previous->setObjectName(QStringLiteral("Command4"));
  m_continue = new QPushButton(ToQt(m.Lng(93)), this);
  m_continue->setObjectName(QStringLiteral("Command1"));
  m_continue->setDefault(true);
  m_close = new QPushButton(ToQt(m.Lng(78)), this);
  m_close->setObjectName(QStringLiteral("Command2"));
  m_close->setAutoDefault(false);
  m_previous->setAutoDefault(false);

  connect(m_continue, &QPushButton::clicked, this, &PathWizardDialog::OnContinue);
  connect(m_previous, &QPushButton::clicked, this, &PathWizardDialog::OnPrevious);
  connect(m_close, &QPushButton::clicked, this, &QDialog::reject);
  connect(m_browse, &QPushButton::clicked, this, &PathWizardDialog::OnBrowse);

  auto* pictures = new QVBoxLayout;
  pictures->addWidget(m_image1);
  pictures->addWidget(m_image2);
  pictures->addStretch();
  auto* pathRow = new QHBoxLayout;
  pathRow->addWidget(m_text, 1);
  pathRow->addWidget(m_browse);
  auto* body = new QVBoxLayout;
  body->addWidget(m_question);
  body->addLayout(pathRow);
  body->addStretch();
  auto* top = new QHBoxLayout;
  top->addLayout(pictures);
  top->addSpacing(em * 2);
  top->addLayout(body, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(m_previous);
  buttons->addStretch();
  buttons->addWidget(m_continue);
  buttons->addWidget(m_close);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top, 1);
  layout->addSpacing(line / 2);
  layout->addLayout(buttons);
  setTabOrder(m_text, m_browse);
  setTabOrder(m_browse, m_previous);
  setTabOrder(m_previous, m_continue);
  setTabOrder(m_continue, m_close);
  SelectAllOnFocus(this);
}

void PathWizardDialog::Show() {
  const PathWizard& w = *m_wizard;
  m_question->setText(MessageText(m_ctx.messages.Lng(w.QuestionNumber())));
  m_text->setVisible(w.BoxVisible());
  m_browse->setVisible(w.BrowseVisible());
  m_previous->setVisible(w.PreviousVisible());
  m_text->setText(ToQt(w.BoxText()));
  const int line = fontMetrics().height();
  const QStyle::StandardPixmap kind = w.Step() == 0   ? QStyle::SP_MessageBoxInformation
                                      : w.Step() == 1 ? QStyle::SP_FileIcon
                                                      : QStyle::SP_DirIcon;
  m_image2->setPixmap(style()->standardIcon(kind, nullptr, this).pixmap(line * 2, line * 2));
  if (w.BoxVisible()) {
    m_text->setFocus();
    m_text->selectAll();
  }
}

void PathWizardDialog::OnContinue() {
  m_wizard->Continue(FromQt(m_text->text()));
  if (m_wizard->Finished()) {
    accept();
    return;
  }
  Show();
}

void PathWizardDialog::OnPrevious() {
  m_wizard->Previous(FromQt(m_text->text()));
  Show();
}

void PathWizardDialog::OnBrowse() {
  const std::string current = FromQt(m_text->text());
  std::string chosen;
  if (m_wizard->BrowseIsFile()) {
    const Messages& m = m_ctx.messages;
    chosen = FileDialog(this, current, false, m.Lng(32) + "|*.exe;mame*|" + m.Lng(33) + "|*");
  } else {
    chosen = BrowseFolderDialog(this, current, {}, false);
  }
  if (!chosen.empty()) m_text->setText(ToQt(chosen));
}

}  // namespace tessarin
