// The list tools: scan-folder, xml-to-list, ini-set and copy-task.
#include <memory>
#include <string>

#include "cli/session.h"
#include "core/fileservices.h"
#include "lists/copytasks.h"
#include "lists/initools.h"

namespace tessarin {

namespace {

int ToolStatus(CliSession& session, ToolResult result, const std::string& out) {
  switch (result) {
    case ToolResult::Done:
      session.Print("Written: " + out);
      return kExitOk;
    case ToolResult::Cancelled:
      session.Error(session.Ctx().messages.Lng(377));
      return kExitFailed;
    case ToolResult::CantWrite:
      session.Error("Can't write " + out);
      return kExitFailed;
    case ToolResult::NoSource:
    default:
      return kExitFailed;
  }
}

void AddScanFolder(CliRegistry& registry) {
  struct Options {
    FolderScanOptions scan;
    bool files = false;
    std::string out;
  };
  auto o = std::make_shared<Options>();
  o->scan.extension = "zip";
  CLI::App* cmd = registry.Add(
      "scan-folder",
      "Write an .ini list of what a folder holds: its files of one extension (default) or its "
      "subfolders, a name a line under the [ROOT_FOLDER] header. An older list is kept as .bak.",
      [o](CliSession& session) {
        if (!FolderExists(o->scan.folder)) {
          session.Error(session.Ctx().messages.Lng(464) + " " + o->scan.folder);
          return kExitFailed;
        }
        ToolResult result = ToolResult::Done;
        session.RunWithProgress([&] {
          result = ScanFolderToIni(o->scan, o->out, session.CurrentWork());
          return true;
        });
        return ToolStatus(session, result, o->out);
      });
  cmd->add_option("--folder", o->scan.folder, "Folder to scan (Text1)")->required();
  auto* sub = cmd->add_flag("--subfolders", o->scan.subfolders, "List the subfolders (Option1)");
  cmd->add_flag("--files", o->files, "List the files of the extension (Option2, the default)")
      ->excludes(sub);
  cmd->add_option("--extension", o->scan.extension,
                  "Extension of the files (Text2; default zip; empty: every file)");
  cmd->add_flag("--remove-extension", o->scan.removeExtension,
                "Cut the extension and its point off each name (Check1)");
  cmd->add_option("--add-after", o->scan.after, "Put this text behind each name (Check2, Text3)")
      ->each([o](const std::string&) { o->scan.addAfter = true; });
  cmd->add_option("--add-before", o->scan.before,
                  "Put this text in front of each name (Check3, Text4)")
      ->each([o](const std::string&) { o->scan.addBefore = true; });
  cmd->add_option("--out", o->out, "The .ini file to write")->required();
}

void AddXmlToList(CliRegistry& registry) {
  struct Options {
    XmlListOptions xml;
    std::string out;
  };
  auto o = std::make_shared<Options>();
  o->xml.romNames = false;
  CLI::App* cmd = registry.Add(
      "xml-to-list",
      "Write the rom names and/or the game names of an emulator XML file, a line each, without "
      "the database. With both, each line is name;description.",
      [o](CliSession& session) {
        if (!FileExists(o->xml.source)) {
          session.Error("Source file not found ! " + o->xml.source);
          return kExitFailed;
        }
        ToolResult result = ToolResult::Done;
        session.RunWithProgress([&] {
          result = XmlToList(o->xml, o->out, session.CurrentWork());
          return true;
        });
        return ToolStatus(session, result, o->out);
      });
  cmd->add_option("--source", o->xml.source, "The XML file (Text1)")->required();
  cmd->add_flag("--rom-names", o->xml.romNames, "Rom names (Check1; the default)");
  cmd->add_flag("--game-names", o->xml.gameNames, "Game names, from <description> (Check2)");
  cmd->add_flag("--add-zip", o->xml.addZip, "Add .zip to the rom names (Check3)");
  cmd->add_flag("--no-clone", o->xml.noClone,
                "Check4 \"No clone\": keeps only the lines that name a parent (cloneof), that "
                "is the clones, as the dialog always has");
  cmd->add_option("--out", o->out, "The file to write")->required();
}

void AddIniSet(CliRegistry& registry) {
  struct Options {
    std::vector<std::string> files;
    std::string destination;
    std::vector<std::string> paths;
    std::string sort = "none";
  };
  auto o = std::make_shared<Options>();
  std::vector<std::string> names;
  for (std::string_view n : kIniSetNames) names.emplace_back(n.substr(0, n.size() - 4));
  CLI::App* cmd = registry.Add(
      "ini-set",
      "Write the classification .ini files from the database: a [section] per value of the "
      "table (manufacturer, year, genre, ...) with the games of that value under it.",
      [o, names](CliSession& session) {
        if (!session.EnsureLoaded()) return kExitFailed;
        AppContext& ctx = session.Ctx();
        IniSetOptions options;
        for (const std::string& f : o->files) {
          for (size_t i = 0; i < names.size(); ++i) {
            if (f == "all" || f == names[i]) options.selected[i] = true;
          }
        }
        options.uniqueFolder = o->paths.empty();
        options.paths[kIniSetFiles] = o->destination;
        for (const std::string& p : o->paths) {
          const size_t eq = p.find('=');
          bool known = false;
          for (size_t i = 0; eq != std::string::npos && i < names.size(); ++i) {
            if (p.substr(0, eq) == names[i]) {
              options.paths[i] = p.substr(eq + 1);
              known = true;
            }
          }
          if (!known) {
            session.Error("--path wants NAME=FILE with a file name of the set: " + p);
            return kExitUsage;
          }
        }
        options.sort = o->sort == "rom" ? 1 : o->sort == "name" ? 2 : 0;
        IniSetResult result = IniSetResult::Done;
        session.RunWithProgress([&] {
          result = GenerateIniSet(ctx, session.CurrentWork(), options);
          return true;
        });
        switch (result) {
          case IniSetResult::NothingSelected:
            session.Error(ctx.messages.Lng(375));
            return kExitUsage;
          case IniSetResult::BadDestination:
            session.Error(ctx.messages.Lng(376) + " " + o->destination);
            return kExitFailed;
          case IniSetResult::Cancelled:
            session.Error(ctx.messages.Lng(377));
            return kExitFailed;
          case IniSetResult::Done:
            break;
        }
        for (size_t i = 0; i < names.size(); ++i) {
          if (options.selected[i]) session.Print(options.paths[i]);
        }
        return kExitOk;
      });
  std::vector<std::string> choices = names;
  choices.emplace_back("all");
  cmd->add_option("--files", o->files, "The files to write (Chck): names without .ini, or all")
      ->delimiter(',')
      ->required()
      ->check(CLI::IsMember(choices));
  cmd->add_option("--destination", o->destination,
                  "One folder for every file (Radio 0, Text1(15))");
  cmd->add_option("--path", o->paths,
                  "A file of its own per name, NAME=FILE (Radio 1, Text1(i)); an empty FILE is "
                  "the program folder, a FILE ending in / gets the name behind it");
  cmd->add_option("--sort", o->sort, "none (the database's order), rom, or name (Radio2)")
      ->check(CLI::IsMember({"none", "rom", "name"}));
}

NameListKind KindFrom(const std::string& file, const std::string& folder) {
  if (!file.empty()) return NameListKind::File;
  if (!folder.empty()) return NameListKind::Files;
  return NameListKind::Subfolders;
}

void AddCopyTask(CliRegistry& registry) {
  struct Options {
    CopyTaskOptions task;
    std::string action = "copy";
  };
  auto o = std::make_shared<Options>();
  o->task.list.extension = "zip";
  o->task.compare.extension = "zip";
  CLI::App* cmd = registry.Add(
      "copy-task",
      "For every rom name that stands in both lists, copy, move or delete the file "
      "SOURCE/name.EXT. Each list is a text file of names, the files of a folder, or its "
      "subfolders. Asks first (--yes answers); the report goes to Tessarin.CopyTasks.LOG.txt.",
      [o](CliSession& session) {
        AppContext& ctx = session.Ctx();
        CopyTaskOptions& t = o->task;
        t.list.kind = KindFrom(t.list.file, t.list.folder);
        t.compare.kind = KindFrom(t.compare.file, t.compare.folder);
        t.action = o->action == "move"     ? CopyAction::Move
                   : o->action == "delete" ? CopyAction::Delete
                                           : CopyAction::Copy;
        CopyTaskField bad = CopyTaskField::None;
        const std::string text = CopyTaskConfirmation(t, bad);
        if (bad != CopyTaskField::None) {
          const std::string path = bad == CopyTaskField::List      ? t.list.Path()
                                   : bad == CopyTaskField::Compare ? t.compare.Path()
                                   : bad == CopyTaskField::Source  ? t.source
                                                                   : t.destination;
          session.Error("This path doesn't exist: " + path);
          return kExitFailed;
        }
        if (!ctx.Ui().AskYesNo(text, "Start processing ?", Icon::Question)) return kExitFailed;
        CopyTaskResult result = CopyTaskResult::Done;
        session.RunWithProgress([&] {
          result = RunCopyTask(ctx, session.CurrentWork(), t, text);
          return true;
        });
        return result == CopyTaskResult::Done ? kExitOk : kExitFailed;
      });
  auto* listFile = cmd->add_option("--list-file", o->task.list.file,
                                   "List of roms: a text file of names (List in a file)");
  auto* listFolder = cmd->add_option("--list-folder", o->task.list.folder,
                                     "List of roms: the files of a folder (Files in a folder)");
  auto* listSub = cmd->add_option("--list-subfolders", o->task.list.subfolders,
                                  "List of roms: the subfolders of a folder");
  listFile->excludes(listFolder)->excludes(listSub);
  listFolder->excludes(listSub);
  cmd->add_option("--list-ext", o->task.list.extension, "Extension of --list-folder (Ext :)");
  auto* compFile =
      cmd->add_option("--compare-file", o->task.compare.file, "Compare list: a text file");
  auto* compFolder = cmd->add_option("--compare-folder", o->task.compare.folder,
                                     "Compare list: the files of a folder");
  auto* compSub = cmd->add_option("--compare-subfolders", o->task.compare.subfolders,
                                  "Compare list: the subfolders of a folder");
  compFile->excludes(compFolder)->excludes(compSub);
  compFolder->excludes(compSub);
  cmd->add_option("--compare-ext", o->task.compare.extension,
                  "Extension of --compare-folder (Ext :)");
  cmd->add_option("--source", o->task.source, "Source files folder")->required();
  cmd->add_option("--source-ext", o->task.sourceExtension,
                  "Extension of the source files (Extension :)");
  cmd->add_option("--destination", o->task.destination,
                  "Destination folder (not needed to delete)");
  cmd->add_option("--action", o->action, "copy, move or delete (Action)")
      ->check(CLI::IsMember({"copy", "move", "delete"}));
}

}  // namespace

void RegisterToolCommands(CliRegistry& registry) {
  AddScanFolder(registry);
  AddXmlToList(registry);
  AddIniSet(registry);
  AddCopyTask(registry);
}

}  // namespace tessarin
