// The pelicor command. Its subcommands arrive with the parser and the writers.
#include <cstdio>

int main() {
  std::puts("pelicor 0.1.0");
  return 0;
}
