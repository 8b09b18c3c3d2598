#include "desktop/windows/WindowSpeech.hpp"

#include <glib-unix.h>
#include <gtk/gtk.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

/// A window of GTK 3 with a text entry alone, or with one widget of each kind.
class Gtk3Window {
 public:
  explicit Gtk3Window(bool decoratedByClient) : window_(gtk_window_new(GTK_WINDOW_TOPLEVEL)) {
    gtk_window_set_title(GTK_WINDOW(window_), "GTK 3");
    if (decoratedByClient) decorate();
    g_signal_connect(window_, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
    g_unix_fd_add(STDIN_FILENO, G_IO_IN, &Gtk3Window::hear, this);
  }

  void showEntry() {
    GtkWidget* entry = gtk_entry_new();
    gtk_container_add(GTK_CONTAINER(window_), entry);
    g_signal_connect(entry, "changed", G_CALLBACK(+[](GtkEntry* changed) { sayText(gtk_entry_get_text(changed)); }),
                     nullptr);
    // The window gets the keyboard only when it is seen, and says so by an event that a property notices.
    g_signal_connect(window_, "notify::is-active", G_CALLBACK(&Gtk3Window::sayReadyIfActive), nullptr);
    gtk_window_set_default_size(GTK_WINDOW(window_), 400, 60);
    gtk_widget_show_all(window_);
    gtk_widget_grab_focus(entry);
    gtk_window_present(GTK_WINDOW(window_));
  }

  void showWidgets() {
    addMenuBar();
    addButtons();
    addChoices();
    addTabs();
    addOthers();
    gtk_container_add(GTK_CONTAINER(window_), box_);
    g_signal_connect(window_, "map-event", G_CALLBACK(+[] {
                       say("ready");
                       return GDK_EVENT_PROPAGATE;
                     }),
                     nullptr);
    gtk_widget_show_all(window_);
  }

 private:
  static void sayReadyIfActive(GtkWindow* window) {
    if (gtk_window_is_active(window)) say("ready");
  }

  static gboolean hear(gint, GIOCondition, gpointer self) { return static_cast<Gtk3Window*>(self)->obey(); }

  bool obey() {
    for (const auto& command : commands_.take()) {
      if (command.front() == "places") sayPlaces();
      if (command.front() == "move") gtk_window_move(GTK_WINDOW(window_), std::stoi(command[1]), std::stoi(command[2]));
      if (command.front() == "close") gtk_window_close(GTK_WINDOW(window_));
    }
    if (commands_.ended) gtk_main_quit();
    return !commands_.ended;
  }

  void decorate() {
    GtkWidget* bar = gtk_header_bar_new();
    gtk_header_bar_set_show_close_button(GTK_HEADER_BAR(bar), TRUE);
    gtk_window_set_titlebar(GTK_WINDOW(window_), bar);
  }

  void add(const std::string& name, GtkWidget* widget) {
    gtk_widget_set_halign(widget, GTK_ALIGN_START);
    gtk_container_add(GTK_CONTAINER(box_), widget);
    widgets_[name] = widget;
  }

  void addMenuBar() {
    GtkWidget* bar = gtk_menu_bar_new();
    GtkWidget* file = gtk_menu_item_new_with_label("File");
    GtkWidget* menu = gtk_menu_new();
    gtk_menu_item_set_submenu(GTK_MENU_ITEM(file), menu);
    gtk_menu_shell_append(GTK_MENU_SHELL(bar), file);
    for (const auto& [name, item] : {std::pair{"item", gtk_menu_item_new_with_label("Open something by its name")},
                                     std::pair{"check-item", gtk_check_menu_item_new_with_label("Show hidden")}}) {
      gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
      widgets_[name] = item;
    }
    add("menu", bar);
    widgets_["menu"] = file;
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
    add("radio", gtk_radio_button_new_with_label(nullptr, "Radio"));
    GtkWidget* combo = gtk_combo_box_text_new();
    for (const char* choice : {"first choice", "second choice"}) {
      gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(combo), choice);
    }
    gtk_combo_box_set_active(GTK_COMBO_BOX(combo), 0);
    add("combo", combo);
    add("spin", gtk_spin_button_new_with_range(0, 100, 1));
  }

  void addTabs() {
    GtkWidget* book = gtk_notebook_new();
    for (const char* title : {"First tab", "Second tab"}) {
      GtkWidget* page = gtk_label_new("page");
      widgets_["tab"] = gtk_label_new(title);
      gtk_notebook_append_page(GTK_NOTEBOOK(book), page, widgets_["tab"]);
      widgets_.try_emplace("page", page);
    }
    gtk_container_add(GTK_CONTAINER(box_), book);
  }

  void addOthers() {
    add("expander", gtk_expander_new("Expander"));
    add("entry", gtk_entry_new());
    add("slider", gtk_scale_new_with_range(GTK_ORIENTATION_HORIZONTAL, 0, 100, 1));
    gtk_widget_set_size_request(widgets_["slider"], 200, -1);
    add("label", gtk_label_new("Label"));
    add("image", gtk_image_new_from_icon_name("image-missing", GTK_ICON_SIZE_DIALOG));
    GtkWidget* list = gtk_list_box_new();
    GtkWidget* row = gtk_list_box_row_new();
    gtk_container_add(GTK_CONTAINER(row), gtk_label_new("Row"));
    gtk_container_add(GTK_CONTAINER(list), row);
    gtk_container_add(GTK_CONTAINER(box_), list);
    widgets_["row"] = row;
  }

  void sayPlaces() const {
    for (const auto& [name, widget] : widgets_) {
      if (gtk_widget_get_mapped(widget)) sayPlace(name, placeOf(widget));
    }
    say("places said");
  }

  static Place placeOf(GtkWidget* widget) {
    GtkAllocation place{};
    gtk_widget_get_allocation(widget, &place);
    if (gtk_widget_get_has_window(widget)) place.x = place.y = 0;  // else it is a part of the parent's
    int x = 0;
    int y = 0;
    gdk_window_get_origin(gtk_widget_get_window(widget), &x, &y);
    return {double(x + place.x), double(y + place.y), double(place.width), double(place.height)};
  }

  GtkWidget* const window_;
  GtkWidget* const box_ = gtk_box_new(GTK_ORIENTATION_VERTICAL, 4);
  std::map<std::string, GtkWidget*> widgets_;
  WindowCommands commands_;
};

}  // namespace
}  // namespace orvel

int main(int argc, char** argv) {
  gtk_init(&argc, &argv);
  const std::string_view mode = argc > 1 ? argv[1] : "";
  orvel::Gtk3Window window(mode == "--decorated-by-client");
  if (mode == "--entry") {
    window.showEntry();
  } else {
    window.showWidgets();
  }
  gtk_main();
}
