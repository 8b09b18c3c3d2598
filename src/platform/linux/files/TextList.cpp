#include "platform/linux/files/TextList.hpp"

#include "platform/linux/OwnedDescriptor.hpp"

#include <fcntl.h>
#include <sodium.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>

namespace orvel {
namespace {

constexpr mode_t listMode = 0600;
constexpr std::size_t pieceSize = std::size_t{64} * 1024;
constexpr std::chrono::milliseconds lockPause{5};
constexpr int mostLockTries = 100;                            // others of us write for less than a millisecond
constexpr int openFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;  // what is no file must not hold anybody up

/// A text on a line of its own.
std::string lineOf(const std::string& text) {
  std::string line;
  line.reserve(text.size() + 1);
  for (const char letter : text) {
    if (letter == '\\') {
      line += "\\\\";
    } else if (letter == '\n') {
      line += "\\n";
    } else {
      line += letter;
    }
  }
  return line += '\n';
}

bool refersToPlainFile(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// Calls `use` with the file piece by piece. False when it cannot be read to its end.
template <class Use>
bool readPieces(int descriptor, Use&& use) {
  std::string piece(pieceSize, '\0');
  for (;;) {
    const ssize_t count = read(descriptor, piece.data(), piece.size());
    if (count == 0) return true;
    if (count > 0) {
      use(std::string_view(piece.data(), static_cast<std::size_t>(count)));
    } else if (errno != EINTR) {
      return false;
    }
  }
}

/// Digests of lines that come in pieces.
template <std::size_t size>
class LineDigest {
 public:
  LineDigest() { begin(); }

  void add(std::string_view bytes) {
    crypto_generichash_update(&state_, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    isEmpty_ = false;
  }

  std::array<std::uint8_t, size> end() {
    std::array<std::uint8_t, size> digest{};
    crypto_generichash_final(&state_, digest.data(), digest.size());
    begin();
    return digest;
  }

  bool isEmpty() const { return isEmpty_; }

 private:
  void begin() {
    crypto_generichash_init(&state_, nullptr, 0, size);
    isEmpty_ = true;
  }

  crypto_generichash_state state_{};
  bool isEmpty_ = true;
};

/// Writes all of it, or leaves the file as long as it was.
bool appendWhole(int descriptor, std::string_view bytes) {
  struct stat before {};
  if (fstat(descriptor, &before) != 0) return false;
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      // What cannot be cut off stays as one more line, which does no harm.
      [[maybe_unused]] const int cut = ftruncate(descriptor, before.st_size);
      return false;
    }
  }
  return true;
}

/// A line that was cut off, as by a full disk, would swallow the next one.
bool endsWithinLine(int descriptor) {
  struct stat status {};
  char last = '\n';
  return fstat(descriptor, &status) == 0 && status.st_size > 0 &&
         pread(descriptor, &last, 1, status.st_size - 1) == 1 && last != '\n';
}

/// False when another process holds the lock for half a second, as one that was stopped may.
bool lockForWriting(int descriptor) {
  for (int tries = 0; tries < mostLockTries; ++tries) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) return true;
    if (errno != EWOULDBLOCK && errno != EINTR) return false;
    std::this_thread::sleep_for(lockPause);
  }
  return false;
}

}  // namespace

TextList::TextList(std::string path) : path_(std::move(path)) {}

bool TextList::add(const std::string& text) {
  const std::string line = lineOf(text);
  LineDigest<std::tuple_size_v<Digest>> digest;
  digest.add(std::string_view(line).substr(0, line.size() - 1));
  const Digest wanted = digest.end();
  return state_.withLock([&](State& state) {
    if (!refresh(state)) return false;
    return state.known.contains(wanted) || append(state, line, wanted);
  });
}

bool TextList::refresh(State& state) const {
  const auto stamp = FileStamp::of(path_);
  if (!stamp && errno != ENOENT) return false;
  if (stamp == state.stamp) return true;
  state = {};
  if (!stamp) return true;
  const OwnedDescriptor file(open(path_.c_str(), O_RDONLY | openFlags));
  if (file.number() < 0 || !refersToPlainFile(file.number())) return false;
  LineDigest<std::tuple_size_v<Digest>> digest;
  const bool isRead = readPieces(file.number(), [&](std::string_view piece) {
    for (auto end = piece.find('\n'); end != std::string_view::npos; end = piece.find('\n')) {
      digest.add(piece.substr(0, end));
      state.known.insert(digest.end());
      piece.remove_prefix(end + 1);
    }
    if (!piece.empty()) digest.add(piece);
  });
  if (!digest.isEmpty()) state.known.insert(digest.end());
  if (isRead) state.stamp = stamp;
  return isRead;
}

bool TextList::append(State& state, const std::string& line, const Digest& digest) const {
  const OwnedDescriptor file(open(path_.c_str(), O_RDWR | O_APPEND | O_CREAT | openFlags, listMode));
  if (file.number() < 0 || !refersToPlainFile(file.number())) return false;
  if (!lockForWriting(file.number())) return false;
  // The process that held the lock may have added it.
  if (!refresh(state)) return false;
  if (state.known.contains(digest)) return true;
  fchmod(file.number(), listMode);
  if (endsWithinLine(file.number()) && !appendWhole(file.number(), "\n")) return false;
  if (!appendWhole(file.number(), line)) return false;
  state.stamp = FileStamp::of(path_);
  state.known.insert(digest);
  return true;
}

void TextList::remove() {
  state_.withLock([&](State& state) {
    unlink(path_.c_str());
    state = {};
  });
}

}  // namespace orvel
