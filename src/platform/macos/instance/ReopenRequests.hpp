#pragma once

#include <functional>
#include <memory>

namespace orvel {

/// The Apple event by which Finder and `open` have an application that runs show itself. Threads: the main thread.
class ReopenRequests {
 public:
  /// Calls `reopened` for each, once the application has been launched.
  explicit ReopenRequests(std::function<void()> reopened);
  ~ReopenRequests();
  ReopenRequests(const ReopenRequests&) = delete;
  ReopenRequests& operator=(const ReopenRequests&) = delete;

 private:
  struct Listening;

  const std::unique_ptr<Listening> listening_;
};

}  // namespace orvel
