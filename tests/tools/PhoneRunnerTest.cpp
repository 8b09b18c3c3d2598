#include "desktop/TemporaryFolder.hpp"
#include "tools/PhoneRunner.hpp"
#include "tools/ScriptedHost.hpp"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace orvel::phone {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr Seconds limit{5};
constexpr RunnerLimits impatient{.work = Seconds(0.02), .typingOfByte = Seconds(0)};
constexpr const char* tinyPNG = "iVBORw0KGgo=";

PhoneMessage frame(const std::string& bytes) {
  return {false, bytes};
}
PhoneMessage control(const std::string& json) {
  return {true, json};
}
const PhoneMessage emptyGetIcons = control(R"({"t":"getIcons","ids":[]})");

/// A viewer that leaves as soon as it has come.
struct BriefViewer final : MirrorViewer {
  void show(std::string_view) override {}
  void report(const std::string&) override {}
  bool wantsMore() override { return false; }
};

/// The kind of a control message; of a frame nothing.
std::string kindOf(const PhoneMessage& message) {
  return message.isText ? std::string(boost::json::parse(message.payload).at("t").as_string()) : "";
}

std::vector<std::string> idsIn(const PhoneMessage& message) {
  std::vector<std::string> ids;
  const auto parsed = boost::json::parse(message.payload);
  for (const auto& id : parsed.at("ids").as_array()) ids.emplace_back(id.as_string());
  return ids;
}

/// An answer with the icons of these ids.
std::string iconsAnswer(const std::vector<std::string>& ids) {
  boost::json::object items;
  for (const auto& id : ids) items[id] = tinyPNG;
  return boost::json::serialize(boost::json::object{{"t", "icons"}, {"items", items}});
}

/// A phone on a host that keeps what it hears and answers each kind of request as the test wants, or not at all.
class PhoneRunnerTest : public testing::Test {
 protected:
  using Answer = std::function<std::string(const PhoneMessage&)>;

  static Answer always(std::string text) {
    return [text = std::move(text)](const PhoneMessage&) { return text; };
  }

  /// Carries out the steps up to the first that fails, and parts.
  Failure run(const std::vector<Step>& steps, const RunnerLimits& limits = {.work = limit}) {
    ScriptedHost host([this](HostEnd& end) { serve(end); });
    auto phone = PhoneClient::connect("127.0.0.1", host.port(), limit);
    if (!phone) return phone.error();
    PhoneRunner runner(*phone, {.mac = "Studio\x1b[2J", .accessibility = true}, out, viewers, limits);
    Failure failure;
    for (const Step& step : steps) {
      if (!failure) failure = runner.run(step);
    }
    phone->hangUp();
    return failure;
  }

  std::map<std::string, Answer> answers = {
      {"getIcons", [](const PhoneMessage& request) { return iconsAnswer(idsIn(request)); }}};
  std::vector<PhoneMessage> heard;
  std::ostringstream out;
  ViewerFactory viewers = [](bool) { return Error{Error::Kind::local, "no viewer"}; };

 private:
  void serve(HostEnd& end) {
    for (auto message = end.read(); !message.payload.empty(); message = end.read()) {
      heard.push_back(message);
      const auto answer = answers.find(kindOf(message));
      if (answer != answers.end()) end.send(answer->second(message));
    }
  }
};

TEST_F(PhoneRunnerTest, SaysWhichComputerItIs) {
  EXPECT_FALSE(run({step::Pair{}}));
  EXPECT_EQ(out.str(), "computer: Studio\ufffd[2J\ninput: allowed\n");
}

TEST_F(PhoneRunnerTest, TypesTextAndAsksWhetherItIsTyped) {
  EXPECT_FALSE(run({step::Text{"é!"}, step::Key{{36, 0}, true, false}}));
  EXPECT_THAT(heard, ElementsAre(frame(std::string("\x05\x03\x00\xc3\xa9!", 6)), emptyGetIcons,
                                 frame(std::string("\x04\x24\x00\x01\x00", 5))));
}

TEST_F(PhoneRunnerTest, NoKeyOvertakesTheText) {
  answers.clear();
  const auto failure = run({step::Text{"a"}, step::Key{{36, 0}, true, true}}, impatient);
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::timedOut);
  EXPECT_THAT(failure->text, HasSubstr("typed the text"));
  EXPECT_THAT(heard, ElementsAre(frame(std::string("\x05\x01\x00"
                                                   "a",
                                                   4)),
                                 emptyGetIcons));
}

TEST_F(PhoneRunnerTest, WaitsLongerForLongerText) {
  const RunnerLimits onlyForBytes{.work = Seconds(0), .typingOfByte = limit};
  EXPECT_FALSE(run({step::Text{"a"}}, onlyForBytes));
}

