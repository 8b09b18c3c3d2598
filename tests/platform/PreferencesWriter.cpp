#include "platform/linux/SystemPreferences.hpp"

#include <cstdlib>
#include <string>

/// preferences-writer KEY COUNT: sets KEY to 1, 2, ... COUNT and a key that all writers share to a text of theirs.
int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const std::string key = argv[1];
  const int count = std::atoi(argv[2]);
  orvel::SystemPreferences preferences;
  for (int round = 1; round <= count; ++round) {
    preferences.setString(key, std::to_string(round));
    preferences.setString("shared", std::string(200, key.back()));
  }
  return 0;
}
