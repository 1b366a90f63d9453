#pragma once

#include <string>

#include "archive/unzip.h"

namespace tessarin {

// Unpacks all of `zipPath` into `destFolder` so that nothing of the destination is replaced
// unless the whole archive unpacks cleanly: the entries go to a hidden folder beside them first,
// and only then move into place, file by file. A damaged archive (bad CRC, cut file, refused
// name) or a cancel leaves the destination exactly as it was; the reason is in
// *environment.unzipError as UnzipAll gives it (cleared first). Gives true when everything was
// moved in.
bool UnzipAllStaged(const UnzipEnvironment& environment, const std::string& zipPath,
                    const std::string& destFolder);

}  // namespace tessarin
