#pragma once

namespace Orvane {

// From now on an exception that nothing catches is told on standard error before the process
// aborts: "skeinmake: ", its message, ": " and `outputFile`. The program's own errors are no
// standard exceptions, so the default handler would name their type and not their message.
// It is told also when there is no memory left.
void reportUncaughtErrors(const char* outputFile);

}  // namespace Orvane
