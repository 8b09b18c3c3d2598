#pragma once

/// The first of the languages that the user has chosen in System Settings.
namespace orvel::UserLanguage {

/// Has the library that sorts names go by it, everywhere in this program. By itself it looks at the environment, which
/// names no language in a program that Finder has started. Threads: the main thread, before there are others.
void apply();

}  // namespace orvel::UserLanguage
