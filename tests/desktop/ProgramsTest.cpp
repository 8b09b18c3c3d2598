#include "catalog/AppCatalog.hpp"
#include "desktop/ActivationRecorder.hpp"
#include "desktop/LeafFixture.hpp"
#include "desktop/WindowManager.hpp"
#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/SystemApplicationBundles.hpp"

#include <glib.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <list>
#include <map>
#include <sstream>
#include <thread>

namespace orvel {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

/// A desktop whose environment this program shares, as Orvel does.
class SharedDesktop {
 public:
  SharedDesktop() {
    auto environment = desktop.environment();
    environment["XDG_DATA_DIRS"] = (desktop.home() / "system").string();
    environment["XDG_CURRENT_DESKTOP"] = "Orvel-Test";
    environment["LANGUAGE"] = "de";
    // No launch shall find, or start, a bus of another desktop.
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (desktop.home() / "run/no-bus").string();
    for (const auto& [name, value] : environment) {
      if (value) {
        setenv(name.c_str(), value->c_str(), 1);
      } else {
        unsetenv(name.c_str());
      }
    }
  }

  VirtualDesktop desktop;
};

struct ProgramsTest : testing::Test {
  /// Writes an entry of the user, and returns its path.
  std::string writeEntry(const std::string& name, const std::string& lines) const {
    const fs::path path = shared.desktop.home() / ".local/share/applications" / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << "[Desktop Entry]\nType=Application\n" << lines << "\n";
    return path.string();
  }

  /// Starts a program and waits until its windows are there.
  ChildProcess& start(const Texts& arguments, const ChildProcess::Environment& environment = {}) {
    Texts command{PLAIN_WINDOW};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ChildProcess& program =
        programs.emplace_back(ChildProcess::Program{.command = command, .environment = environment});
    EXPECT_TRUE(eventually([&] { return !manager.windowsOf(arguments[1]).empty(); })) << arguments[1].substr(0, 40);
    return program;
  }

  static bool eventually(const std::function<bool()>& isSo, Milliseconds limit = timeout) {
    const Deadline deadline(limit);
    while (!isSo()) {
      if (deadline.left() == Milliseconds(0)) return false;
      std::this_thread::sleep_for(Milliseconds(5));
    }
    return true;
  }

  std::vector<RunningApplication> reported() {
    const auto applications = workspace.runningApplications();
    EXPECT_TRUE(applications);
    return applications.value_or(std::vector<RunningApplication>{});
  }

  /// The running programs that people switch to.
  Texts running() {
    Texts identifiers;
    for (const auto& application : reported()) {
      if (application.isRegular) identifiers.push_back(application.identifier.value_or("none"));
    }
    return identifiers;
  }

  RunningApplication application(const std::string& identifier) {
    for (const auto& application : reported()) {
      if (application.identifier == identifier) return application;
    }
    ADD_FAILURE() << identifier << " does not run";
    return {};
  }

  /// Takes away a property of the root window.
  void removeFromRoot(const std::string& property) const {
    xcb_connection_t* connection = xcb_connect(shared.desktop.display().c_str(), nullptr);
    const auto cookie = xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(property.size()), property.c_str());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), std::free);
    ASSERT_TRUE(reply);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto done = xcb_delete_property_checked(connection, root, reply->atom);
    EXPECT_EQ(xcb_request_check(connection, done), nullptr);
    xcb_disconnect(connection);
  }

  SharedDesktop shared;
  WindowManager manager{shared.desktop};
  LeafSet leaves{shared.desktop};
  SystemWorkspace& workspace = leaves.workspace;
  std::list<ChildProcess> programs;
};

TEST_F(ProgramsTest, StandInTheOrderInWhichTheyCame) {
  writeEntry("zebra.desktop", "Name=Zebra\nName[de]=Zebrastreifen\nExec=true");
  start({"zebra", "Zebra"});
  start({"aardvark", "Aardvark"});
  start({"monkey", "Monkey"});
  EXPECT_EQ(running(), (Texts{"zebra", "Aardvark", "Monkey"}));
  EXPECT_EQ(application("zebra").name, "Zebrastreifen");
  EXPECT_EQ(application("zebra").location,
            (shared.desktop.home() / ".local/share/applications/zebra.desktop").string());
  EXPECT_EQ(application("Monkey").name, "Monkey") << "without an entry it is known by the class of its windows";
  EXPECT_EQ(application("Monkey").location, std::nullopt);
}

