#pragma once

namespace orvel::PanelAccessibility {

/// Has the toolkit tell screen readers what the panel's own widgets are: the QR code an image, the link to it expanded
/// or collapsed, an announcement a notification. Once is enough, more does no harm. Threads: the main thread.
void install();

}  // namespace orvel::PanelAccessibility
