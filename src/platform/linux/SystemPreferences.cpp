#include "platform/linux/SystemPreferences.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QSettings>
#include <QStandardPaths>
#include <QStringConverter>
#include <QStringList>
#include <cerrno>
#include <chrono>
#include <utility>

namespace orvel {
namespace {

constexpr mode_t permissionBits = 07777;
constexpr mode_t ownFolder = 0700;
constexpr mode_t ownFile = 0600;
constexpr std::chrono::milliseconds noPatience{0};
constexpr std::chrono::milliseconds writersPatience{500};  // others of us write for a millisecond
constexpr off_t largestFile = 1024 * 1024;                 // ours has a few hundred bytes

QString toQString(const std::string& text) {
  // A byte order mark at the start is part of the text; QString::fromUtf8 would drop it.
  QStringDecoder decode(QStringDecoder::Utf8,
                        QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
  return decode(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
}

bool isRegularFile(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

/// Whether it can be one of ours: anything else under that name, such as a pipe, might keep a reader waiting for ever.
bool isWorthReading(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= largestFile;
}

/// Whether the file is there but cannot be opened just now, as when strangers hold all that this process may open. To
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

/// Whether another program holds the lock of the file for longer than `patience`. QSettings would wait without end for
/// one that was stopped meanwhile.
bool isLocked(const std::string& file, std::chrono::milliseconds patience) {
  QLockFile lock(QFile::decodeName((file + ".lock").c_str()));
  lock.setStaleLockTime(0);
  return !lock.tryLock(static_cast<int>(patience.count())) && lock.error() == QLockFile::LockFailedError;
}

void makeFolders(const std::string& path) {
  for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
    mkdir(path.substr(0, end).c_str(), ownFolder);
  }
  mkdir(path.c_str(), ownFolder);
}

bool createPrivately(const std::string& file) {
  const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownFile);
  if (descriptor < 0) return false;
  close(descriptor);
  return true;
}

/// Makes sure that `file` is there, ours, and closed to others before anything is written: what replaces it takes over
/// its permissions, and does so before it has a name. Someone else's file makes room for one of ours.
bool prepare(const std::string& folder, const std::string& file) {
  makeFolders(folder);
  if (!keepPrivate(folder, ownFolder)) return false;
  if (createPrivately(file)) return true;
  if (!isRegularFile(file)) return false;
  if (isWorthReading(file) && keepPrivate(file, ownFile) && isWritable(file)) return true;
  return unlink(file.c_str()) == 0 && createPrivately(file);
}

/// The user's configuration folder. A relative one does not count: it would be another one in every working folder.
std::string configurationFolder() {
  std::string folder =
      QFile::encodeName(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)).toStdString();
  if (folder.starts_with('/')) return folder;
  return QFile::encodeName(QDir::homePath()).toStdString() + "/.config";
}

std::vector<std::string> textsOf(const QSettings& settings, const QString& key) {
  std::vector<std::string> texts;
  for (const QString& text : settings.value(key).toStringList()) texts.push_back(text.toStdString());
  return texts;
}

}  // namespace

SystemPreferences::SystemPreferences() : folder_(configurationFolder() + "/orvel"), file_(folder_ + "/orvel.conf") {}

std::optional<std::string> SystemPreferences::string(const std::string& key) const {
  Texts texts = strings(key);
  if (texts.size() != 1) return std::nullopt;
  return std::move(texts.front());
}

std::vector<std::string> SystemPreferences::strings(const std::string& key) const {
  return state_.withLock([&](State& state) -> Texts {
    // What stood in the way may be gone.
    if (!state.unsaved.empty() && store(state.unsaved, noPatience)) state.unsaved.clear();
    if (const auto change = state.unsaved.find(key); change != state.unsaved.end()) return change->second;
    if (!isWorthReading(file_)) return {};
    keepPrivate(file_, ownFile);
    if (lacksDescriptors(file_)) return state.known[key];
    return state.known[key] =
               textsOf(QSettings(QFile::decodeName(file_.c_str()), QSettings::IniFormat), toQString(key));
  });
}

void SystemPreferences::setString(const std::string& key, const std::string& value) {
  change(key, {value});
}

void SystemPreferences::setStrings(const std::string& key, const std::vector<std::string>& values) {
  change(key, values);
}

void SystemPreferences::remove(const std::string& key) {
  change(key, {});
}

void SystemPreferences::change(const std::string& key, Texts texts) {
  state_.withLock([&](State& state) {
    state.unsaved[key] = std::move(texts);
    if (store(state.unsaved, writersPatience)) state.unsaved.clear();
  });
}

SystemPreferences::Changes SystemPreferences::contents() const {
  Changes contents;
  if (!isWorthReading(file_)) return contents;
  const QSettings settings(QFile::decodeName(file_.c_str()), QSettings::IniFormat);
  for (const QString& key : settings.allKeys()) contents[key.toStdString()] = textsOf(settings, key);
  return contents;
}

bool SystemPreferences::store(const Changes& changes, std::chrono::milliseconds patience) const {
  if (lacksDescriptors(file_)) return false;
  // A file that can be read but not written is replaced, and what it says must not go with it.
  Changes all = isWritable(file_) ? Changes() : contents();
  for (const auto& [key, texts] : changes) all[key] = texts;
  if (!prepare(folder_, file_) || isLocked(file_, patience)) return false;
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