TEST_F(ProgramsTest, AreFoundByTheirGTKIdentifier) {
  writeEntry("org.example.Right.desktop", "Name=A\nExec=true");
  writeEntry("wrong.desktop", "Name=B\nExec=true\nStartupWMClass=Wrong");
  start({"wrong", "Wrong", "gtk=org.example.Right"});
  EXPECT_EQ(running(), Texts{"org.example.Right"});
}

TEST_F(ProgramsTest, AreFoundByTheEntryThatLaunchedThem) {
  writeEntry("wrong.desktop", "Name=B\nExec=true\nStartupWMClass=Wrong");
  const auto entry = writeEntry("sub/right.desktop", std::string("Name=A\nExec=") + PLAIN_WINDOW + " wrong Wrong");
  workspace.open(entry);
  EXPECT_TRUE(eventually([&] { return running() == Texts{"sub-right"}; }));
}

TEST_F(ProgramsTest, AreNotTakenForWhatTheyWereStartedFrom) {
  const auto entry = writeEntry("terminal.desktop", "Name=Terminal\nExec=true");
  start({"tool", "Tool"}, {{"GIO_LAUNCHED_DESKTOP_FILE", entry}, {"GIO_LAUNCHED_DESKTOP_FILE_PID", "1"}});
  EXPECT_EQ(running(), Texts{"Tool"});
}

TEST_F(ProgramsTest, AreFoundByTheClassThatTheirEntryNames) {
  writeEntry("right.desktop", "Name=A\nExec=true\nStartupWMClass=special_instance");
  writeEntry("browser.desktop", "Name=B\nExec=true\nStartupWMClass=Browser");
  start({"special_instance", "Browser"});
  EXPECT_EQ(running(), Texts{"right"}) << "programs of one browser differ by their instance";
}

TEST_F(ProgramsTest, AreFoundByTheirClassHoweverItIsWritten) {
  writeEntry("org.example.Editor.desktop", "Name=A\nExec=true");
  writeEntry("gimp-2.10.desktop", "Name=B\nExec=true");
  start({"x", "eDITOR"});
  start({"gimp-2.10", "Other"});
  EXPECT_EQ(running(), (Texts{"org.example.Editor", "gimp-2.10"}));
}

TEST_F(ProgramsTest, AreFoundByTheNameOfTheirProgram) {
  writeEntry("right.desktop", std::string("Name=A\nExec=") + PLAIN_WINDOW + " %U");
  writeEntry("inTerminal.desktop", std::string("Name=B\nTerminal=true\nExec=") + PLAIN_WINDOW);
  writeEntry("unlisted.desktop", std::string("Name=C\nNoDisplay=true\nExec=") + PLAIN_WINDOW);
  start({"odd", "Odd"});
  EXPECT_EQ(running(), Texts{"right"});
  writeEntry("another.desktop", std::string("Name=D\nExec=") + PLAIN_WINDOW + " --other");
  EXPECT_EQ(running(), Texts{"Odd"}) << "a program that several entries start says nothing";
}

TEST_F(ProgramsTest, WithoutAWindowForPeopleAreNotRegular) {
  start({"skipping", "Skipping", "skip"});
  start({"panel", "Panel", "type=DOCK"});
  start({"splash", "Splash", "type=SPLASH"});
  start({"dialog", "Dialog", "type=DIALOG"});
  EXPECT_EQ(running(), Texts{"Dialog"});
}

TEST_F(ProgramsTest, WithSeveralWindowsAreOne) {
  start({"many", "Many", "windows=3", "dialog"});
  ASSERT_TRUE(eventually([&] { return manager.windowsOf("Many").size() == 3; }));
  EXPECT_EQ(running(), Texts{"Many"});
  start({"many", "Many"});
  ASSERT_TRUE(eventually([&] { return manager.windowsOf("Many").size() == 4; }));
  EXPECT_EQ(running(), (Texts{"Many", "Many"})) << "another process is another instance";
}

