#include "desktop/AccessibleFixture.hpp"
#include "platform/linux/accessibility/WindowAtPoint.hpp"

#include <xcb/shape.h>

#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvel {
namespace {

constexpr std::uint32_t bypassesManager = 1;
constexpr int releaseOfGTK4 = ORVEL_RELEASE_OF_GTK4;

using Roles = std::map<std::string, std::string>;

/// A window program, and what its widgets are.
struct Toolkit {
  std::string name;
  std::vector<std::string> arguments;
  Roles roles;
  Size padding;  ///< By how much an element may be smaller than its widget; the centre is the same all the same.
  double misplacement = 0;  ///< By how much tabs and entries of menus may be reported elsewhere.
};

const Toolkit gtk3{.name = "gtk3",
                   .arguments = {},
                   .roles = {{"button", "AXButton"},
                             {"check", "AXCheckBox"},
                             {"colour", "AXButton"},
                             {"combo", "AXPopUpButton"},
                             {"entry", ""},
                             {"expander", "AXCheckBox"},
                             {"image", ""},
                             {"label", ""},
                             {"link", "AXButton"},
                             {"menu", "AXMenuBarItem"},
                             {"page", ""},
                             {"radio", "AXRadioButton"},
                             {"row", ""},
                             {"slider", ""},
                             {"spin", "AXIncrementor"},
                             {"switch", "AXCheckBox"},
                             {"tab", "AXTabButton"},
                             {"toggle", "AXCheckBox"},
                             {"wide", "AXButton"}},
                   .padding = {2, 2}};

const Toolkit gtk4Of8{.name = "gtk4",
                      .arguments = {},
                      .roles = {{"button", "AXButton"},
                                {"check", "AXCheckBox"},
                                {"colour", "AXButton"},
                                {"combo", "AXButton"},
                                {"entry", ""},
                                {"expander", "AXButton"},
                                {"image", ""},
                                {"label", ""},
                                {"link", "AXLink"},
                                {"menu", "AXMenuBarItem"},
                                {"page", ""},
                                {"radio", "AXCheckBox"},
                                {"row", ""},
                                {"slider", ""},
                                {"spin", "AXIncrementor"},
                                {"switch", "AXCheckBox"},
                                {"tab", "AXTabButton"},
                                {"toggle", "AXButton"},
                                {"wide", "AXButton"}},
                      .padding = {36, 28}};

/// Its names are others since its release 4.10; and it forgets the padding of tab bars and of menus.
Toolkit gtk4() {
  Toolkit toolkit = gtk4Of8;
  if (releaseOfGTK4 < 10) return toolkit;
  toolkit.roles["combo"] = "AXCheckBox";
  toolkit.roles["radio"] = "AXRadioButton";
  toolkit.roles["toggle"] = "AXCheckBox";
  toolkit.misplacement = 8;
  return toolkit;
}

const Toolkit qt6{.name = "qt6",
                  .arguments = {},
                  .roles = {{"button", "AXButton"},
                            {"check", "AXCheckBox"},
                            {"combo", "AXPopUpButton"},
                            {"entry", ""},
                            {"image", ""},
                            {"label", ""},
                            {"link", "AXButton"},
                            {"menu", "AXMenuBarItem"},
                            {"page", ""},
                            {"radio", "AXRadioButton"},
                            {"row", ""},
                            {"slider", ""},
                            {"spin", "AXIncrementor"},
                            {"tab", "AXTabButton"},
                            {"toggle", "AXCheckBox"},
                            {"tool", "AXButton"},
                            {"wide", "AXButton"}},
                  .padding = {4, 4}};

Toolkit decorated(Toolkit toolkit) {
  toolkit.arguments.push_back("--decorated-by-client");
  return toolkit;
}

struct SystemAccessibilityTreeTest : AccessibleFixture {
  std::string roleAt(Point position) {
    const auto element = tree.elementAt(position);
    return element ? element->role.value_or("") : "nothing";
  }

