#include "desktop/TypingFixture.hpp"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <future>
#include <iostream>
#include <map>
#include <string>
#include <utility>

namespace orvel {
namespace {

std::string printableASCII() {
  std::string text;
  for (char character = ' '; character <= '~'; ++character) text += character;
  return text;
}

const std::map<std::string, std::string>& samples() {
  static const std::map<std::string, std::string> texts = {
      {"ascii", printableASCII() + "!0aA\tzZ"},
      {"accents", "Fuß, Çà et là: œuvre, señor, Ærøskøbing, Łódź, ¿qué?, \u00a0½ €, e\u0301o\u0308u\u0302\u0323"},
      {"greek", "Ξεσκεπάζω την ψυχοφθόρα βδελυγμία. ΆΈΉΊΌΎΏϊϋΐΰς"},
      {"cyrillic", "Съешь же ещё этих мягких французских булок, да выпей чаю. Їжак ґедзь"},
      {"cjk", "我能吞下玻璃而不傷身體。私はガラスを食べられます。나는 유리를 먹을 수 있어요."},
      {"emoji",
       "👍🏽 👨‍👩‍👧‍👦 🇩🇪🇫🇷 ❤️‍🔥 🏴󠁧󠁢󠁳󠁣󠁴󠁿 a😀b"},
  };
  return texts;
}

struct ProgramTypingTest : TypingFixture, testing::WithParamInterface<const char*> {
  ProgramTypingTest() { startProgram(GetParam()); }
};

TEST_P(ProgramTypingTest, TextOfAnyScriptArrivesWhole) {
  for (const auto& [script, text] : samples()) {
    SCOPED_TRACE(script);
    // An entry has one line, and Tab leaves it.
    std::string typed = text;
    if (std::string(GetParam()) != "xterm") std::erase(typed, '\t');
    expectTyped(typed);
  }
}

TEST_P(ProgramTypingTest, TextArrivesWholeWhileLayoutsAreChosen) {
  std::atomic<bool> ended = false;
  std::thread person([&] {
    const std::vector<std::string> layouts = {"de", "fr", "us"};
    for (std::size_t i = 0; !ended; ++i) {
      setLayout({layouts[i % layouts.size()]});
      std::this_thread::sleep_for(Milliseconds(300));
    }
  });
  for (int i = 0; i < 12; ++i)
    expectTyped("The quick brown fox (" + std::to_string(i) + ") jumps over [lazy] dogs @ zoo; ");
  expectTyped("Öl, ça, Ω");
  ended = true;
  person.join();
}

TEST_P(ProgramTypingTest, CapsLockAndLayoutsChangeNothing) {
  const std::string text = "aZ äÖ éÀ ñ Ω @{~}\\ 1!";
  for (const std::vector<std::string>& layout :
       {std::vector<std::string>{"de"}, {"fr"}, {"us,ru"}, {"us", "-variant", "intl"}}) {
    SCOPED_TRACE(layout.front());
    setLayout(layout);
    expectTyped(text);
  }
  pressCapsLock();
  EXPECT_TRUE(isCapsLocked());
  for (const char* layout : {"us", "de", "fr"}) {
    SCOPED_TRACE(layout);
    setLayout({layout});
    expectTyped(text + printableASCII() + "ñÑ ằ Ằ ω я ſ");
  }
  EXPECT_TRUE(isCapsLocked());
}

INSTANTIATE_TEST_SUITE_P(Programs, ProgramTypingTest, testing::Values("xterm", "gtk3", "gtk4", "qt6"),
                         [](const auto& test) { return std::string(test.param); });

/// Programs that report when they have read their keys.
struct AnsweringProgramTypingTest : ProgramTypingTest {
  void resumeProgramLater() {
    resumption_ = std::async(std::launch::async, [this] {
      std::this_thread::sleep_for(Milliseconds(400));
      program->signal(SIGCONT);
    });
  }

