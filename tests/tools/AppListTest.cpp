#include "tools/AppList.hpp"

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvel::phone {
namespace {

const std::vector<AppEntry> twoApps = {{.id = "org.example.Editor", .name = "Text Editor", .running = true},
                                       {.id = "xterm", .name = "XTerm", .running = false}};

Result<std::vector<AppEntry>> read(const char* answer) {
  return appsIn(boost::json::parse(answer).as_object());
}

TEST(AppList, ReadsTheHostsListInItsOrder) {
  const auto apps = read(R"({"t":"apps","items":[{"id":"org.example.Editor","name":"Text Editor","running":true},
                                                 {"id":"xterm","name":"XTerm","running":false,"more":1}]})");
  ASSERT_TRUE(apps);
  EXPECT_EQ(*apps, twoApps);
  const auto none = read(R"({"t":"apps","items":[]})");
  ASSERT_TRUE(none);
  EXPECT_TRUE(none->empty());
}

TEST(AppList, DoesNotTakeWhatIsNoList) {
  for (const char* answer :
       {R"({})", R"({"items":{}})", R"({"items":null})", R"({"items":"x"})", R"({"items":[1]})", R"({"items":[[]]})",
        R"({"items":[{}]})", R"({"items":[{"id":1,"name":"a","running":true}]})",
        R"({"items":[{"id":"a","name":null,"running":true}]})", R"({"items":[{"id":"a","name":"a","running":1}]})",
        R"({"items":[{"id":"a","name":"a","running":true},{"id":"b"}]})"}) {
    const auto apps = read(answer);
    ASSERT_FALSE(apps) << answer;
    EXPECT_EQ(apps.error().kind, Error::Kind::unexpected) << answer;
  }
}

TEST(AppList, IsATableForPeople) {
  EXPECT_EQ(appTable(twoApps),
            "* org.example.Editor  Text Editor\n"
            "  xterm               XTerm\n");
  EXPECT_EQ(appTable({}), "");
}

TEST(AppList, AnEndlessIdDoesNotPushTheNamesAway) {
  const std::vector<AppEntry> apps = {{.id = std::string(1000, 'x'), .name = "Long"}, {.id = "a", .name = "Short"}};
  EXPECT_EQ(appTable(apps), "  " + std::string(1000, 'x') + "  Long\n  a" + std::string(47, ' ') + "  Short\n");
}

TEST(AppList, NamesCannotSteerTheTerminal) {
  const std::vector<AppEntry> apps = {{.id = "a\x1b[2J", .name = "b\nc"}};
  EXPECT_EQ(appTable(apps), "  a\ufffd[2J  b\ufffdc\n");
}

TEST(AppList, IsJSONForPrograms) {
  EXPECT_EQ(appJSON(twoApps),
            "[{\"id\":\"org.example.Editor\",\"name\":\"Text Editor\",\"running\":true},"
            "{\"id\":\"xterm\",\"name\":\"XTerm\",\"running\":false}]\n");
  EXPECT_EQ(appJSON({}), "[]\n");
}

}  // namespace
}  // namespace orvel::phone
