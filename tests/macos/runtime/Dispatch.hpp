#pragma once

#import <dispatch/dispatch.h>

#include <functional>
#include <string>
#include <vector>

/// The queues of the system: each has a thread of its own, but for the main queue and the global ones, which a test
/// turns.
namespace dispatch {

/// Runs what waits in the main queue, on this thread, and returns how many blocks that were.
int turnMainQueue();

/// The same for what waits in the global queues.
int turnGlobalQueues();

/// Waits until the queue has run what it was given before.
void finish(dispatch_queue_t queue);

/// Lets so much time pass that nobody notices, as when a thread is busy.
void spend(double seconds);

/// Has all that waits for its time fall due, as soon as it may, and returns how long it would have waited, in seconds.
std::vector<double> letTimePass();

/// What happens while somebody waits for a semaphore, once. It is called in place of the waiting, which ends when it
/// returns: with the signal that it gave, or else with the time that was to be waited.
void meanwhile(std::function<void()> event);

/// How long semaphores were waited for in vain since the last question, in seconds.
std::vector<double> timeouts();

/// What the queue was made with.
std::string label(dispatch_queue_t queue);
dispatch_qos_class_t quality(dispatch_queue_t queue);

}  // namespace dispatch
