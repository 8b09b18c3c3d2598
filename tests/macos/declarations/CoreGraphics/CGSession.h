#pragma once

/// Null outside of a session of the window server's.
MAC_EXTERN CFDictionaryRef _Nullable CGSessionCopyCurrentDictionary(void) MAC_RETURNS_RETAINED MAC_SINCE(10.3);
