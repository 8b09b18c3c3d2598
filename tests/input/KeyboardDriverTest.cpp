#include "fakes/FakeClock.hpp"
#include "fakes/RecordingDesktop.hpp"
#include "input/KeyboardDriver.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvel {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

struct KeyboardDriverTest : testing::Test {
  RecordingDesktop desktop;
  FakeClock clock;
  KeyboardDriver keyboard{desktop, clock};
};

TEST_F(KeyboardDriverTest, NoTextIsNothing) {
  keyboard.type("");
  EXPECT_THAT(desktop.posted, IsEmpty());
  EXPECT_THAT(clock.sleeps, IsEmpty());
}

TEST_F(KeyboardDriverTest, EveryPieceIsAStrokeThatCarriesIt) {
  keyboard.type("h\u00e9\U0001F44D");
  const std::u16string text = u"h\u00e9\U0001F44D";
  EXPECT_THAT(desktop.all<TextEvent>(), ElementsAre(TextEvent{text}));
}

TEST_F(KeyboardDriverTest, FortyCharactersAreThreePiecesWithAPauseAfterEach) {
  keyboard.type(std::string(16, 'a') + std::string(16, 'b') + std::string(8, 'c'));
  const std::u16string a(16, u'a');
  const std::u16string b(16, u'b');
  const std::u16string c(8, u'c');
  EXPECT_THAT(desktop.all<TextEvent>(), ElementsAre(TextEvent{a}, TextEvent{b}, TextEvent{c}));
  EXPECT_EQ(clock.sleeps, std::vector<Seconds>(3, Seconds(0.002)));
}

TEST_F(KeyboardDriverTest, NoCharacterIsSplitBetweenPieces) {
  std::string flags;
  for (int flag = 0; flag < 17; ++flag) flags += "\U0001F1E9\U0001F1EA";
  keyboard.type(flags);
  const auto events = desktop.all<TextEvent>();
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(events[0].text.size(), 16u * 4);
  EXPECT_EQ(events[1].text, u"\U0001F1E9\U0001F1EA");
}

TEST_F(KeyboardDriverTest, PiecesThatTheDesktopRefusesAreSkipped) {
  desktop.accepts = false;
  keyboard.type(std::string(40, 'a'));
  EXPECT_THAT(desktop.posted, IsEmpty());
  EXPECT_EQ(clock.sleeps.size(), 3u);
}

/// A desktop on which something happens with every piece of text.
class EventfulDesktop final : public EventPoster {
 public:
  bool post(const MouseEvent&) override { return false; }
  bool post(const ScrollEvent&) override { return false; }
  bool post(const KeyEvent&) override { return false; }
  bool post(const SystemDefinedEvent&) override { return false; }
  bool post(const TextEvent& event) override {
    events.push_back(event);
    if (whenTyped) whenTyped();
    return true;
  }
  bool tracksPointer() const override { return false; }
  std::optional<Point> pointerLocation() override { return std::nullopt; }
  void flush() override {}

  std::vector<TextEvent> events;
  std::function<void()> whenTyped;
};

TEST_F(KeyboardDriverTest, StoppingEndsATextAfterItsPiece) {
  EventfulDesktop eventful;
  KeyboardDriver stoppable(eventful, clock);
  eventful.whenTyped = [&] { stoppable.stop(); };
  stoppable.type(std::string(40, 'a'));
  const std::u16string piece(16, u'a');
  EXPECT_THAT(eventful.events, ElementsAre(TextEvent{piece}));
  stoppable.type("more");
  EXPECT_EQ(eventful.events.size(), 1u);
}

}  // namespace
}  // namespace orvel
