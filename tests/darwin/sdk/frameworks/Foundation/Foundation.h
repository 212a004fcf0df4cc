// SPDX-License-Identifier: MIT
// What the program uses of Foundation, as Apple documents it. Only for compilers that have no macOS.
#pragma once

#include <objc/NSObject.h>
#include <os/availability.h>
#include <stddef.h>
#include <stdint.h>

typedef double NSTimeInterval;
typedef struct CGPoint {
  double x, y;
} CGPoint, NSPoint;
typedef struct CGSize {
  double width, height;
} CGSize, NSSize;
typedef struct CGRect {
  CGPoint origin;
  CGSize size;
} CGRect, NSRect;
static inline NSPoint NSMakePoint(double x, double y) { return (NSPoint){x, y}; }
static inline NSSize NSMakeSize(double w, double h) { return (NSSize){w, h}; }
static inline NSRect NSMakeRect(double x, double y, double w, double h) { return (NSRect){{x, y}, {w, h}}; }
static inline double NSMaxY(NSRect rect) { return rect.origin.y + rect.size.height; }

@class NSArray<Element>, NSBundle, NSData, NSDate, NSDictionary<Key, Value>, NSError, NSNotification, NSOperationQueue,
    NSString, NSURL, NSURLRequest;

#pragma clang assume_nonnull begin

typedef NSString* NSNotificationName;
typedef NSString* NSKeyValueChangeKey;
typedef NSString* NSErrorDomain;

@protocol NSCopying
@end

@interface NSString : NSObject <NSCopying>
@property(readonly, copy) NSString* lowercaseString;
@property(nullable, readonly) const char* UTF8String;
+ (nullable instancetype)stringWithUTF8String:(const char*)text;
- (nullable instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)length encoding:(NSUInteger)encoding;
- (BOOL)isEqualToString:(NSString*)other;
- (NSString*)stringByAppendingPathComponent:(NSString*)component;
- (NSString*)stringByAppendingString:(NSString*)text;
@end
enum : NSUInteger { NSUTF8StringEncoding = 4 };

@interface NSNumber : NSObject <NSCopying>
+ (NSNumber*)numberWithUnsignedLong:(unsigned long)value;
@end

typedef struct {
  unsigned long state;
  id __unsafe_unretained _Nullable* _Nullable itemsPtr;
  unsigned long* _Nullable mutationsPtr;
  unsigned long extra[5];
} NSFastEnumerationState;
@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)length;
@end

@interface NSArray<__covariant Element> : NSObject <NSFastEnumeration>
@property(readonly) NSUInteger count;
@property(nullable, readonly) Element firstObject;
+ (instancetype)arrayWithObjects:(const Element _Nonnull[_Nullable])objects count:(NSUInteger)count;
@end
@interface NSMutableArray<Element> : NSArray <Element>
+ (instancetype)array;
- (void)addObject:(Element)object;
@end

@interface NSDictionary<__covariant Key, __covariant Value> : NSObject <NSFastEnumeration>
+ (instancetype)dictionaryWithObjects:(const Value _Nonnull[_Nullable])objects
                              forKeys:(const Key<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
- (nullable Value)objectForKeyedSubscript:(Key)key;
- (void)enumerateKeysAndObjectsUsingBlock:(void (^)(Key key, Value value, BOOL* stop))block;
@end

@interface NSData : NSObject
+ (instancetype)dataWithBytes:(nullable const void*)bytes length:(NSUInteger)length;
@property(readonly) NSUInteger length;
- (void)enumerateByteRangesUsingBlock:(void (^)(const void* bytes, struct _NSRange range, BOOL* stop))block;
- (BOOL)writeToURL:(NSURL*)url options:(NSUInteger)options error:(NSError* _Nullable* _Nullable)error;
@end
struct _NSRange {
  NSUInteger location, length;
};
typedef struct _NSRange NSRange;
enum : NSUInteger { NSDataWritingAtomic = 1 };

@interface NSDate : NSObject <NSCopying>
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)seconds;
@end
typedef enum NSDateFormatterStyle : NSUInteger {
  NSDateFormatterNoStyle = 0,
  NSDateFormatterShortStyle = 1,
  NSDateFormatterMediumStyle = 2,
} NSDateFormatterStyle;
@interface NSDateFormatter : NSObject
+ (NSString*)localizedStringFromDate:(NSDate*)date
                           dateStyle:(NSDateFormatterStyle)dateStyle
                           timeStyle:(NSDateFormatterStyle)timeStyle;
@end

@interface NSError : NSObject
@property(readonly) NSInteger code;
@property(readonly, copy) NSErrorDomain domain;
@property(readonly, copy) NSString* localizedDescription;
@end

@interface NSURL : NSObject <NSCopying>
+ (nullable instancetype)URLWithString:(NSString*)text;
+ (NSURL*)fileURLWithPath:(NSString*)path;
@property(nullable, readonly, copy) NSString* absoluteString;
@property(nullable, readonly, copy) NSString* scheme;
@property(readonly) const char* fileSystemRepresentation;
@end

@interface NSBundle : NSObject
@property(class, readonly) NSBundle* mainBundle;
@property(nullable, readonly, copy) NSString* bundleIdentifier;
@property(nullable, readonly, copy) NSString* privateFrameworksPath;
@property(readonly, copy) NSURL* bundleURL;
+ (nullable instancetype)bundleWithPath:(NSString*)path;
- (BOOL)load;
- (nullable Class)classNamed:(NSString*)name;
@end

