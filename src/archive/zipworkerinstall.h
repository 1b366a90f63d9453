#pragma once

#include <string>
#include <vector>

namespace tessarin {

// The zip worker's file name in the application folder: "MyZip", with ".exe" on Windows.
std::string ZipWorkerFileName();
// The worker's path in `appFolder`, its name matched without regard to case; empty when it
// isn't there.
std::string FindZipWorker(const std::string& appFolder);
// Where a worker to copy may be found, in order: beside the running program (an installed or
// built program has MyZip next to it), then the worker of the build tree this library was built
// in.
std::vector<std::string> DefaultZipWorkerSources();
// Puts the worker into `appFolder` when no file of its name (case ignored) is there, copying the
// first source of `sources` (DefaultZipWorkerSources() when empty) that exists, and making it
// executable. A worker that is there already is left alone. Gives true when the worker is in the
// application folder afterwards.
bool ExtractZipWorker(const std::string& appFolder, const std::vector<std::string>& sources = {});

// The argument that makes the worker zip `<source><name>` into `<destination><name>.zip`:
// "<destination><name>.zip,<source><name>/*.*\"" (the last quote is cut by the worker). Both
// folders end in a separator.
std::string ZipWorkerJob(const std::string& destination, const std::string& source,
                         const std::string& name);

}  // namespace tessarin
