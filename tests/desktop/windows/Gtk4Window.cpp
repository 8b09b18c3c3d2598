#include "desktop/windows/WindowSpeech.hpp"

#include <gdk/x11/gdkx.h>
#include <glib-unix.h>
#include <gtk/gtk.h>

#include <map>
#include <string>
#include <string_view>

namespace orvel {
namespace {

Display* displayOf(GdkSurface* surface) {
  return gdk_x11_display_get_xdisplay(gdk_surface_get_display(surface));
}

/// The first widget of a type that has no public name, below `widget` or itself.
GtkWidget* firstOfType(GtkWidget* widget, std::string_view type) {
  if (G_OBJECT_TYPE_NAME(widget) == type) return widget;
  for (GtkWidget* child = gtk_widget_get_first_child(widget); child != nullptr;
       child = gtk_widget_get_next_sibling(child)) {
    if (GtkWidget* found = firstOfType(child, type)) return found;
  }
  return nullptr;
}

/// A window of GTK 4 with a text entry alone, or with one widget of each kind.
class Gtk4Window {
 public:
  explicit Gtk4Window(bool decoratedByClient) : window_(gtk_window_new()) {
    gtk_window_set_title(GTK_WINDOW(window_), "GTK 4");
    if (decoratedByClient) gtk_window_set_titlebar(GTK_WINDOW(window_), gtk_header_bar_new());
    g_signal_connect_swapped(window_, "destroy", G_CALLBACK(&g_main_loop_quit), loop_);
    g_unix_fd_add(STDIN_FILENO, G_IO_IN, &Gtk4Window::hear, this);
  }
  ~Gtk4Window() { g_main_loop_unref(loop_); }
  Gtk4Window(const Gtk4Window&) = delete;
  Gtk4Window& operator=(const Gtk4Window&) = delete;

  void showEntry() {
    GtkWidget* entry = gtk_entry_new();
    gtk_window_set_child(GTK_WINDOW(window_), entry);
    g_signal_connect(entry, "changed",
                     G_CALLBACK(+[](GtkEditable* changed) { sayText(gtk_editable_get_text(changed)); }), nullptr);
    g_signal_connect(window_, "notify::is-active", G_CALLBACK(&Gtk4Window::sayReadyIfActive), nullptr);
    gtk_window_set_default_size(GTK_WINDOW(window_), 400, 60);
    gtk_widget_grab_focus(entry);
    gtk_window_present(GTK_WINDOW(window_));
    gtk_window_present(GTK_WINDOW(window_));  // only a window that is shown already takes the keyboard
  }

  void showWidgets() {
    addMenuBar();
    addButtons();
    addChoices();
    addTabs();
    addOthers();
    gtk_window_set_child(GTK_WINDOW(window_), box_);
    gtk_window_present(GTK_WINDOW(window_));
    g_idle_add(&Gtk4Window::sayReadyOnceMapped, window_);
  }

  void run() { g_main_loop_run(loop_); }

 private:
  static void sayReadyIfActive(GtkWindow* window) {
    if (gtk_window_is_active(window)) say("ready");
  }

  static gboolean sayReadyOnceMapped(gpointer window) {
    if (!gdk_surface_get_mapped(gtk_native_get_surface(GTK_NATIVE(window)))) return G_SOURCE_CONTINUE;
    if (gtk_widget_get_width(GTK_WIDGET(window)) == 0) return G_SOURCE_CONTINUE;
    say("ready");
    return G_SOURCE_REMOVE;
  }

  static gboolean hear(gint, GIOCondition, gpointer self) { return static_cast<Gtk4Window*>(self)->obey(); }

  bool obey() {
    for (const auto& command : commands_.take()) {
      if (command.front() == "places") sayPlaces();
      if (command.front() == "move") move(std::stoi(command[1]), std::stoi(command[2]));
      if (command.front() == "close") gtk_window_close(GTK_WINDOW(window_));
    }
    if (commands_.ended) g_main_loop_quit(loop_);
    return !commands_.ended;
  }

  void move(int x, int y) {
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(window_));
    XMoveWindow(displayOf(surface), gdk_x11_surface_get_xid(surface), x, y);
    XFlush(displayOf(surface));
  }

  void add(const std::string& name, GtkWidget* widget) {
    gtk_widget_set_halign(widget, GTK_ALIGN_START);
    gtk_box_append(GTK_BOX(box_), widget);
    widgets_[name] = widget;
  }

