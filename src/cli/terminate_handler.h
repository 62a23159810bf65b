#pragma once

namespace Orvane {

// From now on an exception that nothing catches is told on standard error before the process
// aborts: "skeinmake: ", its message, ": " and `outputFile`. The program's own errors are no
// standard exceptions, so the default handler would name their type and not their message.
// `outputFile` is not copied and must stay in place to the end of the process.
void reportUncaughtErrors(const char* outputFile);

}  // namespace Orvane
