#pragma once

#pragma clang assume_nonnull begin

typedef NSString* NSKeyValueChangeKey;
typedef NSUInteger NSKeyValueObservingOptions;
enum : NSKeyValueObservingOptions {
  NSKeyValueObservingOptionNew = 0x01,
  NSKeyValueObservingOptionOld = 0x02,
  NSKeyValueObservingOptionInitial = 0x04,
};

@interface NSObject (KeyValueObserving)
- (void)addObserver:(NSObject*)observer
         forKeyPath:(NSString*)keyPath
            options:(NSKeyValueObservingOptions)options
            context:(nullable void*)context;
- (void)removeObserver:(NSObject*)observer
            forKeyPath:(NSString*)keyPath
               context:(nullable void*)context MAC_SINCE(10.7);
@end

@interface NSObject (KeyValueObserver)
- (void)observeValueForKeyPath:(nullable NSString*)keyPath
                      ofObject:(nullable id)object
                        change:(nullable NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(nullable void*)context;
@end

#pragma clang assume_nonnull end
