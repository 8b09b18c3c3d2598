#include "desktop/ProcessTree.hpp"

#include <fstream>
#include <string>

namespace orvel {

std::vector<pid_t> descendantsOf(pid_t process) {
  const std::string number = std::to_string(process);
  std::ifstream list("/proc/" + number + "/task/" + number + "/children");
  std::vector<pid_t> found;
  for (pid_t child = 0; list >> child;) {
    found.push_back(child);
    const auto below = descendantsOf(child);
    found.insert(found.end(), below.begin(), below.end());
  }
  return found;
}

}  // namespace orvel