@interface NSFileManager : NSObject
@property(class, readonly) NSFileManager* defaultManager;
- (nullable NSURL*)containerURLForSecurityApplicationGroupIdentifier:(NSString*)group;
- (BOOL)createDirectoryAtURL:(NSURL*)url
    withIntermediateDirectories:(BOOL)intermediate
                     attributes:(nullable NSDictionary<NSString*, id>*)attributes
                          error:(NSError* _Nullable* _Nullable)error;
- (BOOL)setAttributes:(NSDictionary<NSString*, id>*)attributes
         ofItemAtPath:(NSString*)path
                error:(NSError* _Nullable* _Nullable)error;
@end
extern NSString* const NSFilePosixPermissions;

@interface NSNotification : NSObject
@property(nullable, readonly, copy) NSDictionary* userInfo;
@end
@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(nullable NSNotificationName)name
             object:(nullable id)object;
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name
                            object:(nullable id)object
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block;
- (void)removeObserver:(id)observer;
@end

typedef uint32_t AEKeyword;
@interface NSAppleEventDescriptor : NSObject
- (nullable NSAppleEventDescriptor*)attributeDescriptorForKeyword:(AEKeyword)keyword;
@end
@interface NSAppleEventManager : NSObject
@property(class, readonly, strong) NSAppleEventManager* sharedAppleEventManager;
@property(nullable, readonly, retain) NSAppleEventDescriptor* currentAppleEvent;
@end

@interface NSOperationQueue : NSObject
@property(class, readonly, strong) NSOperationQueue* mainQueue;
- (void)addOperationWithBlock:(void (^)(void))block;
@end

@interface NSObject (NSKeyValueObserving)
- (void)addObserver:(NSObject*)observer
         forKeyPath:(NSString*)path
            options:(NSUInteger)options
            context:(nullable void*)context;
- (void)removeObserver:(NSObject*)observer forKeyPath:(NSString*)path;
- (void)observeValueForKeyPath:(nullable NSString*)path
                      ofObject:(nullable id)object
                        change:(nullable NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(nullable void*)context;
@end

@interface NSURLRequest : NSObject
@end
@interface NSMutableURLRequest : NSURLRequest
+ (instancetype)requestWithURL:(NSURL*)url;
@property BOOL HTTPShouldHandleCookies;
- (void)setValue:(nullable NSString*)value forHTTPHeaderField:(NSString*)field;
@end
@interface NSURLResponse : NSObject
@end
@interface NSHTTPURLResponse : NSURLResponse
@property(readonly) NSInteger statusCode;
@property(readonly, copy) NSDictionary* allHeaderFields;
@end

@interface NSURLSessionConfiguration : NSObject
@property(class, readonly, strong) NSURLSessionConfiguration* ephemeralSessionConfiguration;
@property NSTimeInterval timeoutIntervalForRequest;
@property NSTimeInterval timeoutIntervalForResource;
@property BOOL HTTPShouldSetCookies;
@property(nullable, retain) id URLCache;
@property(nullable, retain) id URLCredentialStorage;
@end
@interface NSURLSessionTask : NSObject
- (void)resume;
- (void)cancel;
@end
@interface NSURLSessionDataTask : NSURLSessionTask
@end
@class NSURLSession;
typedef enum NSURLSessionResponseDisposition : NSInteger {
  NSURLSessionResponseCancel = 0,
  NSURLSessionResponseAllow = 1,
} NSURLSessionResponseDisposition;
@protocol NSURLSessionDelegate <NSObject>
@end
@protocol NSURLSessionTaskDelegate <NSURLSessionDelegate>
@optional
- (void)URLSession:(NSURLSession*)session
                          task:(NSURLSessionTask*)task
    willPerformHTTPRedirection:(NSHTTPURLResponse*)response
                    newRequest:(NSURLRequest*)request
             completionHandler:(void (^)(NSURLRequest* _Nullable request))completionHandler;
- (void)URLSession:(NSURLSession*)session task:(NSURLSessionTask*)task didCompleteWithError:(nullable NSError*)error;
@end
@protocol NSURLSessionDataDelegate <NSURLSessionTaskDelegate>
@optional
- (void)URLSession:(NSURLSession*)session
              dataTask:(NSURLSessionDataTask*)task
    didReceiveResponse:(NSURLResponse*)response
     completionHandler:(void (^)(NSURLSessionResponseDisposition disposition))completionHandler;
- (void)URLSession:(NSURLSession*)session dataTask:(NSURLSessionDataTask*)task didReceiveData:(NSData*)data;
@end
@interface NSURLSession : NSObject
+ (NSURLSession*)sessionWithConfiguration:(NSURLSessionConfiguration*)configuration
                                 delegate:(nullable id<NSURLSessionDelegate>)delegate
                            delegateQueue:(nullable NSOperationQueue*)queue;
- (NSURLSessionDataTask*)dataTaskWithRequest:(NSURLRequest*)request;
- (void)invalidateAndCancel;
@end
extern NSErrorDomain const NSURLErrorDomain;
enum : NSInteger { NSURLErrorBadServerResponse = -1011 };

#pragma clang assume_nonnull end
