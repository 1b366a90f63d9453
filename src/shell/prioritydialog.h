#pragma once

#include <QDialog>
#include <array>

class QLabel;

namespace tessarin {

class AppContext;
struct ShellSession;

// Three rows, idle, default and high: a click on a row's picture or text applies it at once.
class PriorityDialog final : public QDialog {
  Q_OBJECT
 public:
  PriorityDialog(QWidget* parent, AppContext& ctx, ShellSession& session);

  // What a click on row `index` does.
  void Choose(int index);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ShowChoice();

  AppContext& m_ctx;
  ShellSession& m_session;
  std::array<QLabel*, 3> m_radio{};
  std::array<QLabel*, 3> m_text{};
};

}  // namespace tessarin
