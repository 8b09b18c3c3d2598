// What the list of applications and their icons cost on a computer with 2,000 desktop entries, beside the list that the
// desktop's own library makes of the same folders.

#include "bench/Bench.hpp"
#include "bench/Samples.hpp"
#include "catalog/AppCatalog.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "platform/linux/SystemApplicationBundles.hpp"
#include "platform/linux/SystemWorkspace.hpp"
#include "platform/linux/applications/DesktopEntries.hpp"
#include "platform/linux/files/Files.hpp"
#include "platform/linux/x11/X11ActivationTokens.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11ThemeSettings.hpp"
#include "platform/linux/x11/X11Windows.hpp"

#include <gio/gio.h>

#include <QColor>
#include <QImage>
#include <QString>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace orvel::bench {
namespace {

namespace fs = std::filesystem;

constexpr int entryCount = 2000;
constexpr int iconCount = 40;
constexpr double iconSize = 56;
constexpr int rounds = extent(15, 2);
constexpr double longestSnapshot = 0.150;
constexpr double longestIcons = 0.200;

std::string nameOf(int number) {
  return "org.example.App" + std::to_string(number);
}

/// As if it had been there for a while.
void write(const fs::path& path, const std::string& content) {
  fs::create_directories(path.parent_path());
  std::ofstream(path) << content;
  fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
}

void writeEntries(const fs::path& data) {
  for (int i = 0; i < entryCount; ++i) {
    const std::string number = std::to_string(i);
    write(data / "applications" / (nameOf(i) + ".desktop"),
          "[Desktop Entry]\nType=Application\nName=Application " + number + "\nName[de]=Anwendung " + number +
              "\nName[fr]=Programme " + number + "\nComment=Does what application " + number +
              " does\nExec=true --new-window %U\nTryExec=true\nIcon=" + nameOf(i) +
              "\nCategories=Utility;Development;\nMimeType=text/plain;text/html;\nStartupNotify=true\n");
  }
}

/// Half of them pictures of another size, half of them drawings.
void writeIcons(const fs::path& theme) {
  write(theme / "index.theme",
        "[Icon Theme]\nName=Hicolor\nDirectories=128x128/apps,scalable/apps\n[128x128/apps]\nSize=128\nType=Fixed\n"
        "[scalable/apps]\nSize=128\nMinSize=8\nMaxSize=512\nType=Scalable\n");
  fs::create_directories(theme / "128x128/apps");
  for (int i = 0; i < iconCount; ++i) {
    QImage picture(128, 128, QImage::Format_ARGB32);
    picture.fill(QColor(6 * i, 255 - 6 * i, 128));
    const auto path = theme / "128x128/apps" / (nameOf(i) + ".png");
    if (i % 2 == 0 && !picture.save(QString::fromStdString(path.string()))) throw std::runtime_error("no icon");
    if (i % 2 == 0) continue;
    write(theme / "scalable/apps" / (nameOf(i) + ".svg"),
          "<svg xmlns='http://www.w3.org/2000/svg' width='128' height='128'><circle cx='64' cy='64' r='60' "
          "fill='#3366cc'/><path d='M20 100 C 40 10, 65 10, 95 80 S 150 150, 180 80' stroke='white' fill='none' "
          "stroke-width='6'/></svg>");
  }
  fs::last_write_time(theme, fs::file_time_type::clock::now() - std::chrono::hours(1));
}

Samples measureRounds(const std::function<void()>& action) {
  Samples samples;
  for (int i = 0; i < rounds; ++i) {
    const auto begun = std::chrono::steady_clock::now();
    action();
    samples.add(std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count());
  }
  return samples;
}

void print(const char* what, const Samples& samples) {
  std::printf("%-52s median %7.2f ms, %.2f to %.2f\n", what, samples.median() * 1000, samples.least() * 1000,
              samples.greatest() * 1000);
}

void expect(bool isSo, const char* otherwise) {
  if (!isSo) throw std::runtime_error(otherwise);
}

void listByLibrary() {
  int count = 0;
  GList* all = g_app_info_get_all();
  for (const GList* item = all; item != nullptr; item = item->next) {
    auto* info = static_cast<GAppInfo*>(item->data);
    if (g_app_info_should_show(info) && g_app_info_get_display_name(info) != nullptr) ++count;
  }
  g_list_free_full(all, g_object_unref);
  expect(count == entryCount, "the library lists something else");
}

Verdict measure() {
  const VirtualDesktop desktop;
  const fs::path data = desktop.home() / "data";
  setenv("XDG_DATA_HOME", data.c_str(), 1);
  setenv("XDG_DATA_DIRS", (desktop.home() / "none").c_str(), 1);
  writeEntries(data);
  writeIcons(data / "icons/hicolor");

  const auto connection = X11Connection::open(desktop.display());
  expect(connection != nullptr, "no X server");
  const DataFolders folders = DataFolders::ofUser();
  DesktopEntries entries(folders.shared);
  SystemApplicationBundles bundles(entries);
  const X11Atoms atoms(*connection);
  const ServerTime time(*connection);
  X11Windows windows(*connection, atoms, time);
  X11ActivationTokens tokens(*connection, atoms, time);
  X11ThemeSettings theme(*connection);
  SystemWorkspace workspace(windows, tokens, theme, entries, folders, {RLIM_INFINITY, RLIM_INFINITY});
  AppCatalog catalog(workspace, bundles);

  const auto begun = std::chrono::steady_clock::now();
  expect(catalog.snapshot().size() == entryCount, "the catalog lists something else");
  const std::chrono::duration<double, std::milli> first = std::chrono::steady_clock::now() - begun;
  std::printf("%-52s %14.2f ms\n", "First list of 2,000 applications", first.count());
  const Samples snapshots = measureRounds([&] { expect(catalog.snapshot().size() == entryCount, "a list is short"); });
  print("Each later list", snapshots);
  const Samples library = measureRounds(listByLibrary);
  print("The same folders listed by GIO", library);
  const Samples icons = measureRounds([&] {
    for (int i = 0; i < iconCount; ++i) expect(catalog.icon(nameOf(i), iconSize).has_value(), "an icon is missing");
  });
  print("40 icons", icons);
  return {snapshots.median() < longestSnapshot && icons.median() < longestIcons,
          "a list of 2,000 applications takes less than 150 ms, and 40 icons less than 200 ms"};
}

}  // namespace
}  // namespace orvel::bench

int main() {
  return orvel::bench::runBench("Catalog: the list of applications, and their icons", orvel::bench::measure);
}
