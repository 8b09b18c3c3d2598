#include "desktop/ActivationRecorder.hpp"
#include "desktop/ChildProcess.hpp"
#include "desktop/SessionBus.hpp"
#include "desktop/TemporaryFolder.hpp"
#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <list>
#include <string>
#include <vector>

namespace orvel {
namespace {

using Texts = std::vector<std::string>;

constexpr std::size_t megabyte = std::size_t{1} << 20;

/// Sanitizers keep what was freed.
constexpr bool memoryIsMeasurable = !ORVEL_SANITIZED;

struct SystemInstanceTest : testing::Test {
  ChildProcess& start(const Texts& arguments = {}, const ChildProcess::Environment& changes = {}) {
    Texts command{INSTANCE_PROCESS};
    command.insert(command.end(), arguments.begin(), arguments.end());
    auto environment = bus.environment();
    for (const auto& [name, value] : changes) environment[name] = value;
    return programs.emplace_back(ChildProcess::Program{.command = command, .environment = environment});
  }

  ChildProcess& startFirst() {
    ChildProcess& program = start();
    EXPECT_TRUE(program.waitForOutput("first\n")) << program.output();
    return program;
  }

  /// Keeps its main thread from its work for a while.
  static void makeBusy(ChildProcess& program) {
    program.write("x");
    EXPECT_TRUE(program.waitForOutput("busy\n"));
  }

