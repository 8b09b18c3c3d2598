#pragma once

#include "mirror/CaptureService.hpp"

#include <cstddef>
#include <memory>
#include <variant>

namespace orvel {

class X11Connection;

/// Starts to capture a display of an X server; `display` is its place in the list of monitors, and the stream has the
/// connection for itself. While nothing changes on the display, the thread of the stream sleeps; while something does,
/// it wakes for frames alone. A server that hangs does not hold up its end.
///
/// Threads: any; the handlers run on that of the stream. Waits for the server.
std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> startScreenStream(
    const std::shared_ptr<X11Connection>& connection, std::size_t display, const CaptureConfiguration& configuration,
    CaptureStream::Handlers handlers);

}  // namespace orvel
