#include "base/UTF8.hpp"
#include "input/FrameDecoder.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

using namespace orvel::FrameDecoder;

void require(bool holds) {
  if (!holds) std::abort();
}

/// What every decoded command promises to those who carry it out.
struct Promises {
  void operator()(const Click& click) const { require(click.count >= 1 && click.count <= 255); }
  void operator()(const MoveAbsolute& move) const {
    require(move.nx >= 0 && move.nx <= 1 && move.ny >= 0 && move.ny <= 1);
  }
  void operator()(const Text& text) const { require(orvel::isValidUTF8(text.text)); }
  void operator()(const App& app) const { require(orvel::isValidUTF8(app.bundleID)); }
  template <class Other>
  void operator()(const Other&) const {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto command = decode({data, size});
  if (!command) return 0;
  std::visit(Promises(), *command);

  std::vector<std::uint8_t> longer(data, data + size);
  longer.push_back(0xff);
  const auto same = decode(longer);
  require(same && same->index() == command->index());
  return 0;
}
