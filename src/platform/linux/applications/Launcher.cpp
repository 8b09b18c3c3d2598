#include "platform/linux/applications/Launcher.hpp"

#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/OwnedDescriptor.hpp"
#include "platform/linux/applications/DesktopEntries.hpp"
#include "platform/linux/applications/DesktopWindows.hpp"
#include "platform/linux/applications/ProcessFacts.hpp"
#include "platform/linux/bus/ApplicationObject.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>
#include <system_error>
#include <utility>

namespace orvel {
namespace {

constexpr std::chrono::seconds longestStart{15};
constexpr std::chrono::seconds busTimeout{1};
constexpr auto busAddress = "DBUS_SESSION_BUS_ADDRESS";
constexpr auto noBus = "disabled:";
constexpr auto spawnFlags =
    static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);

/// What happens in the child before it becomes the program: system calls only, for other threads may have held locks.
void startAfresh(void* openFiles) {
  setsid();
  setrlimit(RLIMIT_NOFILE, static_cast<const rlimit*>(openFiles));
  for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

void notePid(GDesktopAppInfo*, GPid process, void* result) {
  *static_cast<pid_t*>(result) = process;
}

/// The connection to the session bus that GIO shares; null without a bus. Nothing when the bus does not answer, for
/// which GIO itself would wait without limit. It must not end this program when the bus ends.
std::optional<GLibPointer<GDBusConnection>> openBus() try {
  const CancelledInTime cancelled{TimeLimit(busTimeout)};
  GLibPointer<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, cancelled.get(), nullptr));
  if (!bus && g_cancellable_is_cancelled(cancelled.get())) return std::nullopt;
  if (bus) g_dbus_connection_set_exit_on_close(bus.get(), false);
  return bus;
} catch (const std::system_error&) {  // no thread to be had
  return std::nullopt;
}

/// The name on the bus of a program that the bus starts; empty for others.
std::string busNameOf(GDesktopAppInfo* info, const std::string& path) {
  if (!g_desktop_app_info_get_boolean(info, G_KEY_FILE_DESKTOP_KEY_DBUS_ACTIVATABLE)) return {};
  const std::string file = path.substr(path.rfind('/') + 1);
  const std::string name = file.substr(0, file.size() - std::min(file.size(), DesktopEntry::suffix.size()));
  return g_dbus_is_interface_name(name.c_str()) ? name : std::string();
}

/// Called when a program that wants to be announced is launched; returns the number of the announcement, which the
/// program gets to know. Empty for none.
using AnnounceLaunch = std::function<std::string()>;

struct LaunchContext {
  GAppLaunchContext parent;
  const AnnounceLaunch* announce;
};

char* announce(GAppLaunchContext* context, GAppInfo*, GList*) {
  const std::string identifier = (*reinterpret_cast<LaunchContext*>(context)->announce)();
  return identifier.empty() ? nullptr : g_strdup(identifier.c_str());
}

void setUpClass(void* type, void*) {
  static_cast<GAppLaunchContextClass*>(type)->get_startup_notify_id = announce;
}

GType contextType() {
  static const GType type = g_type_register_static_simple(g_app_launch_context_get_type(), "OrvelLaunchContext",
                                                          sizeof(GAppLaunchContextClass), setUpClass,
                                                          sizeof(LaunchContext), nullptr, GTypeFlags{});
  return type;
}

/// The context of one launch, as GIO wants it. `announce` must outlive it.
GLibPointer<GAppLaunchContext> makeLaunchContext(const AnnounceLaunch& announce) {
  auto* context = static_cast<LaunchContext*>(g_object_new(contextType(), nullptr));
  context->announce = &announce;
  return GLibPointer<GAppLaunchContext>(&context->parent);
}

}  // namespace

/// A process that was started.
struct Launcher::Process {
  explicit Process(pid_t process)
      : number(process), descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0))) {}

  /// Whether nothing is left that might still show a window. What ends soon may have left the start to others.
  bool isOver() const {
    pollfd end{descriptor.number(), POLLIN, 0};
    const bool hasEnded = end.fd < 0 || poll(&end, 1, 0) > 0;
    return hasEnded && !hasSuccessors(number);
  }

  const pid_t number;
  const OwnedDescriptor descriptor;
};

/// A request to the bus that it start a program. The bus delivers it when the program is there, and only if the
/// connection that sent it is still open.
struct Launcher::BusStart {
  BusStart(MessageBus connection, std::string service) : bus(std::move(connection)), name(std::move(service)) {}

