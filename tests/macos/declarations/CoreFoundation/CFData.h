#pragma once

MAC_EXTERN CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count) MAC_RETURNS_RETAINED;
