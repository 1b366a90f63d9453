#include "cli/session.h"

#include <chrono>
#include <cstdio>
#include <future>
#include <iostream>
#include <thread>

#include "app/context.h"
#include "cli/terminal.h"
#include "core/fileservices.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/userinterface.h"
#include "store/indexfile.h"

namespace tessarin {

// The command line's way of speaking to the user: messages on the terminal, questions answered
// on the terminal, or by --yes, or "no" when no one can answer.
class TerminalInterface final : public UserInterface {
 public:
  TerminalInterface(bool yes, std::mutex& screen) : m_yes(yes), m_screen(screen) {}

  void ShowMessage(bool, const std::string& text, const std::string& title, Icon icon) override {
    std::lock_guard lock(m_screen);
    ClearBarLine();
    std::FILE* out = (icon == Icon::Stop || icon == Icon::Warning) ? stderr : stdout;
    std::string shown = WithLineBreaks(text.empty() ? std::string("Done.") : text);
    if (!title.empty() && icon != Icon::Information) shown = WithLineBreaks(title) + ": " + shown;
    std::fprintf(out, "%s\n", shown.c_str());
    std::fflush(out);
  }

  bool AskYesNo(const std::string& text, const std::string& title, Icon) override {
    std::lock_guard lock(m_screen);
    ClearBarLine();
    const std::string question = WithLineBreaks(text);
    if (m_yes) {
      std::fprintf(stderr, "%s\n-> yes (--yes)\n", question.c_str());
      return true;
    }
    if (!IsTerminal(stdin)) {
      std::fprintf(stderr, "%s\n-> no (no terminal to ask on; give --yes to answer yes)\n",
                   question.c_str());
      return false;
    }
    std::fprintf(stderr, "%s%s%s [y/N] ", title.empty() ? "" : WithLineBreaks(title).c_str(),
                 title.empty() ? "" : "\n", question.c_str());
    std::fflush(stderr);
    std::string answer;
    std::getline(std::cin, answer);
    return !answer.empty() && (answer[0] == 'y' || answer[0] == 'Y');
  }

  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    return {};
  }

  void OpenDocument(const std::string& pathOrAddress) override {
    std::lock_guard lock(m_screen);
    ClearBarLine();
    std::printf("%s\n", pathOrAddress.c_str());
    std::fflush(stdout);
  }

  // Call with the screen locked.
  void ClearBarLine() {
    if (barShown) {
      std::fprintf(stderr, "\r\033[K");
      barShown = false;
    }
  }

  // Set while a progress bar holds the current terminal line.
  bool barShown = false;

 private:
  bool m_yes;
  std::mutex& m_screen;
};

namespace {

// The sixth failure of a run ends it, but never from a worker thread: the job is asked to stop
// and the main thread ends the program once the job has returned.
std::atomic<bool> g_fatalRequested{false};
std::thread::id g_mainThread;

[[noreturn]] void EndAfterFatal(const std::string& logPath) {
  std::fflush(stdout);
  std::fprintf(stderr, "Tessarin stopped after too many errors; see %s\n", logPath.c_str());
  std::fflush(stderr);
  std::exit(kExitFailed);
}

}  // namespace

CliSession::CliSession(std::string home, bool yes, std::string executableFolder)
    : m_home(std::move(home)),
      m_yes(yes),
      m_executableFolder(std::move(executableFolder)),
      m_ui(std::make_unique<TerminalInterface>(yes, m_screen)) {
  g_mainThread = std::this_thread::get_id();
}

CliSession::~CliSession() = default;

AppContext& CliSession::Ctx() {
  if (m_ctx) return *m_ctx;
  const std::string folder = ResolveAppFolder(m_home, m_executableFolder);
  // Settings, log and database all live there: without it nothing a command does would last.
  if (!FolderIsWritable(folder)) {
    throw Failure(75, "The application folder can't be written: " + folder);
  }
  RemoveStaleTempFilesOfRun(folder);
  m_ctx = std::make_unique<AppContext>(folder);
  AppContext& ctx = *m_ctx;
  ctx.SetUi(m_ui.get());
  ctx.log.SetFatalHandler([this](const std::string& logPath) {
    if (std::this_thread::get_id() == g_mainThread) EndAfterFatal(logPath);
    g_fatalRequested = true;
    m_work.CancelRequested = true;
  });
  ctx.settings.InfLoad();
  const int language = ctx.settings.InfReadNumber("Language");
  ctx.messages.LanguageNumber = language == -1 ? Messages::kEnglish : language;
  ctx.messages.LoadMessages();
  return ctx;
}

UserInterface& CliSession::Ui() { return *m_ui; }

bool CliSession::EnsureLoaded() {
  AppContext& ctx = Ctx();
  if (ctx.store.GameCount() > 0) return true;
  const std::string path = IndexFilePath(ctx.AppFolder());
  if (!FileExists(path)) {
    Error(ctx.messages.Lng(28) + "\n" + path);
    return false;
  }
  if (!LoadIndex(ctx.store, ctx.log, path)) {
    Error(ctx.messages.Lng(331) + "\n" + path);
    return false;
  }
  return true;
}

bool CliSession::RunWithProgress(const std::function<bool()>& job) {
  Work& work = m_work;
  work.Reset();  // the one who asks clears the flag; the job only reads it
  CatchInterrupt();
  auto result = std::async(std::launch::async, job);
  const bool bar = IsTerminal(stderr);
  std::string lastStatus;
  while (result.wait_for(std::chrono::milliseconds(bar ? 150 : 250)) != std::future_status::ready) {
    if (InterruptRequested()) work.CancelRequested = true;
    std::lock_guard lock(m_screen);
    const std::string status = work.Status();
    if (bar) {
      const int percent = work.Percent();
      constexpr int kWidth = 30;
      const int filled = percent * kWidth / 100;
      std::string line = "\r[" + std::string(static_cast<size_t>(filled), '#') +
                         std::string(static_cast<size_t>(kWidth - filled), '.') + "] " +
                         std::to_string(percent) + "% " + status.substr(0, 60);
      std::fprintf(stderr, "%s\033[K", line.c_str());
      std::fflush(stderr);
      m_ui->barShown = true;
    } else if (status != lastStatus && !status.empty()) {
      std::fprintf(stderr, "%s\n", status.c_str());
      lastStatus = status;
    }
  }
  {
    std::lock_guard lock(m_screen);
    m_ui->ClearBarLine();
  }
  if (g_fatalRequested) EndAfterFatal(Ctx().log.LogPath());
  return result.get();
}

void CliSession::Error(const std::string& text) {
  std::lock_guard lock(m_screen);
  m_ui->ClearBarLine();
  std::fprintf(stderr, "%s\n", WithLineBreaks(text).c_str());
  std::fflush(stderr);
}

void CliSession::Print(const std::string& text) {
  std::lock_guard lock(m_screen);
  m_ui->ClearBarLine();
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
}

CLI::App* CliRegistry::Add(const std::string& name, const std::string& description,
                           Handler handler) {
  CLI::App* sub = m_app.add_subcommand(name, description);
  m_commands.emplace_back(sub, std::move(handler));
  return sub;
}

const CliRegistry::Handler* CliRegistry::Chosen() const {
  for (const auto& [sub, handler] : m_commands) {
    if (sub->parsed()) return &handler;
  }
  return nullptr;
}

}  // namespace tessarin