TEST_F(PhoneRunnerTest, LongTextGoesPieceByPiece) {
  const std::string text(2 * longestFrameText + 5, 'a');
  EXPECT_FALSE(run({step::Text{text}}));
  ASSERT_THAT(heard, SizeIs(6));
  std::string typed;
  for (std::size_t index = 0; index < heard.size(); index += 2) {
    typed += heard[index].payload.substr(3);
    EXPECT_EQ(heard[index + 1], emptyGetIcons);
  }
  EXPECT_EQ(typed, text);
}

TEST_F(PhoneRunnerTest, MirrorsAsItIsToldAndReports) {
  std::vector<bool> inWindow;
  viewers = [&](bool window) {
    inWindow.push_back(window);
    return std::unique_ptr<MirrorViewer>(std::make_unique<BriefViewer>());
  };
  answers["mirrorStart"] = always(R"({"t":"mirrorReady","width":400,"height":300})");
  answers["ping"] = always(R"({"t":"pong"})");
  EXPECT_FALSE(run({step::Mirror{.wish = {.width = 400}, .inWindow = true}, step::Mirror{}}));
  EXPECT_THAT(inWindow, ElementsAre(true, false));
  ASSERT_THAT(heard, SizeIs(6));
  EXPECT_EQ(heard[0], control(R"({"t":"mirrorStart","width":400})"));
  EXPECT_EQ(heard[1], control(R"({"t":"mirrorStop"})"));
  EXPECT_EQ(heard[3], control(R"({"t":"mirrorStart"})"));
  EXPECT_THAT(out.str(), HasSubstr("screen: 400x300\nframes: 0 in 0.0 s"));
}

TEST_F(PhoneRunnerTest, DoesNotMirrorWithoutAViewer) {
  const auto failure = run({step::Mirror{.inWindow = true}});
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->text, "no viewer");
  EXPECT_THAT(heard, IsEmpty());
}

TEST_F(PhoneRunnerTest, EmptyTextIsNothingToType) {
  EXPECT_FALSE(run({step::Text{""}}));
  EXPECT_THAT(heard, IsEmpty());
}

TEST_F(PhoneRunnerTest, PressesMediaKeys) {
  EXPECT_FALSE(run({step::Media{16}}));
  EXPECT_THAT(heard, ElementsAre(frame("\x06\x10")));
}

TEST_F(PhoneRunnerTest, ActivatesAndQuitsAndWaitsForTheDesktop) {
  EXPECT_FALSE(run({step::App{AppAction::activate, "ab"}, step::App{AppAction::quit, "c"}}));
  EXPECT_THAT(heard, ElementsAre(frame(std::string("\x07\x00\x02\x00"
                                                   "ab",
                                                   6)),
                                 emptyGetIcons,
                                 frame(std::string("\x07\x01\x01\x00"
                                                   "c",
                                                   5)),
                                 emptyGetIcons));
}

TEST_F(PhoneRunnerTest, SaysThatTheDesktopWasNotAsked) {
  answers.clear();
  const auto failure = run({step::App{AppAction::quit, "c"}}, impatient);
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::timedOut);
  EXPECT_THAT(failure->text, HasSubstr("asked the desktop"));
}

TEST_F(PhoneRunnerTest, SnapsAndReveals) {
  EXPECT_FALSE(run({step::Snap{}, step::Reveal{}}));
  EXPECT_THAT(heard, ElementsAre(control(R"({"t":"snap"})"), control(R"({"t":"reveal"})")));
}

TEST_F(PhoneRunnerTest, ListsTheApplications) {
  answers["getApps"] = always(R"({"t":"apps","items":[{"id":"a","name":"Alpha","running":true}]})");
  EXPECT_FALSE(run({step::Apps{}, step::Apps{.asJSON = true}}));
  EXPECT_EQ(out.str(), "* a  Alpha\n[{\"id\":\"a\",\"name\":\"Alpha\",\"running\":true}]\n");
}

TEST_F(PhoneRunnerTest, SaysThatThereIsNoListOfApplications) {
  answers["getApps"] = always(R"({"t":"apps","items":"none"})");
  const auto wrong = run({step::Apps{}});
  ASSERT_TRUE(wrong);
  EXPECT_EQ(wrong->kind, Error::Kind::unexpected);
  answers.clear();
  const auto late = run({step::Apps{}}, impatient);
  ASSERT_TRUE(late);
  EXPECT_EQ(late->kind, Error::Kind::timedOut);
  EXPECT_THAT(late->text, HasSubstr("applications in time"));
}

TEST_F(PhoneRunnerTest, DoesNotSwallowAListWithoutEnd) {
  answers["getApps"] = always(R"({"t":"apps","items":[],"more":")" + std::string(9 * 1024 * 1024, 'x') + "\"}");
  const auto failure = run({step::Apps{}}, {.work = Seconds(0.5)});
  ASSERT_TRUE(failure);
  EXPECT_EQ(out.str(), "");
}

