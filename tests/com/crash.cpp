// Crashes on purpose: the runner of the tests must see it.

#include <cstdlib>

int main() {
  volatile int* nowhere = nullptr;
  *nowhere = 1;
  return EXIT_SUCCESS;
}
