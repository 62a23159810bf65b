#include "cli/legacy.h"

int main(int argc, char** argv) {
  return Orvane::legacyMain(argc, argv);
}
