#include "fakes/SessionFixture.hpp"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <string>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const FakeComputer::Icon pngBytes = {1, 2, 3};

struct ClientSessionRequestsTest : SessionFixture {
  void SetUp() override { openAuthenticated(); }

  void ask(const std::string& json) {
    phone->text(json);
    clock.runDue();
  }

  /// The only answer of a kind, as its text would be with the keys in this order.
  std::string items(const char* kind) const {
    const auto answers = phone->received(kind);
    if (answers.size() != 1 || answers.front().size() != 2) return "not one answer of two keys";
    return boost::json::serialize(answers.front().at("items"));
  }
};

TEST_F(ClientSessionRequestsTest, GetAppsListsTheCatalogInItsOrder) {
  computer.running = {{.instance = 1, .identifier = "z", .name = "Zed", .location = {}, .isRegular = true}};
  computer.folders = {{"/Applications", {{"A.app", ApplicationBundle{"a", "\u00c4", {}}}}}};
  ask(R"({"t":"getApps"})");
  EXPECT_EQ(items("apps"),
            "[{\"id\":\"z\",\"name\":\"Zed\",\"running\":true},{\"id\":\"a\",\"name\":\"\u00c4\",\"running\":false}]");
}

TEST_F(ClientSessionRequestsTest, AnEmptyCatalogIsAnEmptyArray) {
  ask(R"({"t":"getApps"})");
  EXPECT_EQ(items("apps"), "[]");
}

TEST_F(ClientSessionRequestsTest, SlowRequestsRunOffTheNetworkThreadInTheirOrder) {
  computer.known = {{"a", "/a"}};
  computer.icons = {{"/a", pngBytes}};
  phone->text(R"({"t":"getIcons","ids":["a"]})");
  phone->text(R"({"t":"getApps"})");
  phone->text(R"({"t":"ping"})");
  EXPECT_EQ(computer.locationQueries, 0);
  EXPECT_THAT(phone->received("pong"), SizeIs(1)) << "which nothing slow holds up";
  clock.runDue();
  const auto answers = phone->received();
  ASSERT_GE(answers.size(), 2u);
  EXPECT_EQ(answers[answers.size() - 2].at("t"), "icons");
  EXPECT_EQ(answers.back().at("t"), "apps");
}

TEST_F(ClientSessionRequestsTest, AnswersOfPhonesThatHaveLeftAreDropped) {
  computer.running = {{.instance = 1, .identifier = "z", .name = "Zed", .location = {}, .isRegular = true}};
  phone->text(R"({"t":"getApps"})");
  phone->drop();
  session.reset();
  clock.runDue();
  EXPECT_THAT(phone->received("apps"), IsEmpty());
}

TEST_F(ClientSessionRequestsTest, GetIconsAnswersWithThoseThatThereAre) {
  computer.known = {{"a", "/a"}, {"b", "/b"}, {"c", "/c"}};
  computer.icons = {{"/a", pngBytes}, {"/c", {0xff}}};
  ask(R"({"t":"getIcons","ids":["c","b","stranger","a","a"]})");
  EXPECT_EQ(items("icons"), R"({"c":"/w==","a":"AQID"})");
  EXPECT_THAT(computer.iconSizes, testing::Each(56));
}

TEST_F(ClientSessionRequestsTest, OnlyTheFirstFortyIdsCount) {
  computer.icons = {{"/a", pngBytes}};
  std::string ids;
  for (int number = 0; number < 45; ++number) {
    const std::string id = "app" + std::to_string(number);
    computer.known[id] = "/a";
    ids += (ids.empty() ? "\"" : ",\"") + id + "\"";
  }
  ask(R"({"t":"getIcons","ids":[)" + ids + "]}");
  const auto answer = phone->received("icons").at(0).at("items").as_object();
  EXPECT_EQ(answer.size(), 40u);
  EXPECT_TRUE(answer.contains("app39"));
  EXPECT_FALSE(answer.contains("app40"));
}

TEST_F(ClientSessionRequestsTest, RepeatedIdsCountTowardsTheForty) {
  computer.known = {{"a", "/a"}, {"b", "/a"}};
  computer.icons = {{"/a", pngBytes}};
  std::string ids;
  for (int repeat = 0; repeat < 40; ++repeat) ids += R"("a",)";
  ask(R"({"t":"getIcons","ids":[)" + ids + R"("b"]})");
  EXPECT_EQ(items("icons"), R"({"a":"AQID"})");
}

TEST_F(ClientSessionRequestsTest, NoIdsAreAnEmptyAnswer) {
  ask(R"({"t":"getIcons","ids":[]})");
  EXPECT_EQ(items("icons"), "{}");
}

