// The search command: the search dialog's sixteen boxes as options, and its result list on
// standard output.
#include <array>
#include <memory>
#include <optional>

#include "cli/session.h"
#include "core/messages.h"
#include "search/searchengine.h"

namespace tessarin {

namespace {

struct SearchOptions {
  std::string keyword;
  // A text per ComboN, when its option was given.
  std::array<std::optional<std::string>, 21> text;
  std::string available, clones, mature, compare;
  bool names = false;
};

// The text options and the box each one stands for.
struct TextOption {
  const char* flag;
  int combo;
  const char* help;
};
constexpr TextOption kTextOptions[] = {
    {"--manufacturer", 1, "Manufacturer, as its list shows it"},
    {"--year", 2, "Year"},
    {"--genre", 3, "Genre"},
    {"--category", 4, "Category"},
    {"--status", 5, "Driver status"},
    {"--players", 6, "Players"},
    {"--buttons", 7, "Buttons"},
    {"--control", 8, "Control"},
    {"--orientation", 12, "Orientation (a text that is no entry finds nothing)"},
    {"--driver", 13, "Driver source (a text that is no entry finds nothing)"},
    {"--savestate", 16, "Save state support"},
    {"--version", 17, "Version in which the game was added (see --compare)"},
};

// Puts a text in a box as a user would: a text equal to an entry of the list selects it ("All"
// in any language selects the first), any other text stays a typed text (position -1).
void PutText(SearchForm& form, const SearchLists& lists, int combo, std::string text,
             const std::string& allText) {
  const auto& items = lists.Items[static_cast<size_t>(combo)];
  if (text == "All" || text == allText) {
    form.Text[static_cast<size_t>(combo)] = allText;
    form.Position[static_cast<size_t>(combo)] = 0;
    return;
  }
  form.Position[static_cast<size_t>(combo)] = ListPosition(items, text);
  form.Text[static_cast<size_t>(combo)] = std::move(text);
}

// A fixed list chosen by word: all is position 0, the two others 1 and 2.
void PutChoice(SearchForm& form, const SearchLists& lists, int combo, const std::string& word,
               const char* first, const char* second) {
  if (word.empty()) return;
  const int position = word == first ? 1 : word == second ? 2 : 0;
  const auto& items = lists.Items[static_cast<size_t>(combo)];
  form.Position[static_cast<size_t>(combo)] = position;
  if (static_cast<size_t>(position) < items.size()) {
    form.Text[static_cast<size_t>(combo)] = items[static_cast<size_t>(position)];
  }
}

int RunSearchCommand(CliSession& session, const SearchOptions& o) {
  if (!session.EnsureLoaded()) return kExitFailed;
  AppContext& ctx = session.Ctx();
  const GameStore& store = ctx.store;
  const std::string& allText = ctx.messages.Lng(260);
  const SearchLists lists = FillSearchLists(store, ctx.messages);
  SearchForm form;
  form.Keyword = o.keyword;
  for (const TextOption& option : kTextOptions) {
    const auto& given = o.text[static_cast<size_t>(option.combo)];
    if (given) PutText(form, lists, option.combo, *given, allText);
  }
  PutChoice(form, lists, 9, o.available, "yes", "no");
  PutChoice(form, lists, 10, o.clones, "only", "without");
  PutChoice(form, lists, 11, o.mature, "only", "without");
  form.Text[20] = o.compare;
  form.Position[20] = ListPosition(lists.Items[20], o.compare);
  const SearchRun run = RunSearch(store, lists, form, allText);
  if (run.Results.empty()) {
    session.Error(ctx.messages.Lng(334));
    return kExitOk;
  }
  std::string out;
  out.reserve(run.Results.size() * 48);
  for (size_t i = 0; i < run.Results.size(); ++i) {
    if (i > 0) out += '\n';
    const int game = run.Results[i];
    out += o.names ? store.GameNames()[static_cast<size_t>(game)] : ResultLine(store, game);
  }
  session.Print(out);
  return kExitOk;
}

}  // namespace

void RegisterSearchCommands(CliRegistry& registry) {
  auto o = std::make_shared<SearchOptions>();
  CLI::App* search = registry.Add(
      "search",
      "Search the database as the search dialog does: each text acts as if put in that "
      "criterion's box (a text equal to an entry of its list selects it, All selects no test, "
      "any other text is a typed text); prints one result line per game, or message 334 on "
      "standard error when nothing is found",
      [o](CliSession& session) { return RunSearchCommand(session, *o); });
  search->add_option("--keyword", o->keyword,
                     "Part of the rom name or of the title, without regard to case");
  for (const TextOption& option : kTextOptions) {
    search->add_option_function<std::string>(
        option.flag,
        [o, combo = option.combo](const std::string& value) {
          o->text[static_cast<size_t>(combo)] = value;
        },
        option.help);
  }
  search->add_option("--available", o->available, "Roms in the rom folder: all, yes or no")
      ->check(CLI::IsMember({"all", "yes", "no"}));
  search->add_option("--clones", o->clones, "Clones: all, only or without")
      ->check(CLI::IsMember({"all", "only", "without"}));
  search->add_option("--mature", o->mature, "Mature games: all, only or without")
      ->check(CLI::IsMember({"all", "only", "without"}));
  search
      ->add_option("--compare", o->compare,
                   "How --version compares: = (that version), < (every earlier one) or > "
                   "(every later one)")
      ->check(CLI::IsMember({"=", "<", ">"}));
  search->add_flag("--names", o->names, "Print the rom names alone");
}

}  // namespace tessarin