  void begin(const std::string& announced) {
    bus.observe([answered = isAnswered](GDBusConnection*, GDBusMessage* message) {
      const auto type = g_dbus_message_get_message_type(message);
      if (type == G_DBUS_MESSAGE_TYPE_METHOD_RETURN || type == G_DBUS_MESSAGE_TYPE_ERROR) *answered = true;
      return false;
    });
    // GIO's own way would leave the reply to a main loop.
    ApplicationObject::activate(bus, name, announced, TimeLimit(busTimeout));
  }

  /// Whether the program could not be started, or has been there and ended.
  bool isOver() const {
    if (!bus.isAlive()) return true;
    return *isAnswered && !hasOwner();
  }

  bool hasOwner() const {
    const auto reply = bus.call({.destination = "org.freedesktop.DBus",
                                 .path = "/org/freedesktop/DBus",
                                 .interface = "org.freedesktop.DBus",
                                 .method = "NameHasOwner",
                                 .arguments = g_variant_new("(s)", name.c_str()),
                                 .replyType = "(b)"},
                                TimeLimit(busTimeout));
    gboolean isOwned = true;
    if (reply) g_variant_get(reply.get(), "(b)", &isOwned);
    return isOwned != 0;
  }

  const MessageBus bus;
  const std::string name;
  const std::shared_ptr<std::atomic<bool>> isAnswered = std::make_shared<std::atomic<bool>>(false);
};

Launcher::Launcher(ActivationTokens& tokens, const rlimit& openFiles) : tokens_(tokens), openFiles_(openFiles) {
  // GIO would start one.
  if (sessionBusAddress().empty()) setenv(busAddress, noBus, 1);
}

void Launcher::launch(const std::string& path) {
  if (!reserve(path)) return;
  auto launched = spawn(path);
  starts_.withLock([&](Starts& starts) {
    const auto start = starts.find(path);
    if (start == starts.end()) return;
    if (launched) {
      start->second.launched = *std::move(launched);
    } else {
      starts.erase(start);
    }
  });
}

bool Launcher::reserve(const std::string& path) {
  const auto now = std::chrono::steady_clock::now();
  const auto last = starts_.withLock([&](Starts& starts) {
    std::erase_if(starts, [&](const auto& start) { return now - start.second.begun > longestStart; });
    const auto start = starts.find(path);
    return start == starts.end() ? std::nullopt : std::optional(start->second);
  });
  if (last && !isOver(*last)) return false;
  return starts_.withLock([&](Starts& starts) {
    const auto start = starts.find(path);
    // Somebody else may have begun a new one meanwhile.
    if (start != starts.end() && (!last || start->second.begun != last->begun)) return false;
    starts.insert_or_assign(path, Start{.begun = now});
    return true;
  });
}

bool Launcher::isOver(const Start& start) {
  if (start.launched.process) return start.launched.process->isOver();
  return start.launched.bus && start.launched.bus->isOver();
}

void Launcher::hasStarted(const std::string& path) {
  starts_.withLock([&](Starts& starts) {
    const auto start = starts.find(path);
    if (start != starts.end() && (start->second.launched.process || start->second.launched.bus)) {
      starts.erase(start);
    }
  });
}

std::optional<Launcher::Launched> Launcher::spawn(const std::string& path) {
  const GLibPointer<GDesktopAppInfo> info(g_desktop_app_info_new_from_filename(path.c_str()));
  if (!info || g_desktop_app_info_get_is_hidden(info.get())) return std::nullopt;
  std::string announced;
  const AnnounceLaunch announceIt = [&] {
    announced = tokens_.issue(g_app_info_get_name(G_APP_INFO(info.get())), path);
    return announced;
  };
  auto opened = openBus();
  if (!opened) return std::nullopt;
  const std::string busName = busNameOf(info.get(), path);
  auto bus = busName.empty() ? std::nullopt : MessageBus::open(sessionBusAddress(), TimeLimit(busTimeout));
  if (bus) {
    const bool isAnnounced = g_desktop_app_info_get_boolean(info.get(), G_KEY_FILE_DESKTOP_KEY_STARTUP_NOTIFY);
    auto start = std::make_shared<BusStart>(*std::move(bus), busName);
    start->begin(isAnnounced ? announceIt() : std::string());
    return Launched{.bus = std::move(start)};
  }
  const auto context = makeLaunchContext(announceIt);
  if (sessionBusAddress() == noBus) g_app_launch_context_unsetenv(context.get(), busAddress);
  pid_t process = 0;
  rlimit openFiles = openFiles_;
  const bool isLaunched = g_desktop_app_info_launch_uris_as_manager(
      info.get(), nullptr, context.get(), spawnFlags, startAfresh, &openFiles, notePid, &process, nullptr);
  if (!isLaunched && !announced.empty()) tokens_.revoke(announced);
  if (!isLaunched) return std::nullopt;
  return Launched{.process = std::make_shared<const Process>(process)};
}

}  // namespace orvel
