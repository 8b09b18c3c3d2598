#pragma once

#include "input/Displays.hpp"
#include "input/EventPoster.hpp"
#include "input/TrustCheck.hpp"

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvel {

using PostedEvent = std::variant<MouseEvent, ScrollEvent, KeyEvent, SystemDefinedEvent, TextEvent>;

/// A desktop that remembers what was posted into it and moves its pointer accordingly.
class RecordingDesktop final : public EventPoster, public Displays, public TrustCheck {
 public:
  RecordingDesktop() { setScreens({{{0, 0}, {1000, 800}}}); }

  bool post(const MouseEvent& event) override {
    if (!record(event)) return false;
    if (pointer && event.position) {
      pointer = event.position;
    } else if (pointer) {
      pointer->x += static_cast<double>(event.deltaX);
      pointer->y += static_cast<double>(event.deltaY);
    }
    return true;
  }
  bool post(const ScrollEvent& event) override { return record(event); }
  bool post(const KeyEvent& event) override { return record(event); }
  bool post(const SystemDefinedEvent& event) override { return record(event); }
  bool post(const TextEvent& event) override { return record(event); }

  bool tracksPointer() const override { return tracks; }

  std::optional<Point> pointerLocation() override {
    ++pointerQueries;
    return pointer;
  }

  void flush() override {
    ++flushes;
    flushed = posted.size();
  }

  std::shared_ptr<const DisplayLayout> layout() const override { return layout_; }

  /// The first one is the main display.
  void setScreens(std::vector<Rect> screens) {
    DisplayLayout layout;
    if (!screens.empty()) layout.main = screens.front();
    layout.screens = std::move(screens);
    layout_ = std::make_shared<const DisplayLayout>(std::move(layout));
  }

  bool isTrusted() override { return trusted; }
  PermissionNotice notice() const override {
    return {.heading = "No input", .explanation = "Tick Orvel in the settings.", .action = "Open the settings"};
  }
  void prompt() override { ++prompts; }
  void openSettings() override { ++settingsOpened; }

  template <class Event>
  std::vector<Event> all() const {
    std::vector<Event> events;
    for (const PostedEvent& event : posted) {
      if (const auto* match = std::get_if<Event>(&event)) events.push_back(*match);
    }
    return events;
  }

  std::vector<PostedEvent> posted;
  std::size_t flushed = 0;  ///< How many of them have been flushed.
  int flushes = 0;
  int pointerQueries = 0;
  bool tracks = true;                              ///< Whether it reports the pointer's position at any time.
  std::optional<Point> pointer = Point{100, 100};  ///< Nothing where it cannot be found out.
  bool accepts = true;                             ///< Whether events can be created.
  bool trusted = true;
  int prompts = 0;
  int settingsOpened = 0;

 private:
  bool record(const PostedEvent& event) {
    if (accepts) posted.push_back(event);
    return accepts;
  }

  std::shared_ptr<const DisplayLayout> layout_;
};

}  // namespace orvel
