#include "shell/panelcursor.h"

namespace tessarin {

PanelCursor::Outcome PanelCursor::OnKey(Key key) {
  Outcome outcome;
  outcome.Previous = m_current;
  if (m_current < 0) {
    m_current = 0;
  } else if (key == Key::Up) {
    m_current = m_current == 0 ? kEntries - 1 : m_current - 1;
  } else if (key == Key::Down) {
    m_current = m_current == kEntries - 1 ? 0 : m_current + 1;
  } else if (key == Key::Enter) {
    outcome.Run = m_current;
  }
  outcome.Current = m_current;
  return outcome;
}

}  // namespace tessarin
