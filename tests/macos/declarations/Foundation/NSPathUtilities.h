#pragma once

MAC_EXTERN NSString* _Nonnull NSHomeDirectory(void);
