#include "base/Guarded.hpp"
#include "desktop/BusService.hpp"
#include "desktop/SessionBus.hpp"
#include "desktop/SettingsDaemon.hpp"
#include "desktop/StoppedServer.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "platform/linux/SystemAppearance.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11ThemeSettings.hpp"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QString>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>

namespace orvel {
namespace {

constexpr auto portalName = "org.freedesktop.portal.Desktop";
constexpr auto portalPath = "/org/freedesktop/portal/desktop";
constexpr auto settings = "org.freedesktop.portal.Settings";
constexpr auto appearanceGroup = "org.freedesktop.appearance";

/// A desktop's portal, as far as it knows of light and dark.
class Portal {
 public:
  enum class Age { old, current };

  Portal(const std::string& address, std::uint32_t scheme, Age age = Age::current)
      : age_(age),
        value_(GLibPointer<GVariant>(g_variant_ref_sink(g_variant_new_uint32(scheme)))),
        service_(address, portalName, [this](GDBusMessage* call) { return answer(call); }) {}

  int timesAsked() const { return asked_; }

  /// The connections by which it was asked.
  std::set<std::string> askers() const {
    return askers_.withLock([](const std::set<std::string>& askers) { return askers; });
  }

  /// Has another value from now on, and says so.
  void change(GVariant* value) {
    const GLibPointer<GVariant> owned(g_variant_ref_sink(value));
    value_.withLock([&](GLibPointer<GVariant>& known) { known.reset(g_variant_ref(owned.get())); });
    signal(g_variant_new("(ssv)", appearanceGroup, "color-scheme", owned.get()));
  }

  void signal(GVariant* body) const { service_.signal(portalPath, settings, "SettingChanged", body); }

 private:
  GVariant* answer(GDBusMessage* call) {
    const std::string_view method = g_dbus_message_get_member(call);
    const bool isKnown = method == "Read" || (method == "ReadOne" && age_ == Age::current);
    if (!isKnown) return nullptr;
    askers_.withLock([&](std::set<std::string>& askers) { askers.insert(g_dbus_message_get_sender(call)); });
    ++asked_;
    return value_.withLock([&](const GLibPointer<GVariant>& value) {
      return g_variant_new("(v)", method == "Read" ? g_variant_new_variant(value.get()) : value.get());
    });
  }

  const Age age_;
  Guarded<GLibPointer<GVariant>> value_;
  Guarded<std::set<std::string>> askers_;
  std::atomic<int> asked_ = 0;
  const BusService service_;
};

struct SystemAppearanceTest : testing::Test {
  SystemAppearanceTest() { setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1); }
  ~SystemAppearanceTest() override {
    if (connection) connection->stopListening();
    appearance.reset();
  }

  /// Makes the leaf and has it follow the desktop.
  void open() {
    connection = X11Connection::open(desktop.display());
    settings.emplace(*connection);
    appearance.emplace(*settings);
    appearance->observe([this] { ++changes; });
    connection->listen(
        {.event = [this](const xcb_generic_event_t& event) { settings->handle(event); }, .ended = [] {}});
  }

  static bool eventually(const std::function<bool()>& isSo, Milliseconds limit = timeout) {
    const Deadline deadline(limit);
    while (!isSo()) {
      if (deadline.left() == Milliseconds(0)) return false;
      std::this_thread::sleep_for(Milliseconds(2));
      QCoreApplication::processEvents();
    }
    return true;
  }

  bool becomes(std::optional<bool> isDark) {
    return eventually([&] { return appearance->isDark() == isDark; });
  }

  bool isNotified(int count) {
    return eventually([&] { return changes == count; });
  }

