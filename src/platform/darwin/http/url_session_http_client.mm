// SPDX-License-Identifier: MIT
#include "platform/darwin/http/url_session_http_client.h"

#import <Foundation/Foundation.h>

#include "base/text.h"
#include "platform/darwin/core/ns_text.h"

/// One transfer; its session calls it on the main queue, one call after the other.
@interface NimboTransfer : NSObject <NSURLSessionDataDelegate>
@end

@implementation NimboTransfer {
 @public
  NSURLSession* session;
  std::size_t bodyLimit;
  nimbo::HttpResponse response;
  std::function<void(nimbo::HttpClient::Answer)> done;
}

- (void)finish:(nimbo::HttpClient::Answer)answer {
  const auto call = std::exchange(done, nullptr);
  [session invalidateAndCancel];
  if (call) call(std::move(answer));
}

- (void)cancel {
  done = nullptr;
  [session invalidateAndCancel];
}

// The answer that redirects is the answer.
- (void)URLSession:(NSURLSession*)anySession
                          task:(NSURLSessionTask*)task
    willPerformHTTPRedirection:(NSHTTPURLResponse*)redirect
                    newRequest:(NSURLRequest*)request
             completionHandler:(void (^)(NSURLRequest*))completionHandler {
  (void)anySession, (void)task, (void)redirect, (void)request;
  completionHandler(nil);
}

- (void)URLSession:(NSURLSession*)anySession
              dataTask:(NSURLSessionDataTask*)task
    didReceiveResponse:(NSURLResponse*)received
     completionHandler:(void (^)(NSURLSessionResponseDisposition))completionHandler {
  (void)anySession, (void)task;
  if (![received isKindOfClass:[NSHTTPURLResponse class]]) {
    completionHandler(NSURLSessionResponseCancel);
    return [self finish:tl::unexpected(nimbo::HttpFailure::notHttp)];
  }
  NSHTTPURLResponse* const http = static_cast<NSHTTPURLResponse*>(received);
  response.status = static_cast<int>(http.statusCode);
  [http.allHeaderFields enumerateKeysAndObjectsUsingBlock:^(NSString* name, NSString* value, BOOL*) {
    self->response.headers.emplace_back(nimbo::lowerCased(nimbo::text(name)), nimbo::trimmed(nimbo::text(value)));
  }];
  const bool isWanted = response.status < 300;
  completionHandler(isWanted ? NSURLSessionResponseAllow : NSURLSessionResponseCancel);
  if (!isWanted) [self finish:std::move(response)];
}

- (void)URLSession:(NSURLSession*)anySession dataTask:(NSURLSessionDataTask*)task didReceiveData:(NSData*)data {
  (void)anySession, (void)task;
  if (data.length > bodyLimit - response.body.size()) {
    return [self finish:tl::unexpected(nimbo::HttpFailure::unreachable)];
  }
  [data enumerateByteRangesUsingBlock:^(const void* bytes, NSRange range, BOOL*) {
    self->response.body.append(static_cast<const char*>(bytes), range.length);
  }];
}

- (void)URLSession:(NSURLSession*)anySession task:(NSURLSessionTask*)task didCompleteWithError:(NSError*)error {
  (void)anySession, (void)task;
  if (error == nil) return [self finish:std::move(response)];
  const bool isNotHttp = [error.domain isEqualToString:NSURLErrorDomain] && error.code == NSURLErrorBadServerResponse;
  [self finish:tl::unexpected(isNotHttp ? nimbo::HttpFailure::notHttp : nimbo::HttpFailure::unreachable)];
}

@end

namespace nimbo {
namespace {

NSURLSessionConfiguration* configuration(const HttpRequest& request) {
  NSURLSessionConfiguration* const made = NSURLSessionConfiguration.ephemeralSessionConfiguration;
  made.timeoutIntervalForRequest = static_cast<NSTimeInterval>(request.idleLimit.count());
  made.timeoutIntervalForResource = static_cast<NSTimeInterval>(request.wholeLimit.count());
  made.HTTPShouldSetCookies = NO;
  made.URLCache = nil;
  made.URLCredentialStorage = nil;
  return made;
}

NSURLRequest* nsRequest(const HttpRequest& request, NSURL* url) {
  NSMutableURLRequest* const made = [NSMutableURLRequest requestWithURL:url];
  made.HTTPShouldHandleCookies = NO;
  for (const auto& [name, value] : request.headers) [made setValue:nsText(value) forHTTPHeaderField:nsText(name)];
  if (request.bearerToken.size() > 0) {
    [made setValue:[@"Bearer " stringByAppendingString:nsText(request.bearerToken.view())]
        forHTTPHeaderField:@"Authorization"];
  }
  return made;
}

class UrlSessionHttpClient final : public HttpClient {
 public:
  explicit UrlSessionHttpClient(MainLoop& loop) : loop_(loop) {}

  [[nodiscard]] Subscription get(HttpRequest request, std::function<void(Answer)> done) override {
    NimboTransfer* const transfer = [[NimboTransfer alloc] init];
    transfer->bodyLimit = request.bodyLimit;
    transfer->done = std::move(done);
    NSURL* const url = [NSURL URLWithString:nsText(request.url)];
    if (![url.scheme.lowercaseString isEqualToString:@"https"]) {
      loop_.post([transfer] { [transfer finish:tl::unexpected(HttpFailure::unreachable)]; });
    } else {
      transfer->session = [NSURLSession sessionWithConfiguration:configuration(request)
                                                        delegate:transfer
                                                   delegateQueue:NSOperationQueue.mainQueue];
      [[transfer->session dataTaskWithRequest:nsRequest(request, url)] resume];
    }
    return Subscription([transfer] { [transfer cancel]; });
  }

 private:
  MainLoop& loop_;
};

}  // namespace

std::unique_ptr<HttpClient> makeUrlSessionHttpClient(MainLoop& loop) {
  return std::make_unique<UrlSessionHttpClient>(loop);
}

}  // namespace nimbo
