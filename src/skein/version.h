#pragma once

#include "output/inventory_format.h"

namespace Orvane {

#ifdef SKEIN_VERSION
inline constexpr const char* kSkeinVersion = SKEIN_VERSION;
#else
inline constexpr const char* kSkeinVersion = "unversioned";
#endif

inline constexpr unsigned kInventoryFormatVersion = kFileHeaderVersion;

}  // namespace Orvane