  /// What is wrong with the element in the middle of a widget; empty when nothing is.
  std::string faultAt(const Rect& place, const std::string& role, const Toolkit& toolkit) {
    const auto element = tree.elementAt(place.centre());
    if (!element) return "nothing is there";
    if (element->role.value_or("") != role) return "it is " + element->role.value_or("something else");
    if (role.empty()) return {};  // whose frames nobody asks for
    if (!element->position || !element->size) return "it has no frame";
    const Rect frame{*element->position, *element->size};
    const bool mayBeMisplaced = role == "AXTabButton" || role == "AXMenuItem";
    const double tolerance = 1.5 + (mayBeMisplaced ? toolkit.misplacement : 0);
    const bool isInMiddle = std::abs(frame.centre().x - place.centre().x) <= tolerance &&
                            std::abs(frame.centre().y - place.centre().y) <= tolerance;
    if (!isInMiddle) return "its frame is elsewhere";
    const bool isAsLarge = frame.size.width <= place.size.width + 2 && frame.size.height <= place.size.height + 2 &&
                           frame.size.width >= place.size.width - toolkit.padding.width &&
                           frame.size.height >= place.size.height - toolkit.padding.height;
    return isAsLarge ? "" : "its frame has another size";
  }

  void expectWidgets(WidgetWindow& window, const Toolkit& toolkit) {
    for (const auto& [name, role] : toolkit.roles) {
      std::string fault;
      eventually([&, &widget = name,
                  &expected = role] { return (fault = faultAt(window.place(widget), expected, toolkit)).empty(); },
                 Milliseconds(3000));
      EXPECT_EQ(fault, "") << toolkit.name << ": " << name;
    }
  }

  /// The window is shown, then moved.
  void expectAllRight(const Toolkit& toolkit) {
    WidgetWindow window(bus, toolkit.name, toolkit.arguments);
    expectWidgets(window, toolkit);
    const Rect before = window.place("button");
    window.send("move 37 21");
    ASSERT_TRUE(eventually([&] { return window.place("button") != before; }));
    expectWidgets(window, toolkit);
  }

