#pragma once

#include <QDialog>
#include <functional>
#include <string>

class QLabel;
class QPushButton;
class QTimer;

namespace tessarin {

class AppContext;
class Work;

// The shared progress window of long jobs: what is going on, the 21-frame progress picture that
// its timer moves every 1500 ms, a turning bar in the title, and a cancel button that asks first
// and then raises the job's cancel flag.
class WorkingDialog final : public QDialog {
  Q_OBJECT
 public:
  static constexpr int kTickMilliseconds = 1500;

  WorkingDialog(QWidget* parent, AppContext& ctx, Work& work, const QString& label,
                bool showCancel = true);
  ~WorkingDialog() override;

  // One timer tick: the title's bar turns and the picture shows the job's percent.
  void Tick();
  // The cancel button: asks message 311 and raises the flag on a yes.
  void AskCancel();
  // Ends the dialog once the job has returned.
  void Finish();

  int ProgressFrame() const;
  int TickCount() const { return m_tick; }

 protected:
  void reject() override;
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void RefreshStatus();
  void PlaceOnLoad();

  AppContext& m_ctx;
  Work& m_work;
  QLabel* m_label;
  QLabel* m_picture;
  QLabel* m_progress;
  QPushButton* m_cancel;
  QTimer* m_timer;
  QTimer* m_statusTimer;
  QString m_baseLabel;
  int m_tick = 0;
  int m_storedTop = -1;
  int m_storedLeft = -1;
  bool m_finished = false;
  bool m_placed = false;
};

// The tracking number under which a job's escaping failure is logged.
inline constexpr int kWorkingJobTrackPoint = 1601;

// Runs `job` on a worker thread under a modal working dialog whose label is `label`, and gives
// true when it ran to its end without a cancel. The job reads its cancel flag and sets its
// progress on the Work it is given; it may ask the user through ctx.Ui(), which waits for the
// answer on the interface thread. An exception from the job is logged as a failure.
bool RunWithWorkingDialog(QWidget* parent, AppContext& ctx, const std::string& label,
                          std::function<void(Work&)> job, bool showCancel = true);

}  // namespace tessarin
