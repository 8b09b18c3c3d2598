#include "catalog/AppCatalog.hpp"
#include "program/LoginFixture.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace orvel {
namespace {

using testing::Contains;
using testing::HasSubstr;

constexpr std::uint16_t keyS = 1;
constexpr std::uint16_t keyReturn = 36;
const std::string editorID = "org.xfce.mousepad";

/// A page in three scripts, with what makes typing hard: capitals, accents, quotation marks, the whole of ASCII.
const std::string page =
    "The quick brown fox jumps over the lazy dog's back; \"1 + 2 = 3\" <a@b.c> ~#{[|\\]}^%$&*_?!/\n"
    "Le c\u0153ur d\u00e9\u00e7u mais l'\u00e2me plut\u00f4t na\u00efve, Lou\u00ffs r\u00eava de crapa\u00fcter en "
    "cano\u00eb.\n"
    "\u039e\u03b5\u03c3\u03ba\u03b5\u03c0\u03ac\u03b6\u03c9 \u03c4\u1f74\u03bd "
    "\u03c8\u03c5\u03c7\u03bf\u03c6\u03b8\u03cc"
    "\u03c1\u03b1 \u03b2\u03b4\u03b5\u03bb\u03c5\u03b3\u03bc\u03af\u03b1.\n"
    "\u0421\u044a\u0435\u0448\u044c \u0436\u0435 \u0435\u0449\u0451 \u044d\u0442\u0438\u0445 "
    "\u043c\u044f\u0433\u043a\u0438"
    "\u0445 \u0444\u0440\u0430\u043d\u0446\u0443\u0437\u0441\u043a\u0438\u0445 \u0431\u0443\u043b\u043e\u043a, "
    "\u0434\u0430"
    " \u0432\u044b\u043f\u0435\u0439 \u0447\u0430\u044e.\n";

struct EditorTest : LoginFixture {
  /// Types and waits until it is typed.
  void type(const std::string& text) {
    phone->sendFrame(*phone::textFrame(text));
    const auto failure = phone->finishWork(phoneTimeout);
    ASSERT_FALSE(failure) << failure->text;
  }

  void press(std::uint16_t keyCode, std::uint8_t modifiers) {
    phone->sendFrame(phone::keyFrame(keyCode, true, modifiers));
    phone->sendFrame(phone::keyFrame(keyCode, false, modifiers));
  }

  void tellEditor(phone::AppAction action) { phone->sendFrame(*phone::appFrame(action, editorID)); }

  /// What the phone's list says of the editor.
  std::optional<AppEntry> editor() {
    phone->send({{"t", "getApps"}});
    const auto answer = phone->receive("apps", phoneTimeout);
    if (!answer) return std::nullopt;
    for (const auto& item : answer->at("items").as_array()) {
      if (item.at("id").as_string() != editorID) continue;
      return AppEntry{editorID, std::string(item.at("name").as_string()), item.at("running").as_bool()};
    }
    return std::nullopt;
  }

  bool waitForWindow(const std::string& title) {
    const auto isOpen = Contains(HasSubstr(title));
    return eventually([&] { return testing::Value(view.windowTitles(), isOpen); });
  }

  /// Presses a key until the window is gone: the dialogs of this toolkit take some time to see what has been typed.
  bool dismissWith(std::uint16_t keyCode, const std::string& title) {
    const auto isGone = testing::Not(Contains(HasSubstr(title)));
    for (int attempt = 0; attempt < 20; ++attempt) {
      press(keyCode, 0);
      if (eventually([&] { return testing::Value(view.windowTitles(), isGone); }, Milliseconds(1000))) {
        return true;
      }
    }
    return false;
  }

  static std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
  }
};

TEST_F(EditorTest, APhoneOpensAnEditorTypesAPageInThreeScriptsSavesItAndQuits) {
  const auto installed = editor();
  ASSERT_TRUE(installed);
  EXPECT_FALSE(installed->running);

  tellEditor(phone::AppAction::activate);
  ASSERT_TRUE(waitForWindow("Mousepad"));
  EXPECT_TRUE(eventually([&] { return editor()->running; }));
  type(page);

  const std::filesystem::path saved = desktop.home() / "page.txt";
  press(keyS, phone::command);
  ASSERT_TRUE(waitForWindow("Save As"));
  type(saved.string());
  ASSERT_TRUE(dismissWith(keyReturn, "Save As"));
  EXPECT_TRUE(eventually([&] { return std::filesystem::exists(saved) && !contentOf(saved).empty(); }));
  EXPECT_EQ(contentOf(saved), page);
  ASSERT_TRUE(waitForWindow("page.txt"));
  EXPECT_TRUE(photograph("editor"));

  tellEditor(phone::AppAction::quit);
  EXPECT_TRUE(eventually([&] { return !editor()->running; }));
}

TEST_F(EditorTest, AnEditorWithUnsavedWorkMayRefuseToQuit) {
  tellEditor(phone::AppAction::activate);
  ASSERT_TRUE(waitForWindow("Mousepad"));
  type("not saved");
  tellEditor(phone::AppAction::quit);
  ASSERT_TRUE(waitForWindow("Save Changes"));
  EXPECT_TRUE(editor()->running);
}

}  // namespace
}  // namespace orvel
