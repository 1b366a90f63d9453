// The list commands: list (a text list of chosen fields, or CSV) and dat (the DAT export).
#include <algorithm>
#include <memory>

#include "builder/datanalysers.h"
#include "cli/session.h"
#include "core/fileservices.h"
#include "lists/datexport.h"
#include "lists/textlists.h"

namespace tessarin {

namespace {

std::string AllFieldNames() {
  std::string names;
  for (const ListFieldInfo& field : ListFields()) {
    if (!names.empty()) names += ", ";
    names += field.name;
  }
  return names;
}

// The field of that name: exact first, then without regard to case; -1 when none.
int FieldByName(std::string_view name) {
  const int exact = FindListField(name);
  if (exact >= 0) return exact;
  for (int i = 0; i < kListFieldCount; ++i) {
    if (LowerCopy(ListFields()[static_cast<size_t>(i)].name) == LowerCopy(name)) return i;
  }
  return -1;
}

// A named INI file that isn't there selects every game, as in the list window; the command line
// says so, on standard error, so that a mistyped name isn't taken for a wish.
void WarnOfAMissingIni(CliSession& session, const std::string& ini) {
  if (ini.empty() || FileExists(std::string(TrimBlanks(ini)))) return;
  session.Error("No INI file at " + ini + ": every game is written");
}

void AddList(CliRegistry& registry) {
  struct Options {
    std::string fields, separator, ini, out, format = "text";
    bool quotes = false;
  };
  auto o = std::make_shared<Options>();
  CLI::App* list = registry.Add(
      "list",
      "Write a text list of chosen fields, one line per game (of the database, or of --ini), "
      "as the list dialog does; --format csv writes RFC 4180 CSV instead",
      [o](CliSession& session) {
        TextListRequest request;
        request.format.csv = o->format == "csv";
        // Fields: the columns always come in the table's order, whatever order is given.
        if (o->fields == "all") {
          request.selected.fill(true);
        } else {
          size_t start = 0;
          while (start <= o->fields.size()) {
            size_t comma = o->fields.find(',', start);
            if (comma == std::string::npos) comma = o->fields.size();
            const std::string_view name =
                TrimBlanks(std::string_view(o->fields).substr(start, comma - start));
            if (!name.empty()) {
              const int index = FieldByName(name);
              if (index < 0) {
                session.Error("No field named \"" + std::string(name) +
                              "\"; the fields are: " + AllFieldNames());
                return kExitUsage;
              }
              request.selected[static_cast<size_t>(index)] = true;
            }
            start = comma + 1;
          }
          if (std::none_of(request.selected.begin(), request.selected.end(),
                           [](bool b) { return b; })) {
            session.Error("No field given in --fields");
            return kExitUsage;
          }
        }
        // The separator: a radio's name, or one character for Other.
        SeparatorRadio radio = request.format.csv ? SeparatorRadio::Comma : SeparatorRadio::Tab;
        std::string other;
        const std::string& s = o->separator;
        if (s.empty()) {
        } else if (s == "tab") {
          radio = SeparatorRadio::Tab;
        } else if (s == "semicolon") {
          radio = SeparatorRadio::Semicolon;
        } else if (s == "comma") {
          radio = SeparatorRadio::Comma;
        } else if (s == "space") {
          radio = SeparatorRadio::Space;
        } else if (FirstCharacter(s).size() == s.size()) {
          radio = SeparatorRadio::Other;
          other = s;
        } else {
          session.Error("--separator takes tab, semicolon, comma, space or one character, not \"" +
                        s + "\"");
          return kExitUsage;
        }
        request.format.separator = ListSeparator(radio, other);
        request.format.quote = o->quotes ? "\"" : "";
        request.iniFile = o->ini;
        request.outputPath = o->out;
        WarnOfAMissingIni(session, o->ini);
        if (!session.EnsureLoaded()) return kExitFailed;
        AppContext& ctx = session.Ctx();
        Work& work = session.CurrentWork();
        ListRunResult result = ListRunResult::Failed;
        session.RunWithProgress([&] {
          result = BuildTextList(ctx, work, request);
          return result == ListRunResult::Done;
        });
        if (result == ListRunResult::Cancelled) {
          session.Error("Cancelled; the lines written so far are in " + o->out);
          return kExitFailed;
        }
        if (result != ListRunResult::Done) {
          session.Error("The list could not be written to " + o->out + "; see " +
                        ctx.log.LogPath());
          return kExitFailed;
        }
        session.Print("List written to " + o->out);
        return kExitOk;
      });
  list->add_option("--fields", o->fields,
                   "Comma-separated field names, or \"all\": " + AllFieldNames())
      ->required();
  list->add_option("--separator", o->separator,
                   "tab (the default), semicolon, comma, space, or a single character; CSV uses "
                   "a comma unless told otherwise");
  list->add_flag("--quotes", o->quotes,
                 "Put every value between quotation marks (CSV: quote every cell)");
  list->add_option("--ini", o->ini,
                   "An INI file of rom names: list only those, in its order (names are cut to "
                   "8 characters, as the list dialog does); a missing file lists every game");
  list->add_option("--out", o->out, "The list file to write (replaced)")->required();
  list->add_option("--format", o->format,
                   "text (the list dialog's format, the default) or csv (RFC 4180, UTF-8, "
                   "header without a trailing separator)")
      ->check(CLI::IsMember({"text", "csv"}));
}

void AddDat(CliRegistry& registry) {
  struct Options {
    std::string ini, out;
  };
  auto o = std::make_shared<Options>();
  CLI::App* dat = registry.Add(
      "dat",
      "Write a rom manager's data file through dat_mask.dat of the application folder "
      "(written with the clrmamepro format when missing)",
      [o](CliSession& session) {
        WarnOfAMissingIni(session, o->ini);
        if (!session.EnsureLoaded()) return kExitFailed;
        AppContext& ctx = session.Ctx();
        DatMask mask;
        if (!PrepareDatMask(ctx, mask)) {
          session.Error("The mask " + AddSlash(ctx.AppFolder()) + std::string(kDatMaskName) +
                        " has no #START_HEAD line: nothing written");
          return kExitFailed;
        }
        Work& work = session.CurrentWork();
        DatExportResult result = DatExportResult::Failed;
        session.RunWithProgress([&] {
          result = ExportDatList(ctx, work, mask, o->ini, o->out);
          return result == DatExportResult::Done;
        });
        if (result == DatExportResult::Cancelled) {
          session.Error("Cancelled; what was written so far is in " + o->out);
          return kExitFailed;
        }
        if (result != DatExportResult::Done) {
          session.Error("The data file could not be written to " + o->out + "; see " +
                        ctx.log.LogPath());
          return kExitFailed;
        }
        session.Print("Data file written to " + o->out);
        return kExitOk;
      });
  dat->add_option(
      "--ini", o->ini,
      "An INI file of rom names: export only those, in its order; a missing file exports "
      "every game");
  dat->add_option("--out", o->out, "The data file to write (replaced)")->required();
}

}  // namespace

void RegisterListCommands(CliRegistry& registry) {
  AddList(registry);
  AddDat(registry);
}

}  // namespace tessarin
