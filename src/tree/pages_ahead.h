#pragma once

#include <cstddef>

namespace Orvane {

// Has the pages of memory that will be touched soon made in the background, where there is a
// processor to spare: to wait for each of them takes up to half of the time. Does no harm to memory
// that is freed, or given to somebody else, before it is done. For several threads.
void makePagesAhead(void* memory, std::size_t size);

}  // namespace Orvane
