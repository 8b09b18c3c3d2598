#pragma once

#include "platform/Instance.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <memory>
#include <optional>
#include <string>

namespace orvel {

class ApplicationObject;

/// Orvel by its name on the session bus, which one program at a time can have.
///
/// Threads: the main thread. `claim` waits a second for the bus at most, `showOther` two.
class SystemInstance final : public Instance {
 public:
  /// Takes the activation token out of the environment, so that neither the toolkit nor what is started later uses it.
  SystemInstance();
  ~SystemInstance() override;
  SystemInstance(const SystemInstance&) = delete;
  SystemInstance& operator=(const SystemInstance&) = delete;

  bool claim(ShowPanel showPanel) override;
  bool showOther() override;
  const std::string& token() const override { return token_; }

 private:
  const std::string token_;
  std::optional<MessageBus> bus_;
  std::unique_ptr<ApplicationObject> object_;
};

}  // namespace orvel