  int argumentCount = 1;
  std::string name = "test";
  char* arguments[2] = {name.data(), nullptr};
  const QCoreApplication application{argumentCount, arguments};
  VirtualDesktop desktop;
  SessionBus bus{desktop};
  std::unique_ptr<X11Connection> connection;
  std::optional<X11ThemeSettings> settings;
  std::optional<SystemAppearance> appearance;
  int changes = 0;
};

TEST_F(SystemAppearanceTest, NobodySaysAnything) {
  open();
  EXPECT_FALSE(eventually([&] { return changes > 0; }, lull));
  EXPECT_EQ(appearance->isDark(), std::nullopt);
  EXPECT_EQ(appearance->font(), std::nullopt);
}

TEST_F(SystemAppearanceTest, ThePortalSaysIt) {
  const Portal portal(bus.address(), 1);
  open();
  EXPECT_TRUE(becomes(true));
  EXPECT_TRUE(isNotified(1));
  EXPECT_TRUE(eventually([&] { return portal.timesAsked() == 2; }));
}

TEST_F(SystemAppearanceTest, ThePortalIsAskedByTheToolkitsOwnConnection) {
  const Portal portal(bus.address(), 1);
  open();
  ASSERT_TRUE(eventually([&] { return portal.timesAsked() == 2; }));
  EXPECT_EQ(portal.askers(), std::set{QDBusConnection::sessionBus().baseService().toStdString()});
}

TEST_F(SystemAppearanceTest, AnOldPortalSaysItToo) {
  const Portal portal(bus.address(), 2, Portal::Age::old);
  open();
  EXPECT_TRUE(becomes(false));
}

TEST_F(SystemAppearanceTest, ChangesOfThePortalAreFollowed) {
  Portal portal(bus.address(), 1);
  open();
  ASSERT_TRUE(becomes(true));
  ASSERT_TRUE(eventually([&] { return portal.timesAsked() == 2; }));
  portal.change(g_variant_new_uint32(2));
  EXPECT_TRUE(becomes(false));
  EXPECT_TRUE(isNotified(2));
  portal.change(g_variant_new_variant(g_variant_new_uint32(1)));
  EXPECT_TRUE(becomes(true));
  EXPECT_TRUE(isNotified(3));
  portal.change(g_variant_new_uint32(0));
  EXPECT_TRUE(becomes(std::nullopt));
  EXPECT_TRUE(isNotified(4));
}

TEST_F(SystemAppearanceTest, APortalThatComesLaterIsAsked) {
  open();
  {
    const Portal portal(bus.address(), 2);
    EXPECT_TRUE(becomes(false));
  }
  const Portal next(bus.address(), 1);
  EXPECT_TRUE(becomes(true));
}

TEST_F(SystemAppearanceTest, ThePortalIsNotStarted) {
  const auto mark = desktop.home() / "was-started";
  std::ofstream(desktop.home() / "run/dbus-1/services/org.freedesktop.portal.Desktop.service")
      << "[D-BUS Service]\nName=" << portalName << "\nExec=/usr/bin/touch " << mark.string() << "\n";
  bus.stop();
  bus.start();
  open();
  EXPECT_FALSE(eventually([&] { return std::filesystem::exists(mark); }, 3 * lull));
}

TEST_F(SystemAppearanceTest, NonsenseOfThePortalIsHarmless) {
  Portal portal(bus.address(), 1);
  open();
  ASSERT_TRUE(becomes(true));
  ASSERT_TRUE(eventually([&] { return portal.timesAsked() == 2; }));
  portal.signal(g_variant_new("(ssv)", "org.example.other", "color-scheme", g_variant_new_uint32(2)));
  portal.signal(g_variant_new("(ssv)", appearanceGroup, "contrast", g_variant_new_uint32(2)));
  EXPECT_FALSE(eventually([&] { return portal.timesAsked() > 2; }, lull)) << "of other settings";
  portal.signal(g_variant_new("(s)", appearanceGroup));
  portal.signal(g_variant_new("(ssu)", appearanceGroup, "color-scheme", 2u));
  portal.change(g_variant_new_string("2"));
  EXPECT_FALSE(eventually([&] { return appearance->isDark() != true || changes > 1; }, lull));
  portal.change(g_variant_new_int32(2));
  GVariant* nested = g_variant_new_string("2");
  for (int i = 0; i < 20; ++i) nested = g_variant_new_variant(nested);
  portal.change(nested);
  EXPECT_FALSE(eventually([&] { return appearance->isDark() != true || changes > 1; }, lull));
  portal.change(g_variant_new_uint32(17));
  EXPECT_TRUE(becomes(std::nullopt));
}

TEST_F(SystemAppearanceTest, WithoutThePortalTheThemeSaysIt) {
  SettingsDaemon daemon(desktop.home(), desktop.environment(),
                        "Net/ThemeName \"Adwaita-dark\"\nGtk/FontName \"Noto Sans Bold 10.5\"\n");
  open();
  EXPECT_TRUE(becomes(true));
  EXPECT_TRUE(eventually([&] { return appearance->font() == (DesktopFont{"Noto Sans", 10.5}); }));
}

TEST_F(SystemAppearanceTest, ThePortalWinsUnlessItLeavesItOpen) {
  SettingsDaemon daemon(desktop.home(), desktop.environment(), "Net/ThemeName \"Adwaita-dark\"\n");
  Portal portal(bus.address(), 2);
  open();
  ASSERT_TRUE(becomes(false));
  ASSERT_TRUE(eventually([&] { return portal.timesAsked() == 2; }));
  portal.change(g_variant_new_uint32(0));
  EXPECT_TRUE(becomes(true));
}

TEST_F(SystemAppearanceTest, ChangesOfTheThemeAndTheFontAreFollowed) {
  open();
  SettingsDaemon daemon(desktop.home(), desktop.environment(),
                        "Net/ThemeName \"Breeze\"\nGtk/FontName \"Cantarell 11\"\n");
  EXPECT_TRUE(becomes(false)) << "a daemon that starts late";
  EXPECT_TRUE(isNotified(1));
  daemon.write("Net/ThemeName \"Breeze-Dark\"\nGtk/FontName \"Cantarell 11\"\n");
  EXPECT_TRUE(eventually([&] {
    daemon.reload();
    return appearance->isDark() == true;
  }));
  EXPECT_TRUE(isNotified(2));
  daemon.write("Net/ThemeName \"Breeze-Dark\"\nGtk/FontName \"Cantarell 12\"\n");
  EXPECT_TRUE(eventually([&] {
    daemon.reload();
    return appearance->font() == (DesktopFont{"Cantarell", 12});
  }));
  EXPECT_TRUE(isNotified(3));
  daemon.end();
  EXPECT_TRUE(becomes(std::nullopt));
  EXPECT_EQ(appearance->font(), std::nullopt);
}

TEST_F(SystemAppearanceTest, ABusThatHangsHoldsNobodyUp) {
  const Portal portal(bus.address(), 1);
  QDBusConnection::sessionBus();
  bus.signal(SIGSTOP);
  const Deadline deadline(Milliseconds(1000));
  open();
  QCoreApplication::processEvents();
  EXPECT_EQ(appearance->isDark(), std::nullopt);
  EXPECT_GT(deadline.left(), Milliseconds(0));
  bus.signal(SIGCONT);
  EXPECT_TRUE(becomes(true));
}

TEST_F(SystemAppearanceTest, ABusThatHungAtTheStartIsDoneWithout) {
  const Portal portal(bus.address(), 1);
  bus.signal(SIGSTOP);
  keepToolkitOffUnresponsiveBus(TimeLimit(Milliseconds(50)));
  const Deadline deadline(Milliseconds(1000));
  open();
  QCoreApplication::processEvents();
  EXPECT_EQ(appearance->isDark(), std::nullopt);
  EXPECT_GT(deadline.left(), Milliseconds(0));
  bus.signal(SIGCONT);
}

struct WithoutABusTest : SystemAppearanceTest, testing::WithParamInterface<const char*> {};

TEST_P(WithoutABusTest, NobodySaysAnything) {
  setenv("DBUS_SESSION_BUS_ADDRESS", GetParam(), 1);
  open();
  EXPECT_FALSE(eventually([&] { return changes > 0; }, lull));
  EXPECT_EQ(appearance->isDark(), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Addresses, WithoutABusTest, testing::Values("", "disabled:", "unix:path=/nowhere"));

TEST_F(SystemAppearanceTest, AServerThatHangsHoldsNobodyUp) {
  SettingsDaemon daemon(desktop.home(), desktop.environment(),
                        "Net/ThemeName \"Breeze\"\nGtk/FontName \"Cantarell 11\"\n");
  open();
  ASSERT_TRUE(becomes(false));
  const StoppedServer stopped(desktop);
  const Deadline deadline(Milliseconds(500));
  EXPECT_EQ(appearance->isDark(), false);
  EXPECT_EQ(appearance->font(), (DesktopFont{"Cantarell", 11}));
  EXPECT_GT(deadline.left(), Milliseconds(0));
}

}  // namespace
}  // namespace orvel
