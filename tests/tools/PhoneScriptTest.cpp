#include "tools/PhoneScript.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

namespace orvel::phone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::variant<std::vector<Step>, std::string> parse(const std::string& line) {
  std::istringstream in(line);
  const std::vector<std::string> words{std::istream_iterator<std::string>(in), {}};
  return parseScript(words);
}

std::vector<Step> stepsOf(const std::string& line) {
  auto parsed = parse(line);
  if (const auto* mistake = std::get_if<std::string>(&parsed)) ADD_FAILURE() << *mistake;
  auto* steps = std::get_if<std::vector<Step>>(&parsed);
  return steps ? std::move(*steps) : std::vector<Step>();
}

std::string mistakeIn(const std::string& line) {
  const auto parsed = parse(line);
  const auto* mistake = std::get_if<std::string>(&parsed);
  return mistake ? *mistake : "";
}

/// The only step of the line.
template <class Kind>
Kind only(const std::string& line) {
  const auto steps = stepsOf(line);
  if (steps.size() == 1 && std::holds_alternative<Kind>(steps[0])) return std::get<Kind>(steps[0]);
  ADD_FAILURE() << line;
  return {};
}

TEST(PhoneScript, KeepsTheOrderOfItsCommands) {
  const auto steps = stepsOf("pair move 100 50 click left drag 300 200 scroll 0 -120 key cmd+c wait 0.5 ping reveal");
  ASSERT_THAT(steps, SizeIs(9));
  EXPECT_TRUE(std::holds_alternative<step::Pair>(steps[0]));
  EXPECT_TRUE(std::holds_alternative<step::Move>(steps[1]));
  EXPECT_TRUE(std::holds_alternative<step::Click>(steps[2]));
  EXPECT_TRUE(std::holds_alternative<step::Drag>(steps[3]));
  EXPECT_TRUE(std::holds_alternative<step::Scroll>(steps[4]));
  EXPECT_TRUE(std::holds_alternative<step::Key>(steps[5]));
  EXPECT_TRUE(std::holds_alternative<step::Wait>(steps[6]));
  EXPECT_TRUE(std::holds_alternative<step::Ping>(steps[7]));
  EXPECT_TRUE(std::holds_alternative<step::Reveal>(steps[8]));
}

TEST(PhoneScript, ReadsDistancesFromLeftToRight) {
  const auto move = only<step::Move>("move -32768 32767");
  EXPECT_EQ(move.dx, -32768);
  EXPECT_EQ(move.dy, 32767);
  const auto scroll = only<step::Scroll>("scroll 3 -120");
  EXPECT_EQ(scroll.dx, 3);
  EXPECT_EQ(scroll.dy, -120);
  const auto drag = only<step::Drag>("drag 300 -200");
  EXPECT_EQ(drag.dx, 300);
  EXPECT_EQ(drag.dy, -200);
}

TEST(PhoneScript, ReadsFractions) {
  const auto place = only<step::MoveTo>("to 0.25 1");
  EXPECT_EQ(place.nx, 0.25);
  EXPECT_EQ(place.ny, 1);
}

TEST(PhoneScript, ReadsButtons) {
  const auto press = only<step::Button>("press right");
  EXPECT_EQ(press.button, MouseButton::right);
  EXPECT_TRUE(press.down);
  const auto release = only<step::Button>("release middle");
  EXPECT_EQ(release.button, MouseButton::middle);
  EXPECT_FALSE(release.down);
}

TEST(PhoneScript, ClicksOnceUnlessToldHowOften) {
  EXPECT_EQ(only<step::Click>("click left").count, 1);
  EXPECT_EQ(only<step::Click>("click left 2").count, 2);
  const auto steps = stepsOf("click right click left 3 move 1 2");
  ASSERT_THAT(steps, SizeIs(3));
  EXPECT_EQ(std::get<step::Click>(steps[0]).count, 1);
  EXPECT_EQ(std::get<step::Click>(steps[1]).count, 3);
}

TEST(PhoneScript, ReadsKeys) {
  const auto stroke = only<step::Key>("key cmd+c");
  EXPECT_EQ(stroke.chord, (KeyChord{8, Modifier::command}));
  EXPECT_TRUE(stroke.down && stroke.up);
  const auto press = only<step::Key>("keydown a");
  EXPECT_TRUE(press.down && !press.up);
  const auto release = only<step::Key>("keyup a");
  EXPECT_TRUE(!release.down && release.up);
}