TEST_F(ProgramsTest, WithHostilePropertiesDoNoHarm) {
  start({std::string(100'000, 'i'), "c", "gtk=" + std::string(90'000, 'g'), "type=NORMAL"});
  start({"caf\xe9", "caf\xe9"});
  start({"", "OnlyClass"});
  EXPECT_EQ(running().back(), "OnlyClass");
  EXPECT_EQ(running().size(), 2u) << "a name that is no text has no identifier";
}

TEST_F(ProgramsTest, AreNoneWithoutAWindowManager) {
  start({"lonely", "Lonely"});
  ASSERT_EQ(running(), Texts{"Lonely"});
  manager.kill();
  EXPECT_EQ(running(), Texts{});
}

TEST_F(ProgramsTest, AreNoneWithoutAServer) {
  start({"lonely", "Lonely"});
  const auto lonely = application("Lonely");
  shared.desktop.killServer();
  EXPECT_TRUE(leaves.waitForEnd());
  EXPECT_EQ(running(), Texts{});
  workspace.activate(lonely);
  workspace.terminate(lonely);
}

TEST_F(ProgramsTest, ComeToTheFront) {
  start({"one", "One"});
  start({"two", "Two"});
  ASSERT_TRUE(eventually([&] { return manager.activeWindow() == manager.windowsOf("Two").front(); }));
  workspace.activate(application("One"));
  EXPECT_TRUE(eventually([&] { return manager.activeWindow() == manager.windowsOf("One").front(); }));
  EXPECT_EQ(manager.stacking().back(), manager.windowsOf("One").front());
}

TEST_F(ProgramsTest, BringAllTheirWindowsInTheirOrder) {
  start({"many", "Many", "windows=2"});
  ASSERT_TRUE(eventually([&] { return manager.windowsOf("Many").size() == 2; }));
  start({"top", "Top"});
  ASSERT_TRUE(eventually([&] { return manager.activeWindow() == manager.windowsOf("Top").front(); }));
  auto expected = manager.stacking();
  expected.erase(std::find(expected.begin(), expected.end(), manager.windowsOf("Top").front()));
  workspace.activate(application("Many"));
  EXPECT_TRUE(eventually([&] { return manager.activeWindow() == expected.back(); }));
  expected.insert(expected.begin(), manager.windowsOf("Top").front());
  EXPECT_TRUE(eventually([&] { return manager.stacking() == expected; }));
}

TEST_F(ProgramsTest, ComeToTheFrontWithoutAWordOfTheStack) {
  start({"one", "One"});
  start({"two", "Two"});
  ASSERT_TRUE(eventually([&] { return manager.activeWindow() == manager.windowsOf("Two").front(); }));
  removeFromRoot("_NET_CLIENT_LIST_STACKING");
  workspace.activate(application("One"));
  EXPECT_TRUE(eventually([&] { return manager.activeWindow() == manager.windowsOf("One").front(); }));
}

TEST_F(ProgramsTest, ComeBackWhenMinimised) {
  start({"small", "Small"});
  start({"other", "Other"});
  const auto window = manager.windowsOf("Small").front();
  manager.minimise(window);
  ASSERT_TRUE(eventually([&] { return manager.isMinimised(window); }));
  ASSERT_EQ(running(), (Texts{"Small", "Other"}));
  workspace.activate(application("Small"));
  EXPECT_TRUE(eventually([&] { return manager.activeWindow() == window && !manager.isMinimised(window); }));
}

TEST_F(ProgramsTest, AreFollowedToTheirWorkspace) {
  start({"far", "Far"});
  const auto window = manager.windowsOf("Far").front();
  ASSERT_TRUE(eventually([&] { return manager.activeWindow() == window; }));
  manager.moveToWorkspace(window, 2);
  ASSERT_TRUE(eventually([&] { return manager.activeWindow() != window; }));
  workspace.activate(application("Far"));
  EXPECT_TRUE(eventually([&] { return manager.currentWorkspace() == 2 && manager.activeWindow() == window; }));
}

