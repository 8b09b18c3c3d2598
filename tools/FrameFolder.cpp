#include "tools/FrameFolder.hpp"

#include "tools/WholeFile.hpp"

#include <iomanip>
#include <sstream>

namespace orvel::phone {

Failure FrameFolder::prepare() const {
  return makeFolder(path_);
}

Failure FrameFolder::write(std::size_t number, std::string_view jpeg) const {
  std::ostringstream name;
  name << "frame-" << std::setw(4) << std::setfill('0') << number << ".jpg";
  return writeWholeFile(path_ / name.str(), jpeg);
}

}  // namespace orvel::phone
