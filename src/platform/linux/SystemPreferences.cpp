#include "platform/linux/SystemPreferences.hpp"

#include "platform/linux/files/Files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QLockFile>
#include <QSettings>
#include <QStringConverter>
#include <QStringList>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <functional>
#include <limits>
#include <utility>

namespace orvel {
namespace {

constexpr mode_t permissionBits = 07777;
constexpr mode_t privateFolder = 0700;
constexpr mode_t privateFile = 0600;
constexpr std::size_t anySize = std::numeric_limits<std::size_t>::max();
constexpr std::chrono::milliseconds lockTimeout{500};  // others of us write for a millisecond

QString toQString(const std::string& text) {
  // A byte order mark at the start is part of the text; QString::fromUtf8 would drop it.
  QStringDecoder decode(QStringDecoder::Utf8,
                        QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
  return decode(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
}

bool closesItsQuotes(const QByteArray& line) {
  bool isInQuotes = false;
  for (qsizetype i = 0; i < line.size(); ++i) {
    if (line[i] == '\\') {
      ++i;  // what follows stands for itself
    } else if (line[i] == '"') {
      isInQuotes = !isInQuotes;
    }
  }
  return !isInQuotes;
}

bool isWholeLine(const QByteArray& line) {
  if (line.isEmpty() || line.startsWith(';') || line.startsWith('#')) return true;
  if (line.startsWith('[')) return line.endsWith(']');
  return line.contains('=') && closesItsQuotes(line);
}

/// Whether there may have been more in the file than can be read of it now: it was cut off, overwritten or mistyped.
bool isDamaged(const std::string& content) {
  if (content.empty()) return false;
  if (!content.ends_with('\n') || content.find('\0') != std::string::npos) return true;
  const QList<QByteArray> lines =
      QByteArray::fromRawData(content.data(), static_cast<qsizetype>(content.size())).split('\n');
  return !std::ranges::all_of(lines, [](const QByteArray& line) { return isWholeLine(line.trimmed()); });
}

/// Whether the file is there but cannot be opened just now, as when connections hold all that this process may open. To
/// take its texts for missing would be to forget the pairing.
bool lacksDescriptors(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return errno == EMFILE || errno == ENFILE || errno == ENOMEM;
  close(descriptor);
  return false;
}

bool isWritable(const std::string& path) {
  return access(path.c_str(), R_OK | W_OK) == 0;
}

/// Whether `path` has exactly these permissions, now if not before.
bool keepPrivate(const std::string& path, mode_t mode) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return false;
  return (status.st_mode & permissionBits) == mode || chmod(path.c_str(), mode) == 0;
}

/// Whether another program holds the lock of the file for longer than the timeout. QSettings would wait without end for
/// one that was stopped meanwhile.
bool isLocked(const std::string& file) {
  QLockFile lock(QFile::decodeName((file + ".lock").c_str()));
  lock.setStaleLockTime(0);
  return !lock.tryLock(static_cast<int>(lockTimeout.count())) && lock.error() == QLockFile::LockFailedError;
}

void makeFolders(const std::string& path) {
  for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
    mkdir(path.substr(0, end).c_str(), privateFolder);
  }
  mkdir(path.c_str(), privateFolder);
}

bool createPrivately(const std::string& file) {
  const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, privateFile);
  if (descriptor < 0) return false;
  close(descriptor);
  return true;
}

/// Makes sure that `file` is there, ours, and closed to others before anything is written: what replaces it takes over
/// its permissions, and does so before it has a name. Someone else's file makes room for one of ours.
bool prepare(const std::string& folder, const std::string& file) {
  makeFolders(folder);
  if (!keepPrivate(folder, privateFolder)) return false;
  if (createPrivately(file)) return true;
  if (!isPlainFile(file)) return false;
  if (keepPrivate(file, privateFile) && isWritable(file)) return true;
  return unlink(file.c_str()) == 0 && createPrivately(file);
}

std::vector<std::string> textsOf(const QSettings& settings, const QString& key) {
  std::vector<std::string> texts;
  for (const QString& text : settings.value(key).toStringList()) texts.push_back(text.toStdString());
  return texts;
}

}  // namespace

SystemPreferences::SystemPreferences()
    : folder_(ConfigurationFolders::ofUser().own + "/orvel"), file_(folder_ + "/orvel.conf") {}

SystemPreferences::~SystemPreferences() {
  storeUnsaved();
}

std::optional<std::string> SystemPreferences::string(const std::string& key) const {
  Texts texts = state_.withLock([&](State& state) {
    refresh(state);
    return textsOf(state, key);
  });
  if (texts.size() != 1) return std::nullopt;
  return std::move(texts.front());
}

SystemPreferences::Texts SystemPreferences::textsOf(State& state, const std::string& key) const {
  for (const Changes* texts : {&state.unsaved, &state.provisional, &state.known}) {
    if (const auto found = texts->find(key); found != texts->end()) return found->second;
  }
  return {};
}

void SystemPreferences::refresh(State& state) const {
  // The file is used by one thread at a time; what is about to stand in it is in the memory.
  if (state.isStoring) return;
  const auto stamp = FileStamp::of(file_);
  if (!stamp) {
    const bool isMissing = errno == ENOENT || errno == ENOTDIR;
    if (isMissing) state.known.clear();
    state.isReadable = isMissing;
    state.stamp.reset();
  } else {
    if (stamp->isPlainFile) keepPrivate(file_, privateFile);
    if (stamp != state.stamp || !stamp->isSettled()) read(state, *stamp);
  }
  if (state.isReadable && !state.provisional.empty()) {
    for (const auto& [key, texts] : state.known) state.provisional.erase(key);
    state.unsaved.merge(std::exchange(state.provisional, {}));
  }
}

