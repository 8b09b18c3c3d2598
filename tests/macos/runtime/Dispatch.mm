#include "runtime/Dispatch.hpp"

#import <Foundation/Foundation.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

@interface QueueAttributes : NSObject <OS_dispatch_queue_attr> {
 @public
  dispatch_qos_class_t quality_;
}
@end
@implementation QueueAttributes
@end

namespace {

/// Blocks that wait, and the thread that runs them, if there is one.
struct Lane {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<dispatch_block_t> waiting;
  bool ended = false;

  void add(dispatch_block_t block) {
    {
      const std::lock_guard guard(mutex);
      waiting.push_back(block);
    }
    changed.notify_all();
  }

  /// Takes the next one out, if there is one.
  bool take(bool waits, dispatch_block_t __strong& block) {
    std::unique_lock lock(mutex);
    if (waits) changed.wait(lock, [this] { return ended || !waiting.empty(); });
    if (waiting.empty()) return false;
    block = waiting.front();
    waiting.pop_front();
    return true;
  }

  int run(bool waits) {
    for (int count = 0;; ++count) {
      @autoreleasepool {
        dispatch_block_t block = nil;
        if (!take(waits, block)) return count;
        block();
      }
    }
  }
};

}  // namespace

@interface Queue : NSObject <OS_dispatch_queue> {
 @public
  std::shared_ptr<Lane> lane_;
  std::thread thread_;
  std::string label_;
  dispatch_qos_class_t quality_;
}
@end
@implementation Queue
- (void)dealloc {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard guard(lane_->mutex);
    lane_->ended = true;
  }
  lane_->changed.notify_all();
  // The last reference may be given back on its own thread, which then ends by itself.
  if (thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
  } else {
    thread_.join();
  }
}
@end

@interface Semaphore : NSObject <OS_dispatch_semaphore> {
 @public
  std::atomic<intptr_t> signals_;
}
@end
@implementation Semaphore
@end

namespace {

/// A block that waits for its time. That stands still until a test lets it pass.
struct Delayed {
  dispatch_time_t when;
  dispatch_queue_t queue;
  dispatch_block_t block;
};

/// What the system's clock says, in nanoseconds. Not zero, which stands for the present.
std::atomic<dispatch_time_t> now = NSEC_PER_SEC;

struct Delays {
  std::mutex mutex;
  std::vector<Delayed> waiting;
};

Delays& delays() {
  static auto* const delays = new Delays;
  return *delays;
}

/// What semaphores were waited for by the one thread that does at a time.
struct Waits {
  std::function<void()> meanwhile;
  std::vector<double> timeouts;
};

Waits& waits() {
  static Waits waits;
  return waits;
}

Queue* makeQueue(const char* label) {
  Queue* queue = [[Queue alloc] init];
  queue->lane_ = std::make_shared<Lane>();
  queue->label_ = label == nullptr ? "" : label;
  queue->quality_ = QOS_CLASS_DEFAULT;
  return queue;
}

Queue* mainQueue() {
  static Queue* queue = makeQueue("main");
  return queue;
}

/// One stands for all.
Queue* globalQueue() {
  static Queue* queue = makeQueue("global");
  return queue;
}

}  // namespace

extern "C" {

dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t, dispatch_qos_class_t quality,
                                                              int) {
  QueueAttributes* attributes = [[QueueAttributes alloc] init];
  attributes->quality_ = quality;
  return attributes;
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes) {
  Queue* queue = makeQueue(label);
  if (attributes != nil) queue->quality_ = static_cast<QueueAttributes*>(attributes)->quality_;
  queue->thread_ = std::thread([lane = queue->lane_] { lane->run(true); });
  return queue;
}

dispatch_queue_t dispatch_get_main_queue() {
  return mainQueue();
}

dispatch_queue_t dispatch_get_global_queue(intptr_t, uintptr_t) {
  return globalQueue();
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
  static_cast<Queue*>(queue)->lane_->add(block);
}

void dispatch_sync(dispatch_queue_t queue, __attribute__((noescape)) dispatch_block_t block) {
  std::mutex mutex;
  std::condition_variable changed;
  bool done = false;
  // The locals outlive the block, for this waits for it.
  std::mutex* guards = &mutex;
  std::condition_variable* completed = &changed;
  bool* isDone = &done;
  // A pointer, as the block below may go after this has returned.
  const dispatch_block_t __unsafe_unretained caller = block;
  const dispatch_block_t __unsafe_unretained* call = &caller;
  static_cast<Queue*>(queue)->lane_->add(^{
    (*call)();
    const std::lock_guard guard(*guards);
    *isDone = true;
    completed->notify_all();
  });
  std::unique_lock lock(mutex);
  changed.wait(lock, [&] { return done; });
}

dispatch_time_t dispatch_time(dispatch_time_t when, int64_t nanoseconds) {
  return (when == DISPATCH_TIME_NOW ? now.load() : when) + static_cast<dispatch_time_t>(nanoseconds);
}

void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) {
  const std::lock_guard guard(delays().mutex);
  delays().waiting.push_back({when, queue, block});
}

dispatch_semaphore_t dispatch_semaphore_create(intptr_t value) {
  Semaphore* semaphore = [[Semaphore alloc] init];
  semaphore->signals_ = value;
  return semaphore;
}

intptr_t dispatch_semaphore_signal(dispatch_semaphore_t semaphore) {
  return static_cast<Semaphore*>(semaphore)->signals_++ < 0 ? 1 : 0;
}

intptr_t dispatch_semaphore_wait(dispatch_semaphore_t waited, dispatch_time_t timeout) {
  Semaphore* semaphore = static_cast<Semaphore*>(waited);
  if (semaphore->signals_ == 0) {
    if (const auto event = std::exchange(waits().meanwhile, {})) event();
  }
  if (semaphore->signals_ > 0) {
    --semaphore->signals_;
    return 0;
  }
  waits().timeouts.push_back(static_cast<double>(timeout - now) / NSEC_PER_SEC);
  now = timeout;
  return 49;
}

}  // extern "C"

@implementation NSThread
/// The first one, as the tests run there.
+ (BOOL)isMainThread {
  return gettid() == getpid();
}
@end

namespace dispatch {

void spend(double seconds) {
  now += static_cast<dispatch_time_t>(seconds * NSEC_PER_SEC);
}

std::vector<double> letTimePass() {
  std::vector<Delayed> due;
  {
    const std::lock_guard guard(delays().mutex);
    due.swap(delays().waiting);
  }
  std::vector<double> seconds;
  for (const Delayed& each : due) {
    seconds.push_back(static_cast<double>(each.when - now) / NSEC_PER_SEC);
    dispatch_async(each.queue, each.block);
  }
  return seconds;
}

void meanwhile(std::function<void()> event) {
  waits().meanwhile = std::move(event);
}

std::vector<double> timeouts() {
  return std::exchange(waits().timeouts, {});
}

int turnMainQueue() {
  return mainQueue()->lane_->run(false);
}

int turnGlobalQueues() {
  return globalQueue()->lane_->run(false);
}

void finish(dispatch_queue_t queue) {
  dispatch_sync(queue, ^{
                });
}

std::string label(dispatch_queue_t queue) {
  return static_cast<Queue*>(queue)->label_;
}

dispatch_qos_class_t quality(dispatch_queue_t queue) {
  return static_cast<Queue*>(queue)->quality_;
}

}  // namespace dispatch
