// WebKit.h : la doublure de WebKit. Elle ne dessine ni n’exécute rien : elle note ce que le bureau demande,
// et un scénario joue ce qui arrive à la page (EssaiWebKit.hpp).
#pragma once

#import <AppKit/AppKit.h>

typedef NS_ENUM(NSInteger, WKUserScriptInjectionTime) {
  WKUserScriptInjectionTimeAtDocumentStart,
  WKUserScriptInjectionTimeAtDocumentEnd
};
typedef NS_ENUM(NSInteger, WKNavigationActionPolicy) {
  WKNavigationActionPolicyCancel,
  WKNavigationActionPolicyAllow
};
typedef NS_ENUM(NSInteger, WKNavigationType) {
  WKNavigationTypeLinkActivated,
  WKNavigationTypeFormSubmitted,
  WKNavigationTypeBackForward,
  WKNavigationTypeReload,
  WKNavigationTypeFormResubmitted,
  WKNavigationTypeOther = -1
};
typedef NS_ENUM(NSInteger, WKPermissionDecision) {
  WKPermissionDecisionPrompt,
  WKPermissionDecisionGrant,
  WKPermissionDecisionDeny
};
typedef NS_ENUM(NSInteger, WKMediaCaptureType) { WKMediaCaptureTypeCamera };

@class WKWebView, WKWebViewConfiguration, WKUserContentController;

@interface WKNavigation : NSObject
@end
@interface WKFrameInfo : NSObject
@end
@interface WKWindowFeatures : NSObject
@end
@interface WKSecurityOrigin : NSObject
@end
@interface WKContentWorld : NSObject
@property(class, nonatomic, readonly) WKContentWorld* pageWorld;
@end

@interface WKNavigationAction : NSObject
@property(nonatomic, copy) NSURLRequest* request;
@property(nonatomic, strong) WKFrameInfo* targetFrame;
@property(nonatomic) WKNavigationType navigationType;
@end

@interface WKScriptMessage : NSObject
@property(nonatomic, copy) NSString* name;
@property(nonatomic, strong) id body;
@end
@protocol WKScriptMessageHandler <NSObject>
- (void)userContentController:(WKUserContentController*)contenus
      didReceiveScriptMessage:(WKScriptMessage*)message;
@end

@interface WKUserScript : NSObject
- (instancetype)initWithSource:(NSString*)source
                 injectionTime:(WKUserScriptInjectionTime)moment
              forMainFrameOnly:(BOOL)cadrePrincipal;
@property(nonatomic, readonly) NSString* source;
@property(nonatomic, readonly) WKUserScriptInjectionTime injectionTime;
@property(nonatomic, readonly) BOOL forMainFrameOnly;
@end

@interface WKUserContentController : NSObject
@property(nonatomic, readonly) NSArray* userScripts;
- (void)addUserScript:(WKUserScript*)script;
- (void)addScriptMessageHandler:(id<WKScriptMessageHandler>)destinataire name:(NSString*)nom;
@end

@interface WKWebsiteDataStore : NSObject
+ (WKWebsiteDataStore*)defaultDataStore;
@end
@interface WKWebpagePreferences : NSObject
@property(nonatomic) BOOL allowsContentJavaScript;
@end
@interface WKPreferences : NSObject
@property(nonatomic) BOOL javaScriptCanOpenWindowsAutomatically;
@end
@interface WKWebViewConfiguration : NSObject
@property(nonatomic, strong) WKUserContentController* userContentController;
@property(nonatomic, strong) WKWebsiteDataStore* websiteDataStore;
@property(nonatomic, strong) WKWebpagePreferences* defaultWebpagePreferences;
@property(nonatomic, strong) WKPreferences* preferences;
@property(nonatomic, copy) NSString* applicationNameForUserAgent;
@end

@protocol WKNavigationDelegate <NSObject>
@optional
- (void)webView:(WKWebView*)vue
    decidePolicyForNavigationAction:(WKNavigationAction*)action
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decider;
- (void)webView:(WKWebView*)vue didStartProvisionalNavigation:(WKNavigation*)navigation;
- (void)webView:(WKWebView*)vue didFinishNavigation:(WKNavigation*)navigation;
- (void)webView:(WKWebView*)vue didFailNavigation:(WKNavigation*)navigation withError:(NSError*)erreur;
- (void)webView:(WKWebView*)vue
    didFailProvisionalNavigation:(WKNavigation*)navigation
                       withError:(NSError*)erreur;
- (void)webViewWebContentProcessDidTerminate:(WKWebView*)vue;
@end

@protocol WKUIDelegate <NSObject>
@optional
- (WKWebView*)webView:(WKWebView*)vue
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)action
                    windowFeatures:(WKWindowFeatures*)traits;
- (void)webView:(WKWebView*)vue
    requestMediaCapturePermissionForOrigin:(WKSecurityOrigin*)origine
                          initiatedByFrame:(WKFrameInfo*)cadre
                                      type:(WKMediaCaptureType)sorte
                           decisionHandler:(void (^)(WKPermissionDecision))decider;
@end

@interface WKWebView : NSView
- (instancetype)initWithFrame:(NSRect)cadre configuration:(WKWebViewConfiguration*)configuration;
@property(nonatomic, readonly) WKWebViewConfiguration* configuration;
@property(nonatomic, weak) id<WKNavigationDelegate> navigationDelegate;
@property(nonatomic, weak) id<WKUIDelegate> UIDelegate;
@property(nonatomic, readonly) double estimatedProgress;
@property(nonatomic) BOOL allowsBackForwardNavigationGestures;
@property(nonatomic, strong) NSColor* underPageBackgroundColor;
@property(nonatomic, getter=isInspectable) BOOL inspectable;
@property(nonatomic) CGFloat pageZoom;
@property(nonatomic) CGFloat magnification;
- (WKNavigation*)loadRequest:(NSURLRequest*)requete;
- (void)stopLoading;
- (void)evaluateJavaScript:(NSString*)expression completionHandler:(void (^)(id, NSError*))fini;
- (void)callAsyncJavaScript:(NSString*)corps
                  arguments:(NSDictionary*)arguments
                    inFrame:(WKFrameInfo*)cadre
             inContentWorld:(WKContentWorld*)monde
          completionHandler:(void (^)(id, NSError*))fini;
- (NSDragOperation)draggingEntered:(id<NSDraggingInfo>)glissement;
- (NSDragOperation)draggingUpdated:(id<NSDraggingInfo>)glissement;
- (void)draggingExited:(id<NSDraggingInfo>)glissement;
- (void)draggingEnded:(id<NSDraggingInfo>)glissement;
- (BOOL)prepareForDragOperation:(id<NSDraggingInfo>)glissement;
- (BOOL)performDragOperation:(id<NSDraggingInfo>)glissement;
- (void)concludeDragOperation:(id<NSDraggingInfo>)glissement;
@end
