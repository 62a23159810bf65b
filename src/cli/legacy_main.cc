#include "cli/legacy.h"
#include "tree/huge_pages.h"

int main(int argc, char** argv) {
  Orvane::keepFreedMemory();
  return Orvane::legacyMain(argc, argv);
}