TEST_F(ProgramsTest, ThatHaveGoneAreLeftAlone) {
  ChildProcess& gone = start({"gone", "Gone"});
  start({"here", "Here"});
  const auto application = this->application("Gone");
  gone.signal(SIGKILL);
  gone.waitForExit();
  ASSERT_TRUE(eventually([&] { return running() == Texts{"Here"}; }));
  workspace.activate(application);
  workspace.terminate(application);
  EXPECT_EQ(running(), Texts{"Here"});
}

TEST_F(ProgramsTest, EndWhenAllTheirWindowsAreAskedToClose) {
  ChildProcess& ending = start({"ending", "Ending", "windows=3"});
  ChildProcess& staying = start({"staying", "Staying"});
  ASSERT_TRUE(eventually([&] { return manager.windowsOf("Ending").size() == 3; }));
  workspace.terminate(application("Ending"));
  EXPECT_EQ(ending.waitForExit(), 0);
  EXPECT_EQ(running(), Texts{"Staying"});
  EXPECT_EQ(staying.waitForExit(lull), std::nullopt);
}

TEST_F(ProgramsTest, MayRefuseToEnd) {
  ChildProcess& refusing = start({"refusing", "Refusing", "refuse"});
  workspace.terminate(application("Refusing"));
  EXPECT_EQ(refusing.waitForExit(lull), std::nullopt);
  EXPECT_EQ(running(), Texts{"Refusing"});
}

TEST_F(ProgramsTest, ThatCannotBeAskedToEndAreNotEndedByForce) {
  ChildProcess& unasked = start({"unasked", "Unasked", "unasked"});
  start({"polite", "Polite"});
  workspace.terminate(application("Unasked"));
  workspace.terminate(application("Polite"));
  EXPECT_TRUE(eventually([&] { return manager.windowsOf("Polite").empty(); })) << "the window manager was asked later";
  EXPECT_EQ(unasked.waitForExit(lull), std::nullopt);
  EXPECT_EQ(running(), Texts{"Unasked"});
}

/// The bytes that a base64 text stands for. Nothing when it is none.
std::optional<std::string> decoded(const std::string& base64) {
  const GLibPointer<char> text(g_strdup(base64.c_str()));
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
  if (base64.size() % 4 != 0 || base64.find_first_not_of(alphabet) != std::string::npos) return std::nullopt;
  gsize length = 0;
  g_base64_decode_inplace(text.get(), &length);
  return std::string(text.get(), length);
}

struct ProgramIconTest : ProgramsTest {
  void writeFile(const std::string& name, const std::string& content) const {
    const fs::path path = shared.desktop.home() / ".local/share" / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << content;
  }

  static std::string svg(const std::string& content) {
    return R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16">)" + content + "</svg>";
  }

  /// What a phone gets as the icon of the only program.
  std::optional<QImage> icon() {
    const DataFolders folders = DataFolders::ofUser();
    DesktopEntries entries(folders.shared);
    SystemApplicationBundles bundles(entries);
    AppCatalog catalog(workspace, bundles);
    const auto text = catalog.icon("terminal", 56);
    const auto png = text ? decoded(*text) : std::nullopt;
    QImage image;
    const bool isPNG = png && image.loadFromData(QByteArray::fromStdString(*png), "PNG");
    return isPNG ? std::optional(image) : std::nullopt;
  }
};

