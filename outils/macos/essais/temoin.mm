// Un bureau de quelques lignes, sans faute : les essais du contrôle en sèment une à la fois.
#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>
#import <WebKit/WebKit.h>

@interface Temoin : NSObject <NSApplicationDelegate, WKScriptMessageHandler>
@property(nonatomic, strong) NSWindow* fenetre;
@end

@implementation Temoin
- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  (void)notification;
  self.fenetre = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 800, 600)
                                             styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskResizable
                                               backing:NSBackingStoreBuffered
                                                 defer:NO];
  [self.fenetre makeKeyAndOrderFront:nil];
  [NSTimer scheduledTimerWithTimeInterval:1 target:self selector:@selector(battre:) userInfo:nil repeats:YES];
  WKWebView* vue = [[WKWebView alloc] initWithFrame:NSZeroRect
                                      configuration:[[WKWebViewConfiguration alloc] init]];
  if (@available(macOS 13.3, *)) vue.inspectable = YES;
}
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application {
  (void)application;
  return NSTerminateLater;
}
- (void)battre:(NSTimer*)minuterie {
  [minuterie invalidate];
  id quelqu_un = self;
  [quelqu_un description];
}
- (void)userContentController:(WKUserContentController*)controleur
      didReceiveScriptMessage:(WKScriptMessage*)message {
  (void)controleur;
  NSLog(@"%@", message.body);
}
@end

int main() {
  @autoreleasepool {
    Temoin* temoin = [[Temoin alloc] init];
    NSApplication.sharedApplication.delegate = temoin;
    [NSApp run];
  }
}