class PhoneRunnerIconTest : public PhoneRunnerTest {
 protected:
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home.path())) {
      names.push_back(std::filesystem::relative(entry.path(), home.path()).string());
    }
    return names;
  }

  step::Icons icons(std::vector<std::string> ids = {}) const { return {home.path().string(), std::move(ids)}; }

  TemporaryFolder home;
};

TEST_F(PhoneRunnerIconTest, WritesTheIconsItIsAskedFor) {
  EXPECT_FALSE(run({icons({"org.example.Editor", "xterm"})}));
  EXPECT_THAT(files(), UnorderedElementsAre("org.example.Editor.png", "xterm.png"));
  std::ifstream file(home.path() / "xterm.png", std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "\x89PNG\r\n\x1a\n");
  EXPECT_EQ(out.str(), "icons written: 2\n");
}

TEST_F(PhoneRunnerIconTest, AsksForAllInGroupsOfForty) {
  boost::json::array items;
  for (int index = 0; index < 85; ++index) {
    items.push_back({{"id", "app" + std::to_string(index)}, {"name", ""}, {"running", false}});
  }
  answers["getApps"] = always(boost::json::serialize(boost::json::object{{"t", "apps"}, {"items", items}}));
  EXPECT_FALSE(run({icons()}));
  ASSERT_THAT(heard, SizeIs(4));
  EXPECT_EQ(kindOf(heard[0]), "getApps");
  EXPECT_THAT(idsIn(heard[1]), SizeIs(40));
  EXPECT_THAT(idsIn(heard[2]), SizeIs(40));
  EXPECT_THAT(idsIn(heard[3]), ElementsAre("app80", "app81", "app82", "app83", "app84"));
  EXPECT_THAT(files(), SizeIs(85));
}

TEST_F(PhoneRunnerIconTest, ThereMayBeNoApplications) {
  answers["getApps"] = always(R"({"t":"apps","items":[]})");
  EXPECT_FALSE(run({icons()}));
  EXPECT_EQ(out.str(), "icons written: 0\n");
}

TEST_F(PhoneRunnerIconTest, SaysWhichIconsThereAreNot) {
  answers["getIcons"] = always(R"({"t":"icons","items":{"a":"iVBORw0KGgo=","b":"%%%","c":7}})");
  EXPECT_FALSE(run({icons({"a", "b", "c", "d", "e"})}));
  EXPECT_THAT(files(), ElementsAre("a.png"));
  EXPECT_EQ(out.str(), "icons written: 1\nno icon: d e\nnot a PNG in Base64: b c\n");
}

TEST_F(PhoneRunnerIconTest, AHostileListWritesNothingOutsideTheFolder) {
  const auto inner = home.path() / "inner";
  answers["getApps"] = always(R"({"t":"apps","items":[{"id":"../out","name":"","running":true},
      {"id":"a/b","name":"","running":true},{"id":"","name":"","running":true},
      {"id":"x\u001b","name":"","running":true},{"id":"good","name":"","running":true}]})");
  answers["getIcons"] = always(iconsAnswer({"../out", "a/b", "", "good", "unasked"}));
  EXPECT_FALSE(run({step::Icons{inner.string(), {}}}));
  EXPECT_THAT(files(), UnorderedElementsAre("inner", "inner/good.png"));
  EXPECT_THAT(idsIn(heard.back()), ElementsAre("good"));
  EXPECT_EQ(out.str(), "icons written: 1\nnot a safe file name: ../out a/b \"\" x\ufffd\n");
}

TEST_F(PhoneRunnerIconTest, SaysThatThereAreNoIcons) {
  answers["getIcons"] = always(R"({"t":"icons","items":[]})");
  const auto wrong = run({icons({"a"})});
  ASSERT_TRUE(wrong);
  EXPECT_EQ(wrong->kind, Error::Kind::unexpected);
  answers.clear();
  const auto late = run({icons({"a"})}, impatient);
  ASSERT_TRUE(late);
  EXPECT_EQ(late->kind, Error::Kind::timedOut);
  EXPECT_THAT(late->text, HasSubstr("icons in time"));
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(PhoneRunnerIconTest, AsksForNothingThatItCouldNotWrite) {
  std::ofstream(home.path() / "file") << "in the way";
  const auto failure = run({step::Icons{(home.path() / "file").string(), {"a"}}});
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, Error::Kind::local);
  EXPECT_THAT(failure->text, AllOf(HasSubstr("cannot write"), HasSubstr("file")));
  EXPECT_THAT(heard, IsEmpty());
}

}  // namespace
}  // namespace orvel::phone
