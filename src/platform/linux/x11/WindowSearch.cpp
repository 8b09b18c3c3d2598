#include "platform/linux/x11/WindowSearch.hpp"

#include "platform/linux/x11/X11Properties.hpp"

#include <xcb/res.h>
#include <xcb/shape.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace orvel {
namespace {

constexpr int deepestFrameNesting = 8;        // of frames that window managers put around a window
constexpr std::uint32_t longestTitle = 1024;  // in units of four bytes

struct Seen {
  xcb_window_t window = XCB_WINDOW_NONE;
  Rect frame;
  bool bypassesManager = false;
};

/// Finds one window. Threads: one.
class WindowSearch {
 public:
  WindowSearch(const X11Connection& connection, Point position)
      : connection_(connection),
        position_(position),
        knowsShapes_(connection.extension(xcb_shape_id) != nullptr),
        state_(atom("WM_STATE")) {}

  /// The window with which its program shows itself: below frames of the window manager, or free of them.
  std::optional<Seen> find() const {
    const auto top = childAt({.window = connection_.root(), .frame = {}});
    std::optional<Seen> inner = top;
    for (int depth = 0; inner && depth < deepestFrameNesting; ++depth) {
      if (isManaged(inner->window)) return inner;
      inner = childAt(*inner);
    }
    return top;
  }

  pid_t processOf(xcb_window_t window) const {
    if (connection_.extension(xcb_res_id) == nullptr) return 0;
    const xcb_res_client_id_spec_t wanted{.client = window, .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto reply = awaitReply(connection_, xcb_res_query_client_ids_reply,
                                  xcb_res_query_client_ids(connection_.get(), 1, &wanted));
    if (!reply) return 0;
    const auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
    if (ids.rem == 0 || xcb_res_client_id_value_value_length(ids.data) == 0) return 0;
    return static_cast<pid_t>(*xcb_res_client_id_value_value(ids.data));
  }

  /// The window without the shadow that its program draws around it, and reports.
  Rect frameWithoutShadow(const Seen& seen) const {
    const auto sides = numbersIn(property(seen.window, atom("_GTK_FRAME_EXTENTS"), 4));
    if (sides.size() != 4) return seen.frame;
    const double left = sides[0];
    const double right = sides[1];
    const double top = sides[2];
    const double bottom = sides[3];
    const Rect& frame = seen.frame;
    if (left + right >= frame.size.width || top + bottom >= frame.size.height) return frame;
    return {{frame.origin.x + left, frame.origin.y + top},
            {frame.size.width - left - right, frame.size.height - top - bottom}};
  }

  std::string titleOf(xcb_window_t window) const {
    return textIn(property(window, atom("_NET_WM_NAME"), longestTitle));
  }

 private:
  struct Asked {
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
  };

  /// The topmost child that takes the clicks at the position. All are asked about in one round trip.
  std::optional<Seen> childAt(const Seen& parent) const {
    const auto tree = awaitReply(connection_, xcb_query_tree_reply, xcb_query_tree(connection_.get(), parent.window));
    if (!tree) return std::nullopt;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    std::vector<Asked> asked;
    for (int index = xcb_query_tree_children_length(tree.get()) - 1; index >= 0; --index) {
      asked.push_back({.window = children[index],
                       .attributes = xcb_get_window_attributes(connection_.get(), children[index]),
                       .geometry = xcb_get_geometry(connection_.get(), children[index])});
    }
    std::optional<Seen> found;
    for (const Asked& question : asked) {
      const auto child = collect(question, parent.frame.origin);  // all are collected: none may stay behind
      if (!found && child && takesClicks(*child)) found = child;
    }
    return found;
  }

  std::optional<Seen> collect(const Asked& asked, Point parentOrigin) const {
    const auto attributes = awaitReply(connection_, xcb_get_window_attributes_reply, asked.attributes);
    const auto geometry = awaitReply(connection_, xcb_get_geometry_reply, asked.geometry);
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE) return std::nullopt;
    const Rect frame{
        {parentOrigin.x + geometry->x + geometry->border_width, parentOrigin.y + geometry->y + geometry->border_width},
        {static_cast<double>(geometry->width), static_cast<double>(geometry->height)}};
    if (!frame.contains(position_)) return std::nullopt;
    return Seen{.window = asked.window, .frame = frame, .bypassesManager = attributes->override_redirect != 0};
  }

  /// A window may let clicks through to what lies behind it.
  bool takesClicks(const Seen& seen) const {
    if (!knowsShapes_) return true;
    const auto reply = awaitReply(connection_, xcb_shape_get_rectangles_reply,
                                  xcb_shape_get_rectangles(connection_.get(), seen.window, XCB_SHAPE_SK_INPUT));
    if (!reply) return false;
    const xcb_rectangle_t* first = xcb_shape_get_rectangles_rectangles(reply.get());
    return std::any_of(first, first + xcb_shape_get_rectangles_rectangles_length(reply.get()),
                       [&](const xcb_rectangle_t& part) {
                         const Rect rect{{seen.frame.origin.x + part.x, seen.frame.origin.y + part.y},
                                         {static_cast<double>(part.width), static_cast<double>(part.height)}};
                         return rect.contains(position_);
                       });
  }

  bool isManaged(xcb_window_t window) const {
    const auto reply = property(window, state_, 0);
    return reply && reply->type != XCB_ATOM_NONE;
  }

  PropertyReply property(xcb_window_t window, xcb_atom_t name, std::uint32_t length) const {
    return readProperty(connection_.get(), window, name, length);
  }

  xcb_atom_t atom(std::string_view name) const { return namedAtom(connection_.get(), name); }

  const X11Connection& connection_;
  const Point position_;
  const bool knowsShapes_;
  const xcb_atom_t state_;
};

}  // namespace

std::optional<WindowAtPoint> findWindowAt(const X11Connection& connection, Point position) {
  const WindowSearch search(connection, position);
  const auto seen = search.find();
  if (!seen) return std::nullopt;
  const pid_t process = search.processOf(seen->window);
  if (process <= 0) return std::nullopt;
  return WindowAtPoint{.frame = search.frameWithoutShadow(*seen),
                       .process = process,
                       .title = search.titleOf(seen->window),
                       .isPopUp = seen->bypassesManager};
}

}  // namespace orvel