  /// An entry of the menu that a click opens.
  void expectOpenMenu(const Toolkit& toolkit) {
    WidgetWindow window(bus, toolkit.name, toolkit.arguments);
    ASSERT_TRUE(eventually([&] { return roleAt(window.place("menu").centre()) == "AXMenuBarItem"; }));
    click(window.place("menu").centre());
    std::string fault;
    eventually([&] { return (fault = faultAt(window.place("item"), "AXMenuItem", toolkit)).empty(); });
    EXPECT_EQ(fault, "");
    if (toolkit.name == "gtk4") return;
    EXPECT_TRUE(eventually([&] { return roleAt(window.place("button").centre()) == "AXMenuItem"; }))
        << "the menu covers the button";
  }
};

TEST_F(SystemAccessibilityTreeTest, GTK3TellsOfItsWidgetsWhereverTheWindowIs) {
  expectAllRight(gtk3);
}

TEST_F(SystemAccessibilityTreeTest, GTK4TellsOfItsWidgetsWhereverTheWindowIs) {
  expectAllRight(gtk4());
}

TEST_F(SystemAccessibilityTreeTest, Qt6TellsOfItsWidgetsWhereverTheWindowIs) {
  expectAllRight(qt6);
}

TEST_F(SystemAccessibilityTreeTest, GTK3MayDecorateItsWindowItself) {
  expectAllRight(decorated(gtk3));
}

TEST_F(SystemAccessibilityTreeTest, GTK4MayDecorateItsWindowItself) {
  expectAllRight(decorated(gtk4()));
}

TEST_F(SystemAccessibilityTreeTest, AnOpenMenuOfGTK3CoversTheWindow) {
  expectOpenMenu(gtk3);
}

TEST_F(SystemAccessibilityTreeTest, AnOpenMenuOfGTK4CoversTheWindow) {
  expectOpenMenu(gtk4());
}

TEST_F(SystemAccessibilityTreeTest, AnOpenMenuOfGTK4CoversAWindowThatItsProgramDecorates) {
  expectOpenMenu(decorated(gtk4()));
}

TEST_F(SystemAccessibilityTreeTest, AnOpenMenuOfQt6CoversTheWindow) {
  expectOpenMenu(qt6);
}

TEST_F(SystemAccessibilityTreeTest, AnElementCountsAsFarAsItsBorder) {
  for (const Toolkit& toolkit : {gtk3, gtk4(), qt6}) {
    WidgetWindow window(bus, toolkit.name);
    const auto nearBorder = [&] {
      const Rect place = window.place("wide");
      return roleAt({place.minX() + 5, place.centre().y}) + roleAt({place.maxX() - 6, place.centre().y});
    };
    EXPECT_TRUE(eventually([&] { return nearBorder() == "AXButtonAXButton"; })) << toolkit.name;
  }
}

TEST_F(SystemAccessibilityTreeTest, OnlyTheWindowOnTopCounts) {
  WidgetWindow below(bus, "gtk3");
  below.send("move 50 50");
  WidgetWindow above(bus, "qt6");
  above.send("move 50 50");
  const auto isCovered = [&] {
    const Point tab = above.place("tab").centre();
    return above.place("menu").minY() < 100 && below.place("menu").minY() < 100 && roleAt(tab) == "AXTabButton";
  };
  EXPECT_TRUE(eventually(isCovered));
  above.send("close");
  EXPECT_TRUE(eventually([&] { return roleAt(below.place("tab").centre()) == "AXTabButton"; }));
}

TEST_F(SystemAccessibilityTreeTest, AWindowThatLetsClicksThroughIsLookedThrough) {
  WidgetWindow window(bus, "gtk3");
  ASSERT_TRUE(eventually([&] { return roleAt(window.place("button").centre()) == "AXButton"; }));
  const Point button = window.place("button").centre();
  xcb_connection_t* server = leaves.connection().get();
  const xcb_window_t pane = xcb_generate_id(server);
  xcb_create_window(server, XCB_COPY_FROM_PARENT, pane, leaves.connection().root(), 0, 0, VirtualDesktop::width,
                    VirtualDesktop::height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_OVERRIDE_REDIRECT, &bypassesManager);
  xcb_map_window(server, pane);
  EXPECT_EQ(roleAt(button), "nothing");
  xcb_shape_rectangles(server, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED, pane, 0, 0, 0,
                       nullptr);
  EXPECT_EQ(roleAt(button), "AXButton");
}

TEST_F(SystemAccessibilityTreeTest, AShadowIsNoPartOfAWindow) {
  xcb_connection_t* server = leaves.connection().get();
  const xcb_window_t window = xcb_generate_id(server);
  xcb_create_window(server, XCB_COPY_FROM_PARENT, window, leaves.connection().root(), 100, 100, 200, 150, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &bypassesManager);
  xcb_map_window(server, window);
  const auto frameWith = [&](std::array<std::uint32_t, 4> shadow) {
    constexpr std::string_view name = "_GTK_FRAME_EXTENTS";
    const XCBPointer<xcb_intern_atom_reply_t> atom{
        xcb_intern_atom_reply(server, xcb_intern_atom(server, false, name.size(), name.data()), nullptr)};
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, window, atom->atom, XCB_ATOM_CARDINAL, 32, shadow.size(),
                        shadow.data());
    const auto found = findWindowAt(leaves.connection(), {150, 150});
    return found ? found->frame : Rect{};
  };
  EXPECT_EQ(frameWith({10, 12, 7, 13}), (Rect{{110, 107}, {178, 130}}));
  EXPECT_EQ(frameWith({100, 100, 7, 13}), (Rect{{100, 100}, {200, 150}})) << "a shadow leaves something of the window";
  EXPECT_EQ(frameWith({1, 1, 4'000'000'000, 4'000'000'000}), (Rect{{100, 100}, {200, 150}}));
}

TEST_F(SystemAccessibilityTreeTest, NothingIsOnABareDesktop) {
  EXPECT_FALSE(tree.elementAt({600, 400}));
  EXPECT_FALSE(tree.elementAt({-600, 1e9}));
}