TEST_F(ProgramIconTest, IsAPNGInBase64) {
  writeEntry("terminal.desktop", "Name=Terminal\nExec=true\nIcon=terminal");
  writeFile("pixmaps/terminal.svg", svg(R"(<rect width="16" height="16" fill="#ff0000"/>)"));
  const auto image = icon();
  ASSERT_TRUE(image);
  EXPECT_EQ(image->size(), QSize(56, 56));
  EXPECT_EQ(image->pixelColor(28, 28), QColor(Qt::red));
}

TEST_F(ProgramIconTest, IsTheNextThatCanBeDrawnWhereTheBestCannot) {
  writeEntry("terminal.desktop", "Name=Terminal\nExec=true\nIcon=terminal");
  writeFile("icons/hicolor/index.theme",
            "[Icon Theme]\nName=hicolor\nDirectories=scalable/apps,48x48/apps\n"
            "[scalable/apps]\nSize=48\nMinSize=8\nMaxSize=512\nType=Scalable\n[48x48/apps]\nSize=48\nType=Fixed\n");
  writeFile("icons/hicolor/scalable/apps/terminal.svg", svg(R"(<text x="0" y="12">X</text>)"));
  writeFile("icons/hicolor/48x48/apps/terminal.png", "no picture at all");
  EXPECT_FALSE(icon()) << "an empty picture is no icon";
  writeFile("pixmaps/terminal.svg", svg(R"(<rect width="16" height="16" fill="#00ff00"/>)"));
  const auto image = icon();
  ASSERT_TRUE(image);
  EXPECT_EQ(image->pixelColor(28, 28), QColor(Qt::green));
}

TEST_F(ProgramIconTest, IsNotOfAThemeThatARelativeConfigurationFolderNames) {
  writeEntry("terminal.desktop", "Name=Terminal\nExec=true\nIcon=terminal");
  for (const auto& [theme, colour] : {std::pair("Absolute", "#00ff00"), std::pair("Relative", "#ff0000")}) {
    const std::string folder = std::string("icons/") + theme;
    writeFile(folder + "/index.theme", "[Icon Theme]\nName=A\nDirectories=apps\n[apps]\nSize=48\nType=Fixed\n");
    writeFile(folder + "/apps/terminal.svg",
              svg(std::string(R"(<rect width="16" height="16" fill=")") + colour + "\"/>"));
  }
  const std::string settings = "[Settings]\ngtk-icon-theme-name=";
  writeFile("../../.config/gtk-3.0/settings.ini", settings + "Absolute\n");
  writeFile("../../relative/gtk-3.0/settings.ini", settings + "Relative\n");
  fs::current_path(shared.desktop.home());
  setenv("XDG_CONFIG_HOME", "relative", 1);
  LeafSet later(shared.desktop);
  const auto entry = shared.desktop.home() / ".local/share/applications/terminal.desktop";
  const auto png = later.workspace.icon(entry.string(), 56);
  ASSERT_TRUE(png);
  QImage image;
  ASSERT_TRUE(image.loadFromData(png->data(), static_cast<int>(png->size()), "PNG"));
  EXPECT_EQ(image.pixelColor(28, 28), QColor(Qt::green));
}

struct LaunchTest : ProgramsTest {
  fs::path reportPath() const { return shared.desktop.home() / "report"; }

  /// An entry of a program that writes down how it was started.
  std::string writeReporter(const std::string& options, const std::string& lines = "") const {
    return writeEntry("reporter.desktop", std::string("Name=Reporter\nExec=env ") + PLAIN_WINDOW +
                                              " reporter Reporter " + options + " \"report=" + reportPath().string() +
                                              "\"\n" + lines);
  }

  /// What it has written, line by line; nothing when it does not start.
  Texts report() const {
    if (!eventually([&] { return fs::exists(reportPath()); })) return {};
    std::ifstream file(reportPath());
    Texts lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
  }

  pid_t reporter() const {
    const auto lines = report();
    return lines.empty() ? 0 : std::stoi(lines.front().substr(std::string("process ").size()));
  }

  /// An entry of a program that adds a line to the report, does as `lines` say, and ends.
  std::string writeScript(const std::string& lines, const std::string& more = "") const {
    const fs::path script = shared.desktop.home() / "script";
    std::ofstream(script) << "#!/bin/sh\necho started >>" << reportPath() << "\n" << lines << "\n";
    fs::permissions(script, fs::perms::owner_all);
    return writeEntry("org.example.Script.desktop", "Name=Script\nExec=" + script.string() + "\n" + more);
  }

  /// Starts a bus of this desktop, with a service that is the script.
  std::unique_ptr<ChildProcess> startBus() const {
    const fs::path services = shared.desktop.home() / ".local/share/dbus-1/services";
    fs::create_directories(services);
    std::ofstream(services / "org.example.Script.service")
        << "[D-BUS Service]\nName=org.example.Script\nExec=" << (shared.desktop.home() / "script").string() << "\n";
    const std::string address = "unix:path=" + (shared.desktop.home() / "run/bus").string();
    setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    auto bus = std::make_unique<ChildProcess>(
        ChildProcess::Program{.command = {"dbus-daemon", "--session", "--nofork", "--nosyslog", "--print-address=1",
                                          "--address=" + address}});
    EXPECT_TRUE(bus->waitForOutput("unix:path="));
    return bus;
  }

  /// Opens it time and again, as an impatient person does, and waits for what that leads to.
  void openOften(const std::string& entry) {
    for (int i = 0; i < 5; ++i) {
      workspace.open(entry);
      std::this_thread::sleep_for(lull);
    }
  }

  /// Whether opening it leads to so many starts of the script in all, in less time than any start may last.
  bool startsAgain(const std::string& entry, std::size_t starts) {
    return eventually(
        [&] {
          workspace.open(entry);
          return report().size() >= starts;
        },
        soon);
  }

  /// Where the script's successor writes its number.
  fs::path successorPath() const { return shared.desktop.home() / "successor"; }

  void endSuccessor() const {
    pid_t process = 0;
    ASSERT_TRUE(eventually([&] { return std::ifstream(successorPath()) >> process && lives(process); }));
    kill(process, SIGKILL);
    EXPECT_TRUE(eventually([&] { return !lives(process); }));
  }

  static constexpr Milliseconds soon{2000};

  static bool lives(pid_t process) { return process > 0 && fs::exists("/proc/" + std::to_string(process) + "/exe"); }
};

bool contains(const Texts& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

TEST_F(LaunchTest, TheProgramOutlivesWhoLaunchedItAndHasNothingOfIt) {
  const auto entry = writeReporter("");
  ChildProcess launcher({.command = {"sh", "-c", "ulimit -Sn 512 && exec \"$0\" \"$1\"", LAUNCH_AND_LEAVE, entry}});
  ASSERT_EQ(launcher.waitForExit(), 0) << launcher.output();
  const auto lines = report();
  EXPECT_TRUE(eventually([&] { return running() == Texts{"reporter"}; }));
  for (const char* line : {"open files 512", "own session yes", "0 /dev/null", "1 /dev/null", "2 /dev/null",
                           "SigBlk:\t0000000000000000", "SigIgn:\t0000000000000000", "startup none"}) {
    EXPECT_TRUE(contains(lines, line)) << line << " in " << testing::PrintToString(lines);
  }
}

TEST_F(LaunchTest, AProgramThatWantsToBeAnnouncedGetsTheTimeOfItsLaunch) {
  workspace.open(writeReporter("", "StartupNotify=true"));
  const auto lines = report();
  ASSERT_FALSE(lines.empty());
  const std::string startup = lines.back();
  const auto time = startup.find("_TIME");
  ASSERT_NE(time, std::string::npos) << startup;
  EXPECT_GT(std::stoul(startup.substr(time + 5)), 0u);
  EXPECT_TRUE(eventually([&] { return !manager.windowsOf("Reporter").empty(); }));
  EXPECT_TRUE(eventually([&] { return manager.activeWindow() == manager.windowsOf("Reporter").front(); }));
}

TEST_F(LaunchTest, AProgramThatIsStartingIsNotStartedAgain) {
  const auto entry = writeReporter("hidden");
  std::vector<std::future<void>> phones;
  for (int i = 0; i < 4; ++i) phones.push_back(std::async(std::launch::async, [&] { workspace.open(entry); }));
  for (auto& phone : phones) phone.get();
  const pid_t first = reporter();
  ASSERT_TRUE(lives(first));
  fs::remove(reportPath());
  workspace.open(entry);
  EXPECT_FALSE(eventually([&] { return fs::exists(reportPath()); }, lull));

  kill(first, SIGKILL);
  ASSERT_TRUE(eventually([&] { return !lives(first); }));
  EXPECT_TRUE(eventually([&] {
    workspace.open(entry);
    return fs::exists(reportPath());
  })) << "one that has ended is started anew";
  const pid_t second = reporter();
  EXPECT_NE(second, first);
  kill(second, SIGKILL);
}

TEST_F(LaunchTest, AProgramThatHasEndedIsStartedAgainAtOnce) {
  const auto entry = writeScript("");
  for (std::size_t starts = 1; starts <= 3; ++starts) EXPECT_TRUE(startsAgain(entry, starts)) << starts;
}

TEST_F(LaunchTest, AProgramWhoseFirstProcessHasHandedTheStartOnIsStillStarting) {
  const std::string path = successorPath().string();
  const std::string successor = "sh -c 'echo $$ >" + path + "; exec sleep 30' & ";
  for (const std::string& start : {successor, "env -i PATH=$PATH " + successor, "setsid " + successor}) {
    const auto entry = writeScript("rm -f " + path + "; " + start + "while ! [ -s " + path + " ]; do sleep 0.01; done");
    openOften(entry);
    EXPECT_EQ(report(), Texts{"started"}) << start;
    endSuccessor();
    EXPECT_TRUE(startsAgain(entry, 2)) << "the last of it has ended: " << start;
    endSuccessor();
    fs::remove(reportPath());
  }
}

TEST_F(LaunchTest, AProgramThatTheBusCannotStartMayBeTriedAgainAtOnce) {
  const auto bus = startBus();
  const auto entry = writeScript("exit 1", "DBusActivatable=true");
  for (std::size_t starts = 1; starts <= 2; ++starts) EXPECT_TRUE(startsAgain(entry, starts)) << starts;
}

TEST_F(LaunchTest, AProgramThatTheBusStartsIsStartedOnce) {
  const auto bus = startBus();
  openOften(writeScript("", "DBusActivatable=true"));
  EXPECT_EQ(report(), Texts{"started"});
}

TEST_F(LaunchTest, AProgramThatTheBusStartsGetsTheActivationTokenInBothItsForms) {
  const auto bus = startBus();
  const ActivationRecorder program(std::getenv("DBUS_SESSION_BUS_ADDRESS"), "org.example.Script");
  workspace.open(writeScript("", "DBusActivatable=true\nStartupNotify=true"));
  ASSERT_TRUE(eventually([&] { return program.requests().size() == 1; }));
  auto data = program.requests().front();
  EXPECT_NE(data["desktop-startup-id"].find("_TIME"), std::string::npos) << testing::PrintToString(data);
  EXPECT_EQ(data["activation-token"], data["desktop-startup-id"]);
}

TEST_F(LaunchTest, ABusThatDoesNotAnswerHoldsNothingUp) {
  const auto bus = startBus();
  const auto entry = writeScript("");
  bus->signal(SIGSTOP);
  auto opening = std::async(std::launch::async, [&] { workspace.open(entry); });
  EXPECT_EQ(opening.wait_for(timeout / 2), std::future_status::ready);
  bus->signal(SIGCONT);
  opening.get();
  EXPECT_FALSE(fs::exists(reportPath()));
  workspace.open(entry);
  EXPECT_TRUE(eventually([&] { return fs::exists(reportPath()); }, timeout / 4)) << "what failed may be tried again";
}

TEST_F(LaunchTest, NoBusIsStarted) {
  const fs::path starter = shared.desktop.home() / "bin/dbus-launch";
  fs::create_directories(starter.parent_path());
  std::ofstream(starter) << "#!/bin/sh\necho bus >>" << reportPath() << "\n";
  fs::permissions(starter, fs::perms::owner_all);
  setenv("PATH", (starter.parent_path().string() + ":" + std::getenv("PATH")).c_str(), 1);
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  LeafSet withoutBus(shared.desktop);
  withoutBus.workspace.open(writeScript("echo \"bus ${DBUS_SESSION_BUS_ADDRESS-none}\" >>" + reportPath().string()));
  EXPECT_TRUE(eventually([&] { return report().size() == 2; }));
  EXPECT_EQ(report(), (Texts{"started", "bus none"}));
}

TEST_F(LaunchTest, AProgramThatHasShownAWindowStartsNoMore) {
  const auto entry = writeReporter("");
  workspace.open(entry);
  ASSERT_TRUE(eventually([&] { return running() == Texts{"reporter"}; }));
  fs::remove(reportPath());
  workspace.open(entry);
  EXPECT_TRUE(eventually([&] { return running().size() == 2; })) << "whether it runs is asked by who opens it";
}

TEST_F(LaunchTest, NoChildIsLeftBehind) {
  workspace.open(writeReporter("hidden"));
  const pid_t process = reporter();
  kill(process, SIGKILL);
  EXPECT_TRUE(eventually([&] { return !lives(process); }));
  const auto isOurs = [](const fs::path& stat) {
    std::ifstream file(stat);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::istringstream rest(text.substr(std::min(text.rfind(')') + 1, text.size())));
    std::string state;
    pid_t parent = 0;
    rest >> state >> parent;
    return state == "Z" && parent == getpid();
  };
  for (const auto& item : fs::directory_iterator("/proc")) {
    const bool isProcess = std::isdigit(item.path().filename().string().front()) != 0;
    EXPECT_FALSE(isProcess && isOurs(item.path() / "stat")) << item.path();
  }
}

TEST_F(LaunchTest, AProgramMayBeStartedByTheBusWhoseEndIsNotOurs) {
  const std::string address = "unix:path=" + (shared.desktop.home() / "run/bus").string();
  const fs::path services = shared.desktop.home() / ".local/share/dbus-1/services";
  fs::create_directories(services);
  std::ofstream(services / "org.example.Service.service")
      << "[D-BUS Service]\nName=org.example.Service\nExec=" << PLAIN_WINDOW
      << " service Service gtk=org.example.Service\n";
  std::ofstream(services / "org.example.Other.service")
      << "[D-BUS Service]\nName=org.example.Other\nExec=" << PLAIN_WINDOW << " other Other gtk=org.example.Other\n";
  const ChildProcess::Program daemon{
      .command = {"dbus-daemon", "--session", "--nofork", "--nosyslog", "--print-address=1", "--address=" + address}};
  std::optional<ChildProcess> bus(daemon);
  ASSERT_TRUE(bus->waitForOutput("unix:path="));
  setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
  workspace.open(writeEntry("org.example.Service.desktop", "Name=Service\nExec=false\nDBusActivatable=true"));
  EXPECT_TRUE(eventually([&] { return running() == Texts{"org.example.Service"}; }));
  bus->signal(SIGKILL);
  bus->waitForExit();
  std::this_thread::sleep_for(lull);
  EXPECT_EQ(running(), Texts{"org.example.Service"});

  fs::remove(shared.desktop.home() / "run/bus");
  bus.emplace(daemon);
  ASSERT_TRUE(bus->waitForOutput("unix:path="));
  workspace.open(writeEntry("org.example.Other.desktop", "Name=Other\nExec=false\nDBusActivatable=true"));
  EXPECT_TRUE(eventually([&] { return running() == (Texts{"org.example.Service", "org.example.Other"}); }));
}

TEST_F(LaunchTest, WhatCannotStartHasNoEffect) {
  workspace.open(shared.desktop.home() / "missing.desktop");
  workspace.open("/dev/zero");
  workspace.open(writeEntry("missing.desktop", "Name=A\nExec=/nonexistent/program"));
  workspace.open(writeEntry("hidden.desktop", std::string("Name=A\nHidden=true\nExec=") + PLAIN_WINDOW + " a A"));
  EXPECT_FALSE(eventually([&] { return !running().empty(); }, lull));
}

TEST_F(LaunchTest, TheCatalogStartsSwitchesAndEnds) {
  writeReporter("");
  const DataFolders folders = DataFolders::ofUser();
  DesktopEntries entries(folders.shared);
  SystemApplicationBundles bundles(entries);
  AppCatalog catalog(workspace, bundles);
  EXPECT_EQ(catalog.snapshot(), (std::vector<AppEntry>{{"reporter", "Reporter", false}}));
  catalog.activate("reporter");
  ASSERT_TRUE(eventually([&] { return running() == Texts{"reporter"}; }));
  EXPECT_EQ(catalog.snapshot(), (std::vector<AppEntry>{{"reporter", "Reporter", true}}));
  start({"front", "Front"});
  catalog.activate("reporter");
  EXPECT_TRUE(eventually([&] { return manager.activeWindow() == manager.windowsOf("Reporter").front(); }));
  EXPECT_EQ(running(), (Texts{"reporter", "Front"})) << "no second one";
  catalog.quit("reporter");
  EXPECT_TRUE(eventually([&] { return running() == Texts{"Front"}; }));
}

}  // namespace
}  // namespace orvel
