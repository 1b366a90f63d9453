#pragma once

#include <utility>

#include "core/log.h"

namespace tessarin {

// The failure boundary of a routine: sets the routine's tracking number, runs the body, and
// turns any exception into an error group in the log. The body keeps its partial result in
// variables of the caller, so the routine returns "what it has" after a failure.
// Gives true when the body ran to its end.
//
//   std::string result;
//   RunGuarded(log, 1204, [&] { result = ...; });
//   return result;
template <class Body>
bool RunGuarded(Log& log, int trackPoint, Body&& body) {
  log.SetTrackPoint(trackPoint);
  try {
    std::forward<Body>(body)();
    return true;
  } catch (...) {
    log.LogError({});
    return false;
  }
}

}  // namespace tessarin