  VirtualDesktop desktop;
  SessionBus bus{desktop};
  std::list<ChildProcess> programs;
};

TEST_F(SystemInstanceTest, TheSecondShowsTheFirst) {
  auto& first = startFirst();
  auto& second = start({"show"});
  EXPECT_EQ(second.waitForExit(), 0);
  EXPECT_EQ(second.output(), "token \nsecond\nother shown\n");
  EXPECT_EQ(first.output(), "token \nfirst\nshown \n") << "it is answered only when it has been done";
}

TEST_F(SystemInstanceTest, TheTokenIsForwarded) {
  auto& first = startFirst();
  start({"show"}, {{"XDG_ACTIVATION_TOKEN", "a-token_TIME17"}, {"DESKTOP_STARTUP_ID", "older"}}).waitForExit();
  start({"show", "at-once"}, {{"DESKTOP_STARTUP_ID", "older_TIME18"}}).waitForExit();
  start({"show", "at-once"}, {{"XDG_ACTIVATION_TOKEN", "\xff"}, {"DESKTOP_STARTUP_ID", ""}}).waitForExit();
  EXPECT_EQ(first.output(), "token \nfirst\nshown a-token_TIME17\nshown older_TIME18\nshown \n");
  const auto isLeft = [](ChildProcess& program) { return program.output().find("left") != std::string::npos; };
  EXPECT_FALSE(std::any_of(programs.begin(), programs.end(), isLeft)) << "the toolkit would use it";
}

TEST_F(SystemInstanceTest, TheTokenIsForwardedInBothItsForms) {
  const ActivationRecorder other(bus.address(), "app.orvel.Orvel");
  start({"show", "at-once"}, {{"XDG_ACTIVATION_TOKEN", "a-token"}}).waitForExit();
  start({"show", "at-once"}).waitForExit();
  using Data = ActivationRecorder::PlatformData;
  EXPECT_EQ(other.requests(),
            (std::vector<Data>{{{"activation-token", "a-token"}, {"desktop-startup-id", "a-token"}}, Data{}}));
}

TEST_F(SystemInstanceTest, TheTokenOfItsOwnStartIsKnown) {
  EXPECT_TRUE(start({}, {{"DESKTOP_STARTUP_ID", "mine_TIME3"}}).waitForOutput("token mine_TIME3\nfirst\n"));
}

TEST_F(SystemInstanceTest, WhenTheFirstHasGoneTheNextIsTheFirst) {
  auto& killed = startFirst();
  killed.signal(SIGKILL);
  killed.waitForExit();
  auto& first = startFirst();
  first.closeInput();
  EXPECT_EQ(first.waitForExit(), 0);
  startFirst();
  EXPECT_TRUE(start().waitForOutput("second\n"));
}

TEST_F(SystemInstanceTest, OfManyAtOnceOneIsTheFirst) {
  for (int i = 0; i < 12; ++i) start({"show"});
  const auto isFirst = [](ChildProcess& program) { return program.output().find("first\n") != std::string::npos; };
  const Deadline deadline(timeout);
  std::size_t ended = 0;
  while (ended < 11 && deadline.left() > Milliseconds(0)) {
    ended = static_cast<std::size_t>(std::count_if(
        programs.begin(), programs.end(), [](ChildProcess& program) { return program.waitForExit(Milliseconds(20)); }));
  }
  EXPECT_EQ(ended, 11u);
  EXPECT_EQ(std::count_if(programs.begin(), programs.end(), isFirst), 1);
}

TEST_F(SystemInstanceTest, WithoutOneToShowItSaysSo) {
  auto& program = start({"show", "at-once"});
  EXPECT_EQ(program.waitForExit(), 0);
  EXPECT_EQ(program.output(), "token \nother silent\n");
}

TEST_F(SystemInstanceTest, NobodyIsStartedToBeShown) {
  const auto mark = (desktop.home() / "was-started").string();
  std::ofstream(desktop.home() / "run/dbus-1/services/app.orvel.Orvel.service")
      << "[D-BUS Service]\nName=app.orvel.Orvel\nExec=/usr/bin/touch " << mark << "\n";
  bus.stop();
  bus.start();
  EXPECT_TRUE(start({"show", "at-once"}).waitForOutput("other silent\n"));
  EXPECT_FALSE(std::filesystem::exists(mark));
}

TEST_F(SystemInstanceTest, OneThatHangsIsNotShown) {
  auto& first = startFirst();
  makeBusy(first);
  auto& second = start({"show"});
  EXPECT_TRUE(second.waitForOutput("other silent\n", Milliseconds(2900))) << second.output();
  EXPECT_TRUE(first.waitForOutput("shown \n")) << "late";
}

TEST_F(SystemInstanceTest, WithoutABusEveryOneIsTheFirst) {
  const TemporaryFolder empty;
  for (const std::string address : {"", "disabled:", "unix:path=/nowhere", "nonsense"}) {
    EXPECT_TRUE(start({}, {{"DBUS_SESSION_BUS_ADDRESS", address}}).waitForOutput("first\n")) << address;
  }
  const ChildProcess::Environment none{{"DBUS_SESSION_BUS_ADDRESS", std::nullopt}, {"XDG_RUNTIME_DIR", empty.path()}};
  EXPECT_TRUE(start({}, none).waitForOutput("first\n"));
  EXPECT_TRUE(start({}, none).waitForOutput("first\n"));
  EXPECT_TRUE(start({"show", "at-once"}, none).waitForOutput("other silent\n"));
  const ChildProcess::Environment another{{"DBUS_SESSION_BUS_ADDRESS", "autolaunch:"},
                                          {"XDG_RUNTIME_DIR", empty.path()}};
  EXPECT_TRUE(start({}, another).waitForOutput("first\n"));
  EXPECT_TRUE(start({}, another).waitForOutput("first\n")) << "none is started";
  EXPECT_TRUE(std::filesystem::is_empty(empty.path()));
}

TEST_F(SystemInstanceTest, TheUsualPlaceOfTheBusIsKnown) {
  const ChildProcess::Environment unnamed{{"DBUS_SESSION_BUS_ADDRESS", std::nullopt}};
  EXPECT_TRUE(start({}, unnamed).waitForOutput("first\n"));
  EXPECT_TRUE(start({}).waitForOutput("second\n"));
}

TEST_F(SystemInstanceTest, ABusThatHangsHoldsUpForAMomentOnly) {
  bus.signal(SIGSTOP);
  EXPECT_TRUE(start().waitForOutput("first\n", Milliseconds(3000)));
  EXPECT_TRUE(start({"show", "at-once"}).waitForOutput("other silent\n", Milliseconds(4000)));
  bus.signal(SIGCONT);
}

TEST_F(SystemInstanceTest, TheEndOfTheBusIsNotTheEndOfTheProgram) {
  auto& first = startFirst();
  bus.stop();
  EXPECT_EQ(first.waitForExit(lull), std::nullopt);
  first.closeInput();
  EXPECT_EQ(first.waitForExit(), 0);
}

struct StrangersTest : SystemInstanceTest {
  /// The name of the error with which a call is answered; empty for success. `arguments` in text form.
  std::string call(const char* interface, const char* method, const std::string& arguments) {
    GError* error = nullptr;
    const GLibPointer<GVariant> parsed(g_variant_parse(nullptr, arguments.c_str(), nullptr, nullptr, nullptr));
    EXPECT_TRUE(parsed) << arguments;
    const GLibPointer<GVariant> reply(g_dbus_connection_call_sync(
        stranger.get(), "app.orvel.Orvel", "/app/orvel/Orvel", interface, method, parsed.get(), nullptr,
        G_DBUS_CALL_FLAGS_NO_AUTO_START, static_cast<int>(timeout.count()), nullptr, &error));
    if (error == nullptr) return {};
    const GLibPointer<char> name(g_dbus_error_get_remote_error(error));
    std::string result = name ? name.get() : error->message;
    g_error_free(error);
    return result;
  }

