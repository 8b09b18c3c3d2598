#include "platform/linux/x11/ToolkitConnection.hpp"

#include <sys/socket.h>
#include <xcb/xcb.h>

#include <QGuiApplication>

namespace orvel {

ToolkitConnection::ToolkitConnection() {
  if (qGuiApp == nullptr) return;
  if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) {
    socket_ = xcb_get_file_descriptor(x11->connection());
  }
}

void ToolkitConnection::breakOff() const {
  if (socket_ >= 0) shutdown(socket_, SHUT_RDWR);
}

}  // namespace orvel