 private:
  std::future<void> resumption_;
};

TEST_P(AnsweringProgramTypingTest, OneThatHangsForAMomentMissesNothing) {
  program->signal(SIGSTOP);
  resumeProgramLater();
  expectTyped("abc " + samples().at("cjk"));
}

TEST_P(AnsweringProgramTypingTest, OneThatHangsDoesNotTakeAnOldTextByANewLayout) {
  expectTyped("a");
  program->signal(SIGSTOP);
  setLayout({"de"});
  auto person = std::async(std::launch::async, [this] {
    std::this_thread::sleep_for(Milliseconds(200));
    setLayout({"us"});
  });
  resumeProgramLater();
  expectTyped("yz[]");
}

TEST_P(AnsweringProgramTypingTest, OneThatHangsDoesNotHoldUpTheEnd) {
  expectTyped("Ω");
  program->signal(SIGSTOP);
  auto typing = std::async(std::launch::async, [this] { driver.type(samples().at("cjk")); });
  EXPECT_EQ(typing.wait_for(Milliseconds(300)), std::future_status::timeout) << "else it does not wait";
  driver.stop();
  leaves.events.stopTyping();
  EXPECT_EQ(typing.wait_for(Milliseconds(1500)), std::future_status::ready);
  program->signal(SIGCONT);
}

TEST_P(AnsweringProgramTypingTest, OneThatHangsForLongGetsNoWrongCharacters) {
  const std::string text = samples().at("cjk");
  program->signal(SIGSTOP);
  driver.type(text + samples().at("greek"));
  program->signal(SIGCONT);
  std::string got;
  EXPECT_TRUE(eventually([&] { return (got = program->content()).size() > 3; }));
  EXPECT_TRUE(eventually([&] { return got == std::exchange(got, program->content()); }));
  EXPECT_TRUE(text.starts_with(got)) << got;
}

INSTANTIATE_TEST_SUITE_P(Toolkits, AnsweringProgramTypingTest, testing::Values("gtk3", "gtk4", "qt6"),
                         [](const auto& test) { return std::string(test.param); });

struct TypingTest : TypingFixture {
  TypingTest() { startProgram("xterm"); }

