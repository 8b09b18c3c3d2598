#pragma once

#include "base/Guarded.hpp"
#include "platform/linux/files/Files.hpp"
#include "platform/linux/files/TextList.hpp"
#include "session/Preferences.hpp"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// The preferences in the folder "orvel" of the user's configuration folder, readable by the user alone: the texts in
/// "orvel.conf", each list in a file of its own that is named after its key, so that no text depends on how long or how
/// damaged a list is. (Lists that stand in "orvel.conf", where they stood once, count as well.)
///
/// What other processes write is seen; the file is read anew only when it has changed. While it is there but cannot be
/// read, or is damaged, what was read before holds. A text that cannot be stored is kept in memory, answered from
/// there, and stored with the next change, the next text for a list, or at the end; a text of a list is not kept then.
///
/// Threads: any. Reading a text writes nothing and waits for no writing.
class SystemPreferences final : public Preferences {
 public:
  SystemPreferences();
  ~SystemPreferences() override;
  SystemPreferences(const SystemPreferences&) = delete;
  SystemPreferences& operator=(const SystemPreferences&) = delete;

  std::optional<std::string> string(const std::string& key) const override;
  void setString(const std::string& key, const std::string& value) override;
  void setMissing(const std::string& key, const std::string& value) override;
  void add(const std::string& key, const std::string& value) override;
  void remove(const std::string& key) override;

 private:
  /// As the file has it, a single text is a list of one; a list of none is as good as missing.
  using Texts = std::vector<std::string>;
  using Changes = std::map<std::string, Texts>;

  struct State {
    Changes known;                   // as last read
    std::optional<FileStamp> stamp;  // of the file that `known` is of
    std::size_t contentHash = 0;
    bool isReadable = true;
    Changes unsaved;
    Changes provisional;  // stand in for what cannot be read
    bool isStoring = false;
  };

  void refresh(State& state) const;
  void read(State& state, const FileStamp& stamp) const;
  Texts textsOf(State& state, const std::string& key) const;
  void change(const std::string& key, Texts texts);
  void storeUnsaved();
  std::optional<Changes> beginStoring();
  bool endStoring(const Changes& changes, bool isStored);
  Changes contents() const;
  bool store(const Changes& changes);
  TextList* listOf(const std::string& key) const;

  const std::string folder_;
  const std::string file_;
  mutable Guarded<State> state_;
  mutable Guarded<std::map<std::string, std::unique_ptr<TextList>>> lists_;  // by key; none is taken away
};

}  // namespace orvel
