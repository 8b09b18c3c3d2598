#include "platform/linux/x11/X11Backend.hpp"

#include "platform/linux/x11/WindowSearch.hpp"
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

}  // namespace

std::unique_ptr<X11Backend> X11Backend::open(const std::string& display) {
  auto connection = X11Connection::open(display);
  if (!connection) return nullptr;
  return std::unique_ptr<X11Backend>(new X11Backend(std::move(connection), display));
}

std::optional<std::string> X11Backend::inputObstacle(const std::string& display) {
  const auto connection = X11Connection::open(display);
  if (!connection) return std::nullopt;
  X11TrustCheck trust(*connection);
  if (trust.isTrusted()) return std::nullopt;
  return trust.notice().explanation;
}

X11Backend::X11Backend(std::unique_ptr<X11Connection> connection, const std::string& display)
    : connection_(std::move(connection)),
      toolkitSocket_(socketOfToolkit()),
      activationTokens_(*connection_),
      capture_(*connection_, display),
      displays_(*connection_),
      events_(*connection_, displays_),
      foreground_(*connection_),
      presses_(*connection_),
      screenRecording_(*connection_),
      theme_(*connection_),
      trust_(*connection_),
      windows_(*connection_) {}

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