TEST(PhoneScript, TextGoesOnToTheEndOrToTwoDashes) {
  EXPECT_EQ(only<step::Text>("text Hello").text, "Hello");
  EXPECT_EQ(only<step::Text>("text Dear Anna, key return").text, "Dear Anna, key return");
  const auto steps = stepsOf("text Dear Anna, -- key return text a - b -- ping");
  ASSERT_THAT(steps, SizeIs(4));
  EXPECT_EQ(std::get<step::Text>(steps[0]).text, "Dear Anna,");
  EXPECT_TRUE(std::holds_alternative<step::Key>(steps[1]));
  EXPECT_EQ(std::get<step::Text>(steps[2]).text, "a - b");
  EXPECT_FALSE(std::get<step::Text>(steps[2]).fromInput);
  EXPECT_TRUE(std::holds_alternative<step::Ping>(steps[3]));
}

TEST(PhoneScript, TextKeepsTheSpacesWithinAWord) {
  const std::vector<std::string> words = {"text", "", " two  spaces ", "-- "};
  const auto parsed = parseScript(words);
  const auto* steps = std::get_if<std::vector<Step>>(&parsed);
  ASSERT_TRUE(steps);
  EXPECT_EQ(std::get<step::Text>(steps->at(0)).text, "  two  spaces  -- ");
}

TEST(PhoneScript, ADashInPlaceOfWordsIsTextFromTheInput) {
  const auto text = only<step::Text>("text -");
  EXPECT_TRUE(text.fromInput);
  EXPECT_EQ(text.text, "");
  EXPECT_THAT(stepsOf("text - key return"), SizeIs(2));
  EXPECT_THAT(stepsOf("text - -- key return"), SizeIs(2));
  EXPECT_THAT(mistakeIn("text - item"), HasSubstr("\"item\""));
  EXPECT_FALSE(only<step::Text>("text -n").fromInput);
}

TEST(PhoneScript, ReadsMediaKeys) {
  EXPECT_EQ(only<step::Media>("media play-pause").key, 16);
  EXPECT_EQ(only<step::Media>("media 5").key, 5);
}

TEST(PhoneScript, ReadsApplications) {
  EXPECT_FALSE(only<step::Apps>("apps").asJSON);
  EXPECT_TRUE(only<step::Apps>("apps --json").asJSON);
  const auto activate = only<step::App>("activate org.example.Editor");
  EXPECT_EQ(activate.action, AppAction::activate);
  EXPECT_EQ(activate.id, "org.example.Editor");
  EXPECT_EQ(only<step::App>("quit xterm").action, AppAction::quit);
}

TEST(PhoneScript, ReadsWhichIconsGoWhere) {
  EXPECT_THAT(only<step::Icons>("icons folder").ids, IsEmpty());
  const auto steps = stepsOf("icons folder a b -- icons other -- ping");
  ASSERT_THAT(steps, SizeIs(3));
  EXPECT_EQ(std::get<step::Icons>(steps[0]).folder, "folder");
  EXPECT_THAT(std::get<step::Icons>(steps[0]).ids, ElementsAre("a", "b"));
  EXPECT_THAT(std::get<step::Icons>(steps[1]).ids, IsEmpty());
}

TEST(PhoneScript, ReadsHowToMirror) {
  const auto plain = only<step::Mirror>("mirror");
  EXPECT_EQ(plain.seconds, std::nullopt);
  EXPECT_EQ(plain.wish.width, std::nullopt);
  EXPECT_EQ(plain.wish.fps, std::nullopt);
  EXPECT_EQ(plain.wish.quality, std::nullopt);
  EXPECT_EQ(plain.folder, std::nullopt);
  EXPECT_FALSE(plain.inWindow);
  const auto full = only<step::Mirror>("mirror 1.5 --save f --fps 30 --window --quality 0.2 --width 1280");
  EXPECT_EQ(full.seconds, 1.5);
  EXPECT_EQ(full.wish.width, 1280);
  EXPECT_EQ(full.wish.fps, 30);
  EXPECT_EQ(full.wish.quality, 0.2);
  EXPECT_EQ(full.folder, "f");
  EXPECT_TRUE(full.inWindow);
  const auto steps = stepsOf("mirror mirror --window ping");
  ASSERT_THAT(steps, SizeIs(3));
  EXPECT_FALSE(std::get<step::Mirror>(steps[0]).inWindow);
  EXPECT_TRUE(std::get<step::Mirror>(steps[1]).inWindow);
}