void SystemPreferences::read(State& state, const FileStamp& stamp) const {
  const auto content = stamp.isPlainFile ? readSmallFile(file_, anySize) : std::nullopt;
  if (!content) {
    state.isReadable = false;
    state.stamp.reset();
    return;
  }
  const std::size_t hash = std::hash<std::string>()(*content);
  const bool isKnown = state.stamp && state.contentHash == hash;
  state.stamp = stamp;
  state.contentHash = hash;
  if (isKnown) return;
  // What is empty may have been cut off at its start.
  const bool isCutOff = content->empty() && !state.known.empty();
  state.isReadable = !isCutOff && !isDamaged(*content);
  // What was read before holds while the file is damaged, and so does what else can still be read of it.
  if (state.isReadable) state.known.clear();
  state.known.merge(contents());
}

void SystemPreferences::setString(const std::string& key, const std::string& value) {
  change(key, {value});
}

void SystemPreferences::setMissing(const std::string& key, const std::string& value) {
  const bool mayStore = state_.withLock([&](State& state) {
    refresh(state);
    if (!state.isReadable) state.provisional[key] = {value};
    return state.isReadable;
  });
  if (mayStore) change(key, {value});
}

void SystemPreferences::add(const std::string& key, const std::string& value) {
  // What stood in the way of a text may be gone.
  storeUnsaved();
  const bool isInTexts = state_.withLock([&](State& state) {
    refresh(state);
    return std::ranges::count(textsOf(state, key), value) != 0;
  });
  if (isInTexts) return;
  makeFolders(folder_);
  if (keepPrivate(folder_, privateFolder)) listOf(key)->add(toQString(value).toStdString());
}

void SystemPreferences::remove(const std::string& key) {
  listOf(key)->remove();
  const bool isInTexts = state_.withLock([&](State& state) {
    refresh(state);
    state.provisional.erase(key);
    return !textsOf(state, key).empty();
  });
  if (isInTexts) change(key, {});
}

TextList* SystemPreferences::listOf(const std::string& key) const {
  return lists_.withLock([&](auto& lists) {
    auto& list = lists[key];
    if (!list) list = std::make_unique<TextList>(folder_ + "/" + key);
    return list.get();
  });
}

void SystemPreferences::change(const std::string& key, Texts texts) {
  state_.withLock([&](State& state) {
    state.provisional.erase(key);
    state.unsaved[key] = std::move(texts);
  });
  storeUnsaved();
}

/// One thread at a time stores; what others change meanwhile is already answered from memory, and stored after that.
void SystemPreferences::storeUnsaved() {
  auto changes = beginStoring();
  while (changes && endStoring(*changes, store(*changes))) changes = beginStoring();
}

std::optional<SystemPreferences::Changes> SystemPreferences::beginStoring() {
  return state_.withLock([this](State& state) -> std::optional<Changes> {
    if (state.isStoring || state.unsaved.empty()) return std::nullopt;
    // What else the file says is not read while it is being written.
    refresh(state);
    state.isStoring = true;
    Changes changes = state.unsaved;
    if (!state.isReadable) {
      // To write a damaged file is to lose what was cut off.
      changes.insert(state.provisional.begin(), state.provisional.end());
      changes.insert(state.known.begin(), state.known.end());
    }
    return changes;
  });
}

bool SystemPreferences::endStoring(const Changes& changes, bool isStored) {
  return state_.withLock([&](State& state) {
    state.isStoring = false;
    if (!isStored) return false;
    for (const auto& [key, texts] : changes) {
      if (texts.empty()) {
        state.known.erase(key);
      } else {
        state.known[key] = texts;
      }
    }
    std::erase_if(state.unsaved, [&](const auto& change) {
      const auto stored = changes.find(change.first);
      return stored != changes.end() && stored->second == change.second;
    });
    refresh(state);
    return true;
  });
}

SystemPreferences::Changes SystemPreferences::contents() const {
  Changes contents;
  const QSettings settings(QFile::decodeName(file_.c_str()), QSettings::IniFormat);
  for (const QString& key : settings.allKeys()) {
    if (Texts texts = orvel::textsOf(settings, key); !texts.empty()) contents[key.toStdString()] = std::move(texts);
  }
  return contents;
}

bool SystemPreferences::store(const Changes& changes) {
  if (lacksDescriptors(file_)) return false;
  // A file that can be read but not written is replaced, and what it says must not go with it.
  Changes all = isWritable(file_) || !isPlainFile(file_) ? Changes() : contents();
  for (const auto& [key, texts] : changes) all[key] = texts;
  if (!prepare(folder_, file_) || isLocked(file_)) return false;
  QSettings settings(QFile::decodeName(file_.c_str()), QSettings::IniFormat);
  for (const auto& [key, texts] : all) {
    QStringList list;
    for (const std::string& text : texts) list.push_back(toQString(text));
    if (list.isEmpty()) {
      settings.remove(toQString(key));
    } else {
      settings.setValue(toQString(key), list);
    }
  }
  settings.sync();
  // A format error only says that what was there before could not be read.
  return settings.status() != QSettings::AccessError;
}

}  // namespace orvel
