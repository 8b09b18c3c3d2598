#pragma once

/// The limit of open files of this process. Threads: any.
namespace orvel::OpenFiles {

/// Raises it: every phone needs one, and the usual limit is 256.
void allowMany();

}  // namespace orvel::OpenFiles
