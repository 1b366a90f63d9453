#pragma once

namespace tessarin {

// The keyboard rules of the main panel: no entry is current at first; the first key of any kind
// only makes entry 0 current; up and down move with wrap-around; Enter runs the current entry.
class PanelCursor final {
 public:
  static constexpr int kEntries = 9;
  enum class Key { Up, Down, Enter, Other };

  struct Outcome {
    // The entry that was current before the key (-1 for none) and the one after.
    int Previous = -1;
    int Current = -1;
    // The entry to run, -1 for none.
    int Run = -1;
  };

  Outcome OnKey(Key key);
  int Current() const { return m_current; }

 private:
  int m_current = -1;
};

}  // namespace tessarin
