#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <mutex>
#include <vector>

#include "core/userinterface.h"

namespace tessarin {

class AppContext;

// Opens a document, a folder or an address in the desktop's own program; false when nothing
// would take it.
using DocumentOpener = std::function<bool(const std::string& pathOrAddress)>;
// The desktop's opener (QDesktopServices).
bool OpenWithDesktop(const std::string& pathOrAddress);

// The desktop's way of speaking to the user. Safe to call from any thread: a call from a worker
// thread is carried to the interface thread, and the worker waits for the answer there.
class QtUserInterface final : public QObject, public UserInterface {
  Q_OBJECT
 public:
  // `opener` opens documents; tests give one that only notes what it was asked.
  explicit QtUserInterface(AppContext& ctx, DocumentOpener opener = OpenWithDesktop);

  // The window that owns the boxes (the frame, once it exists).
  void SetOwner(QWidget* owner) { m_owner = owner; }

  void ShowMessage(bool modeless, const std::string& text, const std::string& title,
                   Icon icon) override;
  bool AskYesNo(const std::string& text, const std::string& title, Icon icon) override;
  std::string ChooseFile(const std::string& title, const std::string& startPath,
                         const std::string& filter, bool save) override;
  void OpenDocument(const std::string& pathOrAddress) override;

  // The end of a run after its sixth failure: opens the log and calls `end` with status 1, on
  // the interface thread. Called from a worker thread it hands both over to the interface thread
  // and returns, so that nothing ends the program from a thread that isn't its own.
  void EndAfterFatal(const std::string& logPath, std::function<void(int)> end);

  // While a job runs under the working dialog, the messages it shows from its thread wait, and
  // come after the working dialog has gone: an end-of-operation message must not sit under or
  // beside a progress bar that is still turning. Questions are asked at once.
  void HoldJobMessages() override;
  void ReleaseJobMessages() override;

 private:
  // Runs `call` on the interface thread and waits for it.
  void OnUiThread(const std::function<void()>& call);

  struct HeldMessage {
    bool modeless;
    std::string text;
    std::string title;
    Icon icon;
  };

  AppContext& m_ctx;
  DocumentOpener m_opener;
  QPointer<QWidget> m_owner;
  std::mutex m_heldMutex;
  int m_holding = 0;
  std::vector<HeldMessage> m_held;
};

}  // namespace tessarin
