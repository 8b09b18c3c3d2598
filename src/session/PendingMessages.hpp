#pragma once

#include "session/Transport.hpp"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <utility>

namespace orvel {

/// Messages of a phone that were read but must wait, in the order of arrival, and how much memory they take.
///
/// Threads: one at a time.
class PendingMessages {
 public:
  struct Item {
    MessageType type = MessageType::text;
    std::string payload;

    /// The bytes that it takes, about.
    std::size_t cost() const { return sizeof(Item) + payload.size(); }

    Message message() const {
      return {.type = type, .payload = {reinterpret_cast<const std::uint8_t*>(payload.data()), payload.size()}};
    }
  };

  bool empty() const { return items_.empty(); }

  /// The bytes that all of them take, about.
  std::size_t cost() const { return cost_; }

  void push(const Message& message) {
    items_.push_back({message.type, std::string(message.payload.begin(), message.payload.end())});
    cost_ += items_.back().cost();
  }

  /// Takes out the oldest; there must be one.
  Item pop() {
    Item oldest = std::move(items_.front());
    items_.pop_front();
    cost_ -= oldest.cost();
    return oldest;
  }

  void clear() {
    items_.clear();
    cost_ = 0;
  }

 private:
  std::deque<Item> items_;
  std::size_t cost_ = 0;
};

}  // namespace orvel
