#pragma once

// What the headers of ICU ask.
#define TARGET_OS_MAC 1
#define TARGET_OS_IPHONE 0
#define TARGET_OS_SIMULATOR 0