TEST(PhoneScript, SaysWhatIsWrongWithAMirror) {
  for (const char* line :
       {"mirror 10x", "mirror 86401", "mirror --width 10x", "mirror --width 0", "mirror --fps 0", "mirror --fps 1.5",
        "mirror --quality 1.1", "mirror --quality nan", "mirror --save", "mirror --width", "mirror --save --window"}) {
    EXPECT_THAT(mistakeIn(line), HasSubstr("\"mirror\" needs")) << line;
  }
  EXPECT_EQ(mistakeIn("mirror 10 --widht 900"), "\"mirror\" has no option \"--widht\"");
  EXPECT_THAT(mistakeIn("mirror --save f ten"), HasSubstr("\"ten\""));
}

TEST(PhoneScript, TakesOnlyUTF8) {
  EXPECT_THAT(mistakeIn("ping text caf\xe9 -- ping"), HasSubstr("UTF-8"));
  for (const char* line : {"activate caf\xe9", "quit caf\xe9", "icons folder a caf\xe9 b"}) {
    EXPECT_THAT(mistakeIn(line), HasSubstr("UTF-8")) << line;
  }
  EXPECT_THAT(mistakeIn("quit " + std::string(longestFrameText + 1, 'a')), HasSubstr("65535"));
  EXPECT_EQ(only<step::App>("quit " + std::string(longestFrameText, 'a')).id.size(), longestFrameText);
}

TEST(PhoneScript, NamesTheWordThatIsWrong) {
  for (const char* line : {"mvoe 1 2", "move mvoe 2", "move 1 mvoe", "to mvoe 0", "press mvoe", "click mvoe",
                           "key mvoe", "wait mvoe", "ping mvoe", "media mvoe", "apps mvoe", "snap mvoe"}) {
    EXPECT_THAT(mistakeIn(line), HasSubstr("\"mvoe\"")) << line;
  }
  EXPECT_THAT(mistakeIn("Move 1 2"), HasSubstr("\"Move\""));
  EXPECT_THAT(mistakeIn("click left 300"), HasSubstr("\"300\""));
  EXPECT_THAT(mistakeIn("click left 0"), HasSubstr("\"0\""));
}

TEST(PhoneScript, NamesTheCommandThatLacksAWord) {
  EXPECT_THAT(mistakeIn("ping move 1"), HasSubstr("\"move\" needs"));
  EXPECT_THAT(mistakeIn("key"), HasSubstr("\"key\" needs"));
  EXPECT_THAT(mistakeIn("press"), HasSubstr("\"press\" needs"));
  EXPECT_THAT(mistakeIn("text -- key return"), HasSubstr("\"text\" needs"));
  for (const char* command : {"text", "media", "icons", "activate", "quit"}) {
    EXPECT_THAT(mistakeIn(command), HasSubstr("\"" + std::string(command) + "\" needs"));
  }
}

TEST(PhoneScript, RefusesNumbersOutOfRange) {
  for (const char* line : {"move 32768 0", "move 0 -32769", "move 1.5 0", "move 1x 0", "to 1.1 0", "to -0.1 0",
                           "to nan 0", "wait -1", "wait inf", "wait nan", "wait 86401"}) {
    EXPECT_NE(mistakeIn(line), "") << line;
  }
}

TEST(PhoneScript, OnlyPingAndWaitNeedNoPairing) {
  for (const auto& step : stepsOf("ping wait 1")) EXPECT_FALSE(needsPairing(step));
  for (const auto& step :
       stepsOf("pair move 1 1 to 0 0 press left click left drag 1 1 scroll 1 1 keyup a reveal media mute apps "
               "icons f -- activate a quit a mirror snap text a")) {
    EXPECT_TRUE(needsPairing(step));
  }
}

TEST(PhoneScript, ADragGoesInSmallPartsThatAddUp) {
  for (const auto& drag : {step::Drag{300, 200}, step::Drag{-7, 3}, step::Drag{0, 0}, step::Drag{-32768, 32767}}) {
    int dx = 0;
    int dy = 0;
    for (const auto& part : partsOf(drag)) {
      EXPECT_LE(std::abs(part.dx), 10);
      EXPECT_LE(std::abs(part.dy), 10);
      dx += part.dx;
      dy += part.dy;
    }
    EXPECT_EQ(dx, drag.dx);
    EXPECT_EQ(dy, drag.dy);
  }
  EXPECT_THAT(partsOf(step::Drag{300, 200}), SizeIs(30));
}

}  // namespace
}  // namespace orvel::phone
