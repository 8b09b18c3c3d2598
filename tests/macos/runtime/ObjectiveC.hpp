#pragma once

#include <map>
#include <string>

/// What the runtime knows of the objects that it has made.
namespace objectivec {

/// How many objects of each class are alive. Blocks on the heap count as "block". Threads: any.
std::map<std::string, int> livingObjects();

}  // namespace objectivec
