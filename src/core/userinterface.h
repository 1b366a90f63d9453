#pragma once

#include <string>

namespace tessarin {

// Message box icons, with the values the messages have always used.
enum class Icon : int { Stop = 16, Question = 32, Warning = 48, Information = 64 };

// How core routines speak to the user. The desktop program asks on the interface thread and
// waits, the command line asks on the terminal, tests answer from a script. Texts arrive as
// stored in the message table: the implementation turns each "|" into a line break.
class UserInterface {
 public:
  virtual ~UserInterface() = default;

  // The end-of-operation message. An empty text means "Done."; an empty title "Tessarin".
  virtual void ShowMessage(bool modeless, const std::string& text, const std::string& title,
                           Icon icon) = 0;
  // A yes/no question; true for yes.
  virtual bool AskYesNo(const std::string& text, const std::string& title, Icon icon) = 0;
  // A file to open or to save; the empty text when the user cancels.
  virtual std::string ChooseFile(const std::string& title, const std::string& startPath,
                                 const std::string& filter, bool save) = 0;
  // Opens a document, a folder or an address in the desktop's own program.
  virtual void OpenDocument(const std::string& pathOrAddress) = 0;

  // Called around a job that runs under a progress window: while held, the messages the job
  // shows wait and come once the window has gone (questions are asked at once). Calls nest.
  // Front ends without such a window ignore them.
  virtual void HoldJobMessages() {}
  virtual void ReleaseJobMessages() {}
};

}  // namespace tessarin
