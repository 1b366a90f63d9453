#include "widgets/desktopui.h"

#include <QDesktopServices>
#include <QMessageBox>
#include <QThread>
#include <QUrl>

#include "app/context.h"
#include "widgets/windowhelpersui.h"

namespace tessarin {

bool OpenWithDesktop(const std::string& pathOrAddress) {
  const QString target = ToQt(pathOrAddress);
  const bool isAddress = target.contains(QStringLiteral("://"));
  return QDesktopServices::openUrl(isAddress ? QUrl(target) : QUrl::fromLocalFile(target));
}

QtUserInterface::QtUserInterface(AppContext& ctx, DocumentOpener opener)
    : m_ctx(ctx), m_opener(std::move(opener)) {}

void QtUserInterface::OnUiThread(const std::function<void()>& call) {
  if (QThread::currentThread() == thread()) {
    call();
    return;
  }
  QMetaObject::invokeMethod(
      this, [&call] { call(); }, Qt::BlockingQueuedConnection);
}

void QtUserInterface::HoldJobMessages() {
  std::lock_guard lock(m_heldMutex);
  ++m_holding;
}

void QtUserInterface::ReleaseJobMessages() {
  std::vector<HeldMessage> held;
  {
    std::lock_guard lock(m_heldMutex);
    if (m_holding > 0) --m_holding;
    if (m_holding > 0) return;
    held.swap(m_held);
  }
  for (const HeldMessage& message : held) {
    ShowMessage(message.modeless, message.text, message.title, message.icon);
  }
}

void QtUserInterface::ShowMessage(bool modeless, const std::string& text, const std::string& title,
                                  Icon icon) {
  if (QThread::currentThread() != thread()) {
    std::lock_guard lock(m_heldMutex);
    if (m_holding > 0) {
      m_held.push_back({modeless, text, title, icon});
      return;
    }
  }
  OnUiThread([&] {
    tessarin::ShowMessage(m_owner, m_ctx, modeless, text, title, static_cast<int>(icon));
  });
}

bool QtUserInterface::AskYesNo(const std::string& text, const std::string& title, Icon icon) {
  bool yes = false;
  OnUiThread([&] {
    QMessageBox box(m_owner);
    box.setObjectName(QStringLiteral("YesNoBox"));
    box.setWindowTitle(title.empty() ? QStringLiteral("Tessarin") : MessageText(title));
    box.setText(MessageText(text));
    switch (icon) {
      case Icon::Stop:
        box.setIcon(QMessageBox::Critical);
        break;
      case Icon::Warning:
        box.setIcon(QMessageBox::Warning);
        break;
      case Icon::Information:
        box.setIcon(QMessageBox::Information);
        break;
      default:
        box.setIcon(QMessageBox::Question);
        break;
    }
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
    yes = box.exec() == QMessageBox::Yes;
  });
  return yes;
}

std::string QtUserInterface::ChooseFile(const std::string& title, const std::string& startPath,
                                        const std::string& filter, bool save) {
  std::string result;
  OnUiThread([&] { result = FileDialog(m_owner, startPath, save, filter, title); });
  return result;
}

void QtUserInterface::OpenDocument(const std::string& pathOrAddress) {
  bool opened = false;
  OnUiThread([&] { opened = m_opener && m_opener(pathOrAddress); });
  // Without a program for it the user would see nothing happen: say which file it was.
  if (!opened) {
    ShowMessage(false, "No program of the desktop opens this file:|" + pathOrAddress, {},
                Icon::Warning);
  }
}

void QtUserInterface::EndAfterFatal(const std::string& logPath, std::function<void(int)> end) {
  auto stop = [this, logPath, end = std::move(end)] {
    OpenDocument(logPath);
    end(1);
  };
  if (QThread::currentThread() == thread()) {
    stop();
    return;
  }
  QMetaObject::invokeMethod(this, std::move(stop), Qt::QueuedConnection);
}

}  // namespace tessarin
