#pragma once

// The real data that some checks run on when this machine has it; they are skipped otherwise.
//   TESSARIN_REAL_HOME  an application folder with a database (DataFiles/index and listxml)
//   TESSARIN_REAL_DATA  the folder of the community data files (dat/history.dat, ini/...)

#include <cstdlib>
#include <string>

namespace tessarin::testsupport {

// The folder that `variable` names, with a final '/'; empty when it isn't set.
inline std::string RealFolder(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr || *value == '\0') return {};
  std::string folder(value);
  if (folder.back() != '/') folder += '/';
  return folder;
}

inline std::string RealHome() { return RealFolder("TESSARIN_REAL_HOME"); }
inline std::string RealData() { return RealFolder("TESSARIN_REAL_DATA"); }

}  // namespace tessarin::testsupport
