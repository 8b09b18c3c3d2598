#pragma once

namespace orvel {

/// The toolkit's own connection to the X server. At its end the toolkit waits for the server, however long that hangs.
///
/// Threads: made on the main thread, while the toolkit is there; `breakOff` on any until the toolkit goes.
class ToolkitConnection {
 public:
  ToolkitConnection();

  /// Parts the toolkit from the server at once. It must not handle events after that, for it would end the program.
  void breakOff() const;

 private:
  int socket_ = -1;
};

}  // namespace orvel