  static constexpr const char* noKeys = "Ωмир我😀";  // not on the layout of the server
};

TEST_F(TypingTest, ALineEndIsReturnOnce) {
  expectTyped("a\nb\r\nc\n\nd\te", "a\rb\rc\r\rd\te");
}

TEST_F(TypingTest, TheSecondLayoutOfTwoIsTypedWithAsIt) {
  setLayout({"us,ru"});
  lock(0, 0, 1);
  expectTyped("фЫва olé 1! Ω");
  lock(0, 0, 0);
  expectTyped("фЫва olé 1! Ω");
}

TEST_F(TypingTest, AControlKeyThatIsLockedMakesNoShortcutsAndStaysSo) {
  lock(XCB_MOD_MASK_CONTROL, XCB_MOD_MASK_CONTROL);
  EXPECT_TRUE(eventually([this] { return isControlLocked(); }));
  expectTyped("abc Ω");
  EXPECT_TRUE(isControlLocked());
}

TEST_F(TypingTest, WhatNoKeyboardHasIsLeftOut) {
  expectTyped(std::string("a\0b\x01\x02 c", 7), "ab c");
}

TEST_F(TypingTest, AControlKeyThatAPhoneHoldsMakesNoShortcuts) {
  constexpr std::uint16_t controlKey = 0x3b;
  leaves.events.post(KeyEvent{.keyCode = controlKey, .down = true});
  leaves.events.flush();
  expectTyped("abc Ω");
  constexpr std::uint16_t keyA = 0x00;
  leaves.events.post(KeyEvent{.keyCode = keyA, .down = true});
  leaves.events.post(KeyEvent{.keyCode = keyA, .down = false});
  leaves.events.post(KeyEvent{.keyCode = controlKey, .down = false});
  leaves.events.flush();
  expectTyped("", "\x01");
}

TEST_F(TypingTest, AKeyThatIsHeldIsTypedAllTheSame) {
  constexpr std::uint16_t keyA = 0x00;
  leaves.events.post(KeyEvent{.keyCode = keyA, .down = true});
  leaves.events.flush();
  expectTyped("banana", "abanana");
  leaves.events.post(KeyEvent{.keyCode = keyA, .down = false});
  leaves.events.flush();
}

TEST_F(TypingTest, TheKeyboardIsAsBeforeAWhileLater) {
  const auto before = keyboardMap();
  expectTyped(noKeys);
  EXPECT_NE(keyboardMap(), before);
  EXPECT_NE(rootProperty("_ORVEL_SPARE_KEYS"), 0u);
  EXPECT_TRUE(eventually([&] { return keyboardMap() == before; }));
  EXPECT_TRUE(eventually([&] { return rootProperty("_ORVEL_SPARE_KEYS") == 0; }));
  expectTyped(noKeys);
}

TEST_F(TypingTest, TheKeyboardIsAsBeforeAtTheEnd) {
  const auto before = keyboardMap();
  {
    LeafSet others(desktop);
    KeyboardDriver(others.events, clock).type(noKeys);
    EXPECT_EQ(program->contentExpecting(noKeys), noKeys);
    EXPECT_NE(keyboardMap(), before);
  }
  EXPECT_EQ(keyboardMap(), before);
  EXPECT_EQ(rootProperty("_ORVEL_SPARE_KEYS"), 0u);
}

TEST_F(TypingTest, AKilledProgramIsTidiedUpAfterByTheNext) {
  const auto before = keyboardMap();
  ChildProcess victim({.command = {ORVEL_TEST_TYPIST, desktop.display(), noKeys}});
  ASSERT_TRUE(victim.waitForOutput("typed\n"));
  {
    LeafSet others(desktop);
    EXPECT_NE(keyboardMap(), before) << "what lives is left alone";
  }
  victim.signal(SIGKILL);
  victim.waitForExit();
  EXPECT_NE(keyboardMap(), before);
  LeafSet others(desktop);
  EXPECT_TRUE(eventually([&] { return keyboardMap() == before; }));
  EXPECT_EQ(rootProperty("_ORVEL_SPARE_KEYS"), 0u);
}

TEST_F(TypingTest, TwoProgramsTypeWithoutDisturbingEachOther) {
  LeafSet others(desktop);
  KeyboardDriver otherDriver(others.events, clock);
  const auto before = keyboardMap();
  expectTyped("Ωмир");
  otherDriver.type("我😀");
  EXPECT_EQ(program->contentExpecting("Ωмир我😀"), "Ωмир我😀");
  EXPECT_TRUE(eventually([&] { return keyboardMap() == before; }));
}

TEST_F(TypingTest, APageTakesAboutASecond) {
  std::string page;
  while (page.size() < 2000) page += printableASCII();
  page.resize(2000);
  const auto start = std::chrono::steady_clock::now();
  expectTyped(page);
  const auto taken = std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - start);
  RecordProperty("milliseconds", static_cast<int>(taken.count()));
  std::cout << "2000 characters in " << taken.count() << " ms\n";
  EXPECT_LT(taken, Milliseconds(5000));
}

TEST_F(TypingTest, ThePointerMovesMeanwhile) {
  std::atomic<bool> ended = false;
  Milliseconds longest{0};
  int moves = 0;
  std::thread finger([&] {
    for (auto last = std::chrono::steady_clock::now(); !ended; ++moves) {
      leaves.events.post(MouseEvent{.position = Point{static_cast<double>(moves % 500), 5}});
      leaves.events.flush();
      std::this_thread::sleep_for(Milliseconds(2));
      const auto now = std::chrono::steady_clock::now();
      longest = std::max(longest, std::chrono::duration_cast<Milliseconds>(now - std::exchange(last, now)));
    }
  });
  expectTyped(samples().at("cjk"));
  ended = true;
  finger.join();
  EXPECT_GT(moves, 50);
  EXPECT_LT(longest, Milliseconds(60)) << "a wait for the program must not hold up the pointer";
}

TEST_F(TypingTest, AServerThatIsKilledEndsIt) {
  auto typing = std::async(std::launch::async, [&] {
    while (leaves.events.post(TextEvent{.text = u"abc Ωмир"})) {
    }
  });
  std::this_thread::sleep_for(lull);
  desktop.killServer();
  EXPECT_EQ(typing.wait_for(timeout), std::future_status::ready);
  EXPECT_FALSE(leaves.events.post(TextEvent{.text = u"abc"}));
}

TEST_F(TypingTest, AServerThatHangsHoldsItUpUntilItIsPartedFrom) {
  auto typing = std::async(std::launch::async, [&] {
    while (leaves.events.post(TextEvent{.text = u"abc Ωмир"})) {
    }
  });
  std::this_thread::sleep_for(lull);
  desktop.signalServer(SIGSTOP);
  EXPECT_EQ(typing.wait_for(lull), std::future_status::timeout);
  leaves.connection().shutDown();
  EXPECT_EQ(typing.wait_for(timeout), std::future_status::ready);
  desktop.killServer();
}

}  // namespace
}  // namespace orvel
