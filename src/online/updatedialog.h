#pragma once

#include <functional>
#include <string>

#include "widgets/formdialog.h"

class QCheckBox;
class QLabel;

namespace tessarin {

class AppContext;

// The data update check from the desktop: the job runs under the working dialog (its cancel
// button hidden), the new version notice shows on the interface thread, and `reloaded` runs there
// once the index has been read again.
void RunDataUpdateCheck(QWidget* parent, AppContext& ctx, bool silentAsk,
                        const std::function<void()>& reloaded);

// The update dialog (Form16): the start-up check box and the button that checks now.
class UpdateDialog final : public FormDialog {
  Q_OBJECT
 public:
  UpdateDialog(QWidget* parent, AppContext& ctx, std::function<void()> reloaded);
  ~UpdateDialog() override;

  void CheckNow();  // Command1

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void SaveState() override;

  AppContext& m_ctx;
  std::function<void()> m_reloaded;
  QCheckBox* m_check;
  QLabel* m_label1;
};

// The new version notice (Form18), modal.
class NewVersionDialog final : public QDialog {
  Q_OBJECT
 public:
  NewVersionDialog(QWidget* parent, AppContext& ctx);
};

}  // namespace tessarin
