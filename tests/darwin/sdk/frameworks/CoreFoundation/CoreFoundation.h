// SPDX-License-Identifier: MIT
// Declarations of what is used of CoreFoundation, after its public documentation.
#pragma once

#include <stddef.h>
#include <stdint.h>

extern "C" {

typedef unsigned char Boolean;
typedef uint32_t UInt32;
typedef uint8_t UInt8;
typedef uint16_t UniChar;
typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef unsigned long CFHashCode;
typedef double CFTimeInterval;
typedef double CFAbsoluteTime;
typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFDate* CFDateRef;
typedef const struct __CFData* CFDataRef;
typedef const struct __CFArray* CFArrayRef;
typedef struct __CFArray* CFMutableArrayRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef struct {
  CFIndex location;
  CFIndex length;
} CFRange;
static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
  CFRange range = {location, length};
  return range;
}

// Objects

extern const CFAllocatorRef kCFAllocatorDefault;

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
Boolean CFEqual(CFTypeRef object, CFTypeRef other);

// Strings

typedef UInt32 CFStringEncoding;
enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };

CFTypeID CFStringGetTypeID(void);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex numBytes,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                         Boolean isExternalRepresentation, UInt8* buffer, CFIndex maxBufLen, CFIndex* usedBufLen);

// Numbers, booleans, dates, data

typedef CFIndex CFNumberType;
enum : CFNumberType { kCFNumberSInt64Type = 4, kCFNumberFloat64Type = 6 };

CFTypeID CFNumberGetTypeID(void);
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
Boolean CFNumberIsFloatType(CFNumberRef number);

extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
CFTypeID CFBooleanGetTypeID(void);
Boolean CFBooleanGetValue(CFBooleanRef boolean);

/// Seconds from 1 January 1970 to 1 January 2001, from which absolute times count.
extern const CFTimeInterval kCFAbsoluteTimeIntervalSince1970;
CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);
CFTypeID CFDateGetTypeID(void);
CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime at);
CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date);

CFTypeID CFDataGetTypeID(void);
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CFIndex CFDataGetLength(CFDataRef data);
const UInt8* CFDataGetBytePtr(CFDataRef data);

// Collections

typedef struct {
  CFIndex version;
  const void* (*retain)(CFAllocatorRef, const void*);
  void (*release)(CFAllocatorRef, const void*);
  CFStringRef (*copyDescription)(const void*);
  Boolean (*equal)(const void*, const void*);
} CFArrayCallBacks;
extern const CFArrayCallBacks kCFTypeArrayCallBacks;

CFTypeID CFArrayGetTypeID(void);
CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity, const CFArrayCallBacks* callBacks);
void CFArrayAppendValue(CFMutableArrayRef array, const void* value);
CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

typedef struct {
  CFIndex version;
  const void* (*retain)(CFAllocatorRef, const void*);
  void (*release)(CFAllocatorRef, const void*);
  CFStringRef (*copyDescription)(const void*);
  Boolean (*equal)(const void*, const void*);
  CFHashCode (*hash)(const void*);
} CFDictionaryKeyCallBacks;
typedef struct {
  CFIndex version;
  const void* (*retain)(CFAllocatorRef, const void*);
  void (*release)(CFAllocatorRef, const void*);
  CFStringRef (*copyDescription)(const void*);
  Boolean (*equal)(const void*, const void*);
} CFDictionaryValueCallBacks;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

CFTypeID CFDictionaryGetTypeID(void);
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks);
void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys, const void** values);

// Bundles

typedef struct __CFBundle* CFBundleRef;
/// Null for a program that lies in none.
CFBundleRef CFBundleGetMainBundle(void);
/// Not to be released.
CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);

// Preferences

extern const CFStringRef kCFPreferencesCurrentUser;
extern const CFStringRef kCFPreferencesAnyHost;

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef application);
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef application);
CFDictionaryRef CFPreferencesCopyMultiple(CFArrayRef keysToFetch, CFStringRef application, CFStringRef user,
                                          CFStringRef host);
void CFPreferencesSetMultiple(CFDictionaryRef keysToSet, CFArrayRef keysToRemove, CFStringRef application,
                              CFStringRef user, CFStringRef host);
Boolean CFPreferencesSynchronize(CFStringRef application, CFStringRef user, CFStringRef host);

// Run loops

typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef struct __CFRunLoopObserver* CFRunLoopObserverRef;
typedef struct __CFRunLoopTimer* CFRunLoopTimerRef;
typedef CFStringRef CFRunLoopMode;
extern const CFRunLoopMode kCFRunLoopCommonModes;

CFRunLoopRef CFRunLoopGetMain(void);
void CFRunLoopRun(void);
void CFRunLoopStop(CFRunLoopRef loop);
void CFRunLoopWakeUp(CFRunLoopRef loop);

typedef struct {
  CFIndex version;
  void* info;
  const void* (*retain)(const void*);
  void (*release)(const void*);
  CFStringRef (*copyDescription)(const void*);
  Boolean (*equal)(const void*, const void*);
  CFHashCode (*hash)(const void*);
  void (*schedule)(void*, CFRunLoopRef, CFRunLoopMode);
  void (*cancel)(void*, CFRunLoopRef, CFRunLoopMode);
  void (*perform)(void*);
} CFRunLoopSourceContext;

CFRunLoopSourceRef CFRunLoopSourceCreate(CFAllocatorRef allocator, CFIndex order, CFRunLoopSourceContext* context);
void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopSourceSignal(CFRunLoopSourceRef source);
void CFRunLoopSourceInvalidate(CFRunLoopSourceRef source);

typedef CFOptionFlags CFRunLoopActivity;
enum : CFRunLoopActivity { kCFRunLoopBeforeTimers = 1UL << 1, kCFRunLoopAfterWaiting = 1UL << 6 };
typedef struct {
  CFIndex version;
  void* info;
  const void* (*retain)(const void*);
  void (*release)(const void*);
  CFStringRef (*copyDescription)(const void*);
} CFRunLoopObserverContext;
typedef void (*CFRunLoopObserverCallBack)(CFRunLoopObserverRef, CFRunLoopActivity, void* info);

CFRunLoopObserverRef CFRunLoopObserverCreate(CFAllocatorRef allocator, CFOptionFlags activities, Boolean repeats,
                                             CFIndex order, CFRunLoopObserverCallBack callout,
                                             CFRunLoopObserverContext* context);
void CFRunLoopAddObserver(CFRunLoopRef loop, CFRunLoopObserverRef observer, CFRunLoopMode mode);
void CFRunLoopObserverInvalidate(CFRunLoopObserverRef observer);

typedef CFRunLoopObserverContext CFRunLoopTimerContext;
typedef void (*CFRunLoopTimerCallBack)(CFRunLoopTimerRef, void* info);

CFRunLoopTimerRef CFRunLoopTimerCreate(CFAllocatorRef allocator, CFAbsoluteTime fireDate, CFTimeInterval interval,
                                       CFOptionFlags flags, CFIndex order, CFRunLoopTimerCallBack callout,
                                       CFRunLoopTimerContext* context);
void CFRunLoopAddTimer(CFRunLoopRef loop, CFRunLoopTimerRef timer, CFRunLoopMode mode);
void CFRunLoopTimerSetTolerance(CFRunLoopTimerRef timer, CFTimeInterval tolerance);
void CFRunLoopTimerInvalidate(CFRunLoopTimerRef timer);

typedef int CFFileDescriptorNativeDescriptor;
typedef struct __CFFileDescriptor* CFFileDescriptorRef;
enum : CFOptionFlags { kCFFileDescriptorReadCallBack = 1UL << 0 };
typedef CFRunLoopObserverContext CFFileDescriptorContext;
typedef void (*CFFileDescriptorCallBack)(CFFileDescriptorRef, CFOptionFlags, void* info);

CFFileDescriptorRef CFFileDescriptorCreate(CFAllocatorRef allocator, CFFileDescriptorNativeDescriptor descriptor,
                                           Boolean closeOnInvalidate, CFFileDescriptorCallBack callout,
                                           const CFFileDescriptorContext* context);
/// Until the next call of the callback, which disables it again.
void CFFileDescriptorEnableCallBacks(CFFileDescriptorRef descriptor, CFOptionFlags callBackTypes);
void CFFileDescriptorInvalidate(CFFileDescriptorRef descriptor);
Boolean CFFileDescriptorIsValid(CFFileDescriptorRef descriptor);
CFRunLoopSourceRef CFFileDescriptorCreateRunLoopSource(CFAllocatorRef allocator, CFFileDescriptorRef descriptor,
                                                       CFIndex order);

}  // extern "C"
