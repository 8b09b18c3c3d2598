#include "platform/linux/SystemLoginItemService.hpp"

#include <iostream>
#include <string>

/// Says that it is ready, waits for the end of its input, and prints the path by which it can be started again.
int main() {
  std::cout << "ready" << std::endl;
  for (std::string line; std::getline(std::cin, line);) {
  }
  std::cout << "own program: " << orvel::ownProgram() << std::endl;
  return 0;
}
