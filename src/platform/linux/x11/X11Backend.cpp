#include "platform/linux/x11/X11Backend.hpp"

#include "platform/linux/files/Files.hpp"
#include "platform/linux/x11/WindowSearch.hpp"
#include "platform/linux/x11/X11BackendKind.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Tray.hpp"

#include <sys/socket.h>

#include <QGuiApplication>
#include <utility>

namespace orvel {
namespace {

int socketOfToolkit() {
  if (qGuiApp == nullptr) return -1;
  const auto* toolkit = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return toolkit == nullptr ? -1 : xcb_get_file_descriptor(toolkit->connection());
}

std::string displayName() {
  return environmentVariable("DISPLAY");
}

bool isPresent() {
  return !displayName().empty();
}

std::optional<std::string> missing() {
  if (X11Connection::open(displayName())) return std::nullopt;
  return "no X display answers at \"" + displayName() + "\".";
}

std::unique_ptr<Backend> openBackend() {
  const std::string display = displayName();
  auto connection = X11Connection::open(display);
  return connection ? std::make_unique<X11Backend>(std::move(connection), display) : nullptr;
}

std::optional<std::string> inputObstacle() {
  // Another computer's display, such as that of whoever has logged in from there, says nothing of this one.
  const auto connection = displayName().starts_with(':') ? X11Connection::open(displayName()) : nullptr;
  if (!connection) return std::nullopt;
  X11TrustCheck trust(*connection);
  return trust.isTrusted() ? std::nullopt : std::optional(trust.notice().explanation);
}

}  // namespace

BackendKind x11BackendKind() {
  return {.isPresent = isPresent,
          .missing = missing,
          .toolkitPlatform = "xcb",
          .open = openBackend,
          .inputObstacle = inputObstacle};
}

X11Backend::X11Backend(std::unique_ptr<X11Connection> connection, const std::string& display)
    : connection_(std::move(connection)),
      toolkitSocket_(socketOfToolkit()),
      atoms_(*connection_),
      time_(*connection_),
      activationTokens_(*connection_, atoms_, time_),
      capture_(*connection_, display),
      displays_(*connection_),
      events_(*connection_, displays_),
      foreground_(*connection_, atoms_),
      presses_(*connection_),
      screenRecording_(*connection_),
      theme_(*connection_),
      trust_(*connection_),
      windows_(*connection_, atoms_, time_) {}

X11Backend::~X11Backend() {
  // Before the leaves go to which its thread dispatches.
  connection_->stopListening();
}

std::optional<WindowAtPoint> X11Backend::windowAt(Point position) {
  return findWindowAt(*connection_, position);
}

std::unique_ptr<EmbeddingTray> X11Backend::makeEmbeddingTray(std::function<void()> changed) {
  return std::make_unique<X11Tray>(std::move(changed));
}

bool X11Backend::listen(std::function<void()> ended) {
  return connection_->listen(
      {.event = [this](const xcb_generic_event_t& event) { dispatch(event); }, .ended = std::move(ended)});
}

void X11Backend::dispatch(const xcb_generic_event_t& event) {
  displays_.handle(event);
  events_.handle(event);
  theme_.handle(event);
  foreground_.handle(event);
  presses_.handle(event);
  windows_.handle(event);
}

void X11Backend::stopListening() {
  connection_->stopListening();
  disconnectToolkit();
}

void X11Backend::disconnect() {
  connection_->shutDown();
  capture_.disconnect();
  disconnectToolkit();
}

/// At its end the toolkit waits for the server, however long that hangs. It must not handle events after this, for it
/// would end the program.
void X11Backend::disconnectToolkit() const {
  if (toolkitSocket_ >= 0) shutdown(toolkitSocket_, SHUT_RDWR);
}

}  // namespace orvel