TEST_F(ClientSessionRequestsTest, IdsThatAreNoArrayOfStringsAreNotAnswered) {
  for (const char* request : {
           R"({"t":"getIcons"})",
           R"({"t":"getIcons","ids":"x"})",
           R"({"t":"getIcons","ids":null})",
           R"({"t":"getIcons","ids":7})",
           R"({"t":"getIcons","ids":{"a":"b"}})",
           R"({"t":"getIcons","ids":["a",1]})",
           R"({"t":"getIcons","ids":[true,"a"]})",
           R"({"t":"getIcons","ids":["a",null,"b"]})",
           R"({"t":"getIcons","ids":[["a"]]})",
           R"({"t":"getIcons","ids":[[]]})",
           R"({"t":"getIcons","ids":["a",{"b":"c"}]})",
           R"({"t":"getIcons","ids":["a",{}]})",
           R"({"t":"getIcons","ids":["a",1.5e300]})",
           R"({"t":"getIcons","ids":["a"],"ids":1})",
           R"({"t":"getIcons","x":{"ids":["a"]}})",
           R"({"t":"getIcons","Ids":["a"]})",
       }) {
    ask(request);
    EXPECT_THAT(phone->received("icons"), IsEmpty()) << request;
  }
}

TEST_F(ClientSessionRequestsTest, IdsAreReadWhereverTheyStand) {
  computer.known = {{"a", "/a"}, {"\u00e9\"", "/a"}, {"", "/a"}};
  computer.icons = {{"/a", pngBytes}};
  ask(R"({"x":["b",1],"ids":["z"],"ids":["a","\u00e9\"",""],"y":{"ids":[2]},"t":"getIcons","z":[[1],"w"]})");
  EXPECT_EQ(items("icons"), "{\"a\":\"AQID\",\"\u00e9\\\"\":\"AQID\",\"\":\"AQID\"}");
}

TEST_F(ClientSessionRequestsTest, AnElementAfterTheFortiethThatIsNoStringSpoilsThemAll) {
  std::string ids;
  for (int repeat = 0; repeat < 60; ++repeat) ids += R"("a",)";
  ask(R"({"t":"getIcons","ids":[)" + ids + "3]}");
  EXPECT_THAT(phone->received("icons"), IsEmpty());
}

TEST_F(ClientSessionRequestsTest, SnapGlidesOntoTheControl) {
  tree.element = AccessibleElement{.role = "AXButton", .position = Point{140, 95}, .size = Size{20, 10}};
  ask(R"({"t":"snap"})");
  ASSERT_FALSE(desktop.posted.empty());
  EXPECT_EQ(desktop.all<MouseEvent>().back().position, (Point{150, 100}));
  EXPECT_EQ(phone->received().size(), 2u) << "hello and ready, and no answer";
}

TEST_F(ClientSessionRequestsTest, SnapNeedsThePermissionAsRemembered) {
  tree.element = AccessibleElement{.role = "AXButton", .position = Point{140, 95}, .size = Size{20, 10}};
  desktop.trusted = false;
  permission.refresh();
  ask(R"({"t":"snap"})");
  EXPECT_THAT(desktop.posted, IsEmpty());
}

TEST_F(ClientSessionRequestsTest, StrangersAreServedNothing) {
  tree.element = AccessibleElement{.role = "AXButton", .position = Point{140, 95}, .size = Size{20, 10}};
  const auto wire = std::make_shared<FakeWire>(clock);
  const auto stranger = makeSession(wire);
  wire->open();
  for (const char* request : {R"({"t":"getApps"})", R"({"t":"getIcons","ids":["a"]})", R"({"t":"snap"})"}) {
    wire->text(request);
    clock.runDue();
  }
  EXPECT_EQ(wire->received().size(), 1u) << "hello";
  EXPECT_THAT(desktop.posted, IsEmpty());
  EXPECT_THAT(tree.asked, IsEmpty());
  EXPECT_FALSE(wire->cancelled);
}

TEST_F(ClientSessionRequestsTest, APhoneThatAsksAndDoesNotReadIsReadNoFurther) {
  for (int number = 0; number < 2000; ++number) {
    computer.running.push_back({.instance = 1,
                                .identifier = "app" + std::to_string(number),
                                .name = std::string(100, 'x'),
                                .location = {},
                                .isRegular = true});
  }
  phone->stalled = true;
  for (int request = 0; request < 100; ++request) {
    phone->text(R"({"t":"getApps"})");
    clock.runDue();
  }
  EXPECT_LE(phone->received("apps").size(), 3u);
  phone->unstall();
  for (int round = 0; round < 200; ++round) {
    clock.runDue();
    phone->unstall();
  }
  phone->stalled = false;
  clock.runDue();
  EXPECT_THAT(phone->received("apps"), SizeIs(100)) << "and nothing is lost";
}

}  // namespace
}  // namespace orvel
