#pragma once

// The pieces of the search's actions that other parts of the program provide: the HTML page of a
// game and its built-in template. The frame fills them at start; until then the actions that
// need them say so and do nothing.

#include <functional>
#include <string>

namespace tessarin {

class AppContext;

struct GamePageHooks {
  // Fills a page template for a rom, with on-line images or not, never in site mode.
  std::function<std::string(AppContext& ctx, const std::string& pageTemplate,
                            const std::string& romName, bool onlineImages)>
      FillGamePage;
  // The built-in "search.htm" template, written where a skin has none.
  std::function<std::string()> DefaultTemplate;
};

// The hooks of this run (one set for the program: they hold code, not state).
GamePageHooks& SearchGamePageHooks();

}  // namespace tessarin