  std::string call(const char* method, const std::string& arguments) {
    return call("org.freedesktop.Application", method, arguments);
  }

  /// Sends a call without asking for an answer.
  void sendWithoutReply(const char* method, GVariant* arguments) {
    const GLibPointer<GDBusMessage> message(
        g_dbus_message_new_method_call("app.orvel.Orvel", "/app/orvel/Orvel", "org.freedesktop.Application", method));
    g_dbus_message_set_body(message.get(), arguments);
    g_dbus_message_set_flags(message.get(), G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED);
    g_dbus_connection_send_message(stranger.get(), message.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
  }

  std::size_t memoryOf(const ChildProcess& program) {
    std::ifstream file("/proc/" + std::to_string(program.pid()) + "/statm");
    std::size_t pages = 0;
    file >> pages >> pages;
    return pages * 4096;
  }

  ChildProcess& first = startFirst();
  const GLibPointer<GDBusConnection> stranger{g_dbus_connection_new_for_address_sync(
      bus.address().c_str(),
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, nullptr)};
};

TEST_F(StrangersTest, MayShowItInEveryWayThatDesktopsKnow) {
  EXPECT_EQ(call("Activate", "(@a{sv} {},)"), "");
  EXPECT_EQ(call("Activate", "({'activation-token': <'new'>, 'desktop-startup-id': <'old'>},)"), "");
  EXPECT_EQ(call("Activate", "({'desktop-startup-id': <'old'>},)"), "");
  EXPECT_EQ(call("Open", "(['file:///etc/passwd'], {'activation-token': <'opened'>})"), "");
  EXPECT_EQ(call("ActivateAction", "('show', @av [], {'activation-token': <'acted'>})"), "");
  EXPECT_EQ(first.output(), "token \nfirst\nshown \nshown new\nshown old\nshown opened\nshown acted\n");
}

TEST_F(StrangersTest, GetAnErrorForWhatIsWrong) {
  const std::string invalid = "org.freedesktop.DBus.Error.InvalidArgs";
  EXPECT_EQ(call("Activate", "()"), invalid);
  EXPECT_EQ(call("Activate", "('text',)"), invalid);
  EXPECT_EQ(call("Activate", "(@a{sv} {}, 1)"), invalid);
  EXPECT_EQ(call("Activate", "({'activation-token': 'no variant'},)"), invalid);
  EXPECT_EQ(call("Open", "(@a{sv} {},)"), invalid);
  EXPECT_EQ(call("ActivateAction", "('quit', @av [], @a{sv} {})"), invalid);
  EXPECT_EQ(call("ActivateAction", "('', @av [], @a{sv} {})"), invalid);
  EXPECT_EQ(call("Quit", "()"), "org.freedesktop.DBus.Error.UnknownMethod");
  EXPECT_EQ(call("org.example.Other", "Activate", "(@a{sv} {},)"), "org.freedesktop.DBus.Error.UnknownMethod");
  EXPECT_EQ(first.output(), "token \nfirst\n");
}

TEST_F(StrangersTest, CannotPassOffAnythingAsAToken) {
  EXPECT_EQ(call("Activate", "({'activation-token': <17>},)"), "");
  EXPECT_EQ(call("Activate", "({'activation-token': <'" + std::string(5000, 'x') + "'>},)"), "");
  EXPECT_EQ(first.output(), "token \nfirst\nshown \nshown \n");
}

TEST_F(StrangersTest, CannotBringItDownOrMakeItGrow) {
  for (int i = 0; i < 1000; ++i) ASSERT_NE(call("Activate", "(" + std::to_string(i) + ",)"), "") << i;
  const auto before = memoryOf(first);
  makeBusy(first);
  for (int i = 0; i < 300; ++i) {
    GVariantBuilder large;
    g_variant_builder_init(&large, G_VARIANT_TYPE("(a{sv})"));
    g_variant_builder_open(&large, G_VARIANT_TYPE("a{sv}"));
    const std::string padding(100'000, 'x');
    g_variant_builder_add(&large, "{sv}", "padding", g_variant_new_string(padding.c_str()));
    g_variant_builder_close(&large);
    sendWithoutReply("Activate", g_variant_builder_end(&large));
  }
  EXPECT_EQ(call("Activate", "(@a{sv} {},)"), "org.freedesktop.DBus.Error.LimitsExceeded");
  EXPECT_TRUE(!memoryIsMeasurable || memoryOf(first) < before + 10 * megabyte) << memoryOf(first) - before;
  EXPECT_TRUE(first.waitForOutput("shown \n"));
  EXPECT_EQ(call("Activate", "({'activation-token': <'after'>},)"), "");
  EXPECT_TRUE(first.waitForOutput("shown after\n"));
}

}  // namespace
}  // namespace orvel
