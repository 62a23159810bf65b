// Starts and ends: the floor under the time of any program of its kind.
#include <string>

int main(int argc, char** argv) {
  return std::string(argv[argc - 1]).empty() ? 1 : 0;
}
