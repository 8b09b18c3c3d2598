// Types a text and stays, until it is killed: a host that has no time to tidy up.

#include "base/UTF8.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Displays.hpp"
#include "platform/linux/x11/X11EventPoster.hpp"

#include <unistd.h>

#include <cstdio>

int main(int count, char** arguments) {
  if (count != 3) return 2;
  const auto connection = orvel::X11Connection::open(arguments[1]);
  if (!connection) return 1;
  const orvel::X11Displays displays(*connection);
  orvel::X11EventPoster events(*connection, displays);
  if (!events.post(orvel::TextEvent{.text = orvel::utf16(arguments[2])})) return 1;
  std::puts("typed");
  std::fflush(stdout);
  pause();
}