  void addMenuBar() {
    GSimpleActionGroup* actions = g_simple_action_group_new();
    GSimpleAction* open = g_simple_action_new("open", nullptr);
    g_action_map_add_action(G_ACTION_MAP(actions), G_ACTION(open));
    gtk_widget_insert_action_group(window_, "file", G_ACTION_GROUP(actions));
    GMenu* menu = g_menu_new();
    g_menu_append(menu, "Open something by its name", "file.open");
    GMenu* menus = g_menu_new();
    g_menu_append_submenu(menus, "File", G_MENU_MODEL(menu));
    add("menu", gtk_popover_menu_bar_new_from_model(G_MENU_MODEL(menus)));
    GtkWidget* bar = widgets_["menu"];
    widgets_["menu"] = firstOfType(bar, "GtkPopoverMenuBarItem");
    widgets_["item"] = firstOfType(bar, "GtkModelButton");
    for (gpointer owned : {gpointer(actions), gpointer(open), gpointer(menu), gpointer(menus)}) g_object_unref(owned);
  }

  void addButtons() {
    add("button", gtk_button_new_with_label("Button"));
    add("wide", gtk_button_new_with_label("A wide button"));
    gtk_widget_set_size_request(widgets_["wide"], 300, -1);
    add("toggle", gtk_toggle_button_new_with_label("Toggle"));
    add("switch", gtk_switch_new());
    add("link", gtk_link_button_new_with_label("https://example.org", "Link"));
    add("colour", gtk_color_button_new());
  }

  void addChoices() {
    add("check", gtk_check_button_new_with_label("Check"));
    add("radio", gtk_check_button_new_with_label("Radio"));
    gtk_check_button_set_group(GTK_CHECK_BUTTON(widgets_["radio"]), GTK_CHECK_BUTTON(gtk_check_button_new()));
    add("combo", gtk_drop_down_new_from_strings(choices));
    add("spin", gtk_spin_button_new_with_range(0, 100, 1));
  }

  void addTabs() {
    GtkWidget* book = gtk_notebook_new();
    for (const char* title : {"First tab", "Second tab"}) {
      GtkWidget* page = gtk_label_new("page");
      GtkWidget* label = gtk_label_new(title);
      gtk_notebook_append_page(GTK_NOTEBOOK(book), page, label);
      widgets_["tab"] = gtk_widget_get_parent(label);
      widgets_.try_emplace("page", page);
    }
    gtk_box_append(GTK_BOX(box_), book);
  }

  void addOthers() {
    add("expander", gtk_expander_new("Expander"));
    add("entry", gtk_entry_new());
    add("slider", gtk_scale_new_with_range(GTK_ORIENTATION_HORIZONTAL, 0, 100, 1));
    gtk_widget_set_size_request(widgets_["slider"], 200, -1);
    add("label", gtk_label_new("Label"));
    add("image", gtk_image_new_from_icon_name("image-missing"));
    GtkWidget* list = gtk_list_box_new();
    gtk_list_box_append(GTK_LIST_BOX(list), gtk_label_new("Row"));
    gtk_box_append(GTK_BOX(box_), list);
    widgets_["row"] = GTK_WIDGET(gtk_list_box_get_row_at_index(GTK_LIST_BOX(list), 0));
  }

  void sayPlaces() const {
    for (const auto& [name, widget] : widgets_) {
      if (gtk_widget_get_mapped(widget)) sayPlace(name, placeOf(widget));
    }
    say("places said");
  }

  static Place placeOf(GtkWidget* widget) {
    GtkNative* native = gtk_widget_get_native(widget);
    graphene_rect_t bounds{};
    if (!gtk_widget_compute_bounds(widget, GTK_WIDGET(native), &bounds)) return {};
    double left = 0;
    double top = 0;
    gtk_native_get_surface_transform(native, &left, &top);
    GdkSurface* surface = gtk_native_get_surface(native);
    Display* display = displayOf(surface);
    int x = 0;
    int y = 0;
    Window child = 0;
    XTranslateCoordinates(display, gdk_x11_surface_get_xid(surface), DefaultRootWindow(display), 0, 0, &x, &y, &child);
    return {x + left + bounds.origin.x, y + top + bounds.origin.y, bounds.size.width, bounds.size.height};
  }

  static constexpr const char* choices[] = {"first choice", "second choice", nullptr};

  GtkWidget* const window_;
  GtkWidget* const box_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
  GMainLoop* const loop_ = g_main_loop_new(nullptr, FALSE);
  std::map<std::string, GtkWidget*> widgets_;
  WindowCommands commands_;
};

}  // namespace
}  // namespace orvel

int main(int argc, char** argv) {
  gtk_init();
  const std::string_view mode = argc > 1 ? argv[1] : "";
  orvel::Gtk4Window window(mode == "--decorated-by-client");
  if (mode == "--entry") {
    window.showEntry();
  } else {
    window.showWidgets();
  }
  window.run();
}
