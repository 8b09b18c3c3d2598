#pragma once

#include "catalog/Workspace.hpp"

#include <memory>
#include <mutex>

namespace orvel {

/// The user's programs as the shared workspace lists them, each known by its process and its bundle. The list
/// changes while the main thread's loop turns.
///
/// An icon is a PNG of the one that the desktop shows for the file, drawn into a square of `size` points. Each point is
/// two pixels wide, for the screens of phones are as dense at least. They are drawn one at a time: the system may hand
/// out the same image twice, and an image is for one thread at a time.
///
/// Threads: any, but for `observeActivation` and the end, which are the main thread's; the observer is called there.
/// `activate` waits up to a second for the main thread to see the program in front, so it is not for that thread.
class SystemWorkspace final : public Workspace {
 public:
  SystemWorkspace();
  ~SystemWorkspace() override;

  void observeActivation(std::function<void()> handler) override;
  std::optional<std::vector<RunningApplication>> runningApplications() override;
  std::optional<std::string> location(const std::string& identifier) override;
  std::optional<std::vector<std::uint8_t>> icon(const std::string& path, double size) override;
  void activate(const RunningApplication& application) override;
  void terminate(const RunningApplication& application) override;
  void open(const std::string& path) override;

 private:
  struct Observation;

  std::mutex drawing_;
  std::unique_ptr<Observation> observation_;
};

}  // namespace orvel