TEST_F(SystemAccessibilityTreeTest, AProgramThatTellsNothingHidesWhatIsBelow) {
  WidgetWindow window(bus, "gtk3");
  const Point button = window.place("button").centre();
  ASSERT_TRUE(eventually([&] { return roleAt(button) == "AXButton"; }));
  {
    ChildProcess terminal({.command = {"xterm", "-geometry", "200x60+0+0"}, .environment = bus.environment()});
    EXPECT_TRUE(eventually([&] { return roleAt(button) == "nothing"; }));
  }
  EXPECT_TRUE(eventually([&] { return roleAt(button) == "AXButton"; }));
}

TEST_F(SystemAccessibilityTreeTest, AProgramThatHangsCostsAFractionOfASecond) {
  for (const Toolkit& toolkit : {gtk3, gtk4(), qt6}) {
    WidgetWindow window(bus, toolkit.name);
    ASSERT_TRUE(eventually([&] { return roleAt(window.place("check").centre()) == "AXCheckBox"; })) << toolkit.name;
    const Point check = window.place("check").centre();
    window.process().signal(SIGSTOP);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(roleAt(check), "nothing");
    EXPECT_LT(std::chrono::steady_clock::now() - start, Milliseconds(500));
    window.process().signal(SIGCONT);
    EXPECT_TRUE(eventually([&] { return roleAt(check) == "AXCheckBox"; })) << toolkit.name;
  }
}

TEST_F(SystemAccessibilityTreeTest, NonsenseIsSurvivedAndSoonGivenUp) {
  for (const std::string mode : {"cycle", "absurd", "endless", "wrong", "slow"}) {
    WidgetWindow window(bus, "hostile", {mode});
    const Point inside{60, 80};
    ASSERT_TRUE(eventually([&] { return findWindowAt(leaves.connection(), inside).has_value(); })) << mode;
    const auto start = std::chrono::steady_clock::now();
    const std::string role = roleAt(inside);
    EXPECT_LT(std::chrono::steady_clock::now() - start, Milliseconds(500)) << mode;
    EXPECT_TRUE(role == "nothing" || role.empty()) << mode << ": " << role;
  }
}

TEST_F(SystemAccessibilityTreeTest, ItComesBackWithTheBus) {
  {
    WidgetWindow window(bus, "qt6");
    ASSERT_TRUE(eventually([&] { return roleAt(window.place("check").centre()) == "AXCheckBox"; }));
    bus.stop();
    EXPECT_EQ(roleAt(window.place("check").centre()), "nothing");
  }
  bus.start();
  WidgetWindow window(bus, "gtk3");
  EXPECT_TRUE(eventually([&] { return roleAt(window.place("check").centre()) == "AXCheckBox"; }));
}

TEST_F(SystemAccessibilityTreeTest, ABusThatHangsCostsAFractionOfASecond) {
  WidgetWindow window(bus, "gtk3");
  const Point check = window.place("check").centre();
  SystemAccessibilityTree late(leaves.findWindow(), bus.address());
  bus.signal(SIGSTOP);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(late.elementAt(check));
  EXPECT_LT(std::chrono::steady_clock::now() - start, Milliseconds(500));
  bus.signal(SIGCONT);
  EXPECT_TRUE(eventually([&] { return late.elementAt(check).has_value(); }));
}

TEST_F(SystemAccessibilityTreeTest, WithoutABusThereIsNothing) {
  WidgetWindow window(bus, "gtk3");
  const Point check = window.place("check").centre();
  EXPECT_FALSE(SystemAccessibilityTree(leaves.findWindow(), "").elementAt(check));
  EXPECT_FALSE(SystemAccessibilityTree(leaves.findWindow(), "unix:path=/nonexistent").elementAt(check));
  EXPECT_FALSE(SystemAccessibilityTree(leaves.findWindow(), "what:ever").elementAt(check));
}

}  // namespace
}  // namespace orvel
