#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <string>

/// The message ports of a login, of which there is one name, and the main run loop.
namespace fake {

struct MessagePorts {
  std::string takenName;            ///< The name that another program's port has; empty when none has one.
  bool takenBetweenChecks = false;  ///< That port comes into being between two checks.
  bool givesNone = false;           ///< No port can be made at all.
  bool givesNoSource = false;
  SInt32 answer = kCFMessagePortSuccess;
  bool answersWithData = true;

  std::string sentTo;
  std::string waitedIn;  ///< The mode of the run loop.
  double sendTimeout = 0;
  double receiveTimeout = 0;
  int complaints = 0;  ///< What the system has written to the terminal.
};

/// Tests set it anew.
MessagePorts& messagePorts();

/// The name of our port, while it has one and the main run loop serves it in its common modes.
std::string servedPort();

/// Sends our port a message, as another program does while the main run loop turns; whether it gets an answer.
bool messageOurPort();

}  // namespace fake
