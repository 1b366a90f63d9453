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

// The desktop's way of speaking to the user. Safe to call from any thread: a call from a worker
// thread is carried to the interface thread, and the worker waits for the answer there.
class QtUserInterface final : public QObject, public UserInterface {
  Q_OBJECT
 public:
  explicit QtUserInterface(AppContext& ctx);

  // The window that owns the boxes (the frame, once it exists).
  void SetOwner(QWidget* owner) { m_owner = owner; }

  void ShowMessage(bool modeless, const std::string& text, const std::string& title,
                   Icon icon) override;
  bool AskYesNo(const std::string& text, const std::string& title, Icon icon) override;
  std::string ChooseFile(const std::string& title, const std::string& startPath,
                         const std::string& filter, bool save) override;
  void OpenDocument(const std::string& pathOrAddress) override;

  // Tests set this to see the documents the program opens instead of starting a viewer.
  std::function<void(const std::string&)> OpenHook;

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
  QPointer<QWidget> m_owner;
  std::mutex m_heldMutex;
  int m_holding = 0;
  std::vector<HeldMessage> m_held;
};

}  // namespace tessarin
