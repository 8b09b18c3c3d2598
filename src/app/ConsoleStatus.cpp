#include "app/ConsoleStatus.hpp"

#include "app/ServerHub.hpp"

#include <ostream>
#include <utility>

namespace orvel {
namespace {

std::string phonesConnected(std::size_t count) {
  return count == 1 ? "1 phone connected" : std::to_string(count) + " phones connected";
}

}  // namespace

ConsoleStatus::ConsoleStatus(std::ostream& out, std::function<std::string()> address,
                             std::function<std::string()> obstacle)
    : out_(out), address_(std::move(address)), obstacle_(std::move(obstacle)) {}

void ConsoleStatus::show(const HubState& was, const HubState& next) {
  if (next.isRunning && !was.isRunning) {
    out_ << "Listening on " << address_()
         << "\nTo pair a phone: orvel --show opens the panel, orvel --pair prints what a phone needs\n";
  }
  // Before it listens nothing is known of the permission.
  const auto isObstructed = [](const HubState& state) { return state.isRunning && !state.accessibilityGranted; };
  if (isObstructed(next) && !isObstructed(was)) out_ << obstacle_() << '\n';
  if (next.lastError && next.lastError != was.lastError) {
    out_ << *next.lastError << "\nTo try again, hit Restart in the panel: orvel --show opens it.\n";
  }
  if (next.clients.size() != was.clients.size()) out_ << phonesConnected(next.clients.size()) << '\n';
  if (next.mirroring != was.mirroring) {
    out_ << (next.mirroring ? "Sharing your screen\n" : "No longer sharing your screen\n");
  }
  out_.flush();
}

}  // namespace orvel
