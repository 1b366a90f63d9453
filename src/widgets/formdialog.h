#pragma once

#include <QDialog>

class QCloseEvent;

namespace tessarin {

// A window of the program that writes its settings (place, choices) as it goes, once, however
// it goes: closed, ended with Escape or by one of its buttons.
class FormDialog : public QDialog {
 public:
  using QDialog::QDialog;

  // Writes the settings unless they were written already. A window whose destructor must save
  // them calls this from its own destructor.
  void Unload() {
    if (m_unloaded) return;
    m_unloaded = true;
    SaveState();
  }

 protected:
  // The window's own settings; runs once, from Unload.
  virtual void SaveState() = 0;
  bool IsUnloaded() const { return m_unloaded; }

  void closeEvent(QCloseEvent* event) override {
    Unload();
    QDialog::closeEvent(event);
  }
  // Escape ends the window through here rather than through a close event.
  void done(int result) override {
    Unload();
    QDialog::done(result);
  }

 private:
  bool m_unloaded = false;
};

}  // namespace tessarin
