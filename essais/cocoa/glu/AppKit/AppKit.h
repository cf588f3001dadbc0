// Ce que l’AppKit de macOS 13 donne, que GNUstep 0.29 n’a pas, et dont le bureau se sert. Pour les essais
// seulement.
#pragma once
#include_next <AppKit/AppKit.h>

// Les noms d’aujourd’hui de valeurs d’hier.
#define NSEventModifierFlagCommand NSCommandKeyMask
#define NSEventModifierFlagShift NSShiftKeyMask
#define NSEventModifierFlagOption NSAlternateKeyMask
#define NSEventModifierFlagControl NSControlKeyMask
typedef NSUInteger NSEventModifierFlags;
#define NSEventTypeKeyDown NSKeyDown
#define NSBezelStyleRounded NSRoundedBezelStyle
#define NSBezelStyleInline ((NSBezelStyle)15)
#define NSProgressIndicatorStyleSpinning NSProgressIndicatorSpinningStyle
#define NSCompositingOperationSourceOver NSCompositeSourceOver

typedef struct CGColor* CGColorRef;
typedef NS_ENUM(NSInteger, NSWindowTabbingMode) {
  NSWindowTabbingModeAutomatic,
  NSWindowTabbingModePreferred,
  NSWindowTabbingModeDisallowed
};
extern NSString* const NSAboutPanelOptionCredits;
extern NSString* const NSPasteboardTypeFileURL;
extern NSString* const NSPasteboardURLReadingFileURLsOnlyKey;

@interface NSApplication (Manquant)
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)politique;
- (NSApplicationActivationPolicy)activationPolicy;
@end

@interface NSWindow (Manquant)
@property(nonatomic, readonly) NSRect contentLayoutRect;
@property(nonatomic) NSWindowTabbingMode tabbingMode;
- (void)toggleFullScreen:(id)source;
- (void)layoutIfNeeded;
@end

@interface CALayer : NSObject
@property(nonatomic) CGColorRef backgroundColor;
@property(nonatomic) CGFloat cornerRadius;
@end

@interface NSView (Manquant)
@property(nonatomic) BOOL wantsLayer;
@property(nonatomic, strong) CALayer* layer;
@property(nonatomic, strong) NSAppearance* appearance;
@property(nonatomic, readonly) NSAppearance* effectiveAppearance;
@property(nonatomic, copy) NSString* accessibilityLabel;
@property(nonatomic) BOOL translatesAutoresizingMaskIntoConstraints;
@property(nonatomic, readonly) NSSize fittingSize;
@property(nonatomic, readonly) NSLayoutXAxisAnchor *leadingAnchor, *trailingAnchor, *centerXAnchor;
@property(nonatomic, readonly) NSLayoutYAxisAnchor *topAnchor, *bottomAnchor, *centerYAnchor;
@property(nonatomic, readonly) NSLayoutDimension *widthAnchor, *heightAnchor;
- (void)layoutSubtreeIfNeeded;
@end

@interface NSStackView : NSView
+ (instancetype)stackViewWithViews:(NSArray*)vues;
@property(nonatomic, readonly) NSArray* arrangedSubviews;
@property(nonatomic) NSUserInterfaceLayoutOrientation orientation;
@property(nonatomic) NSLayoutAttribute alignment;
@property(nonatomic) CGFloat spacing;
@end

@interface NSColor (Manquant)
+ (NSColor*)colorWithName:(NSString*)nom dynamicProvider:(NSColor* (^)(NSAppearance*))donner;
+ (NSColor*)colorWithWhite:(CGFloat)blanc alpha:(CGFloat)opacite;
@property(nonatomic, readonly) CGColorRef CGColor;
@end

@interface NSFont (Manquant)
+ (NSFont*)systemFontOfSize:(CGFloat)taille weight:(CGFloat)graisse;
+ (NSFont*)monospacedSystemFontOfSize:(CGFloat)taille weight:(CGFloat)graisse;
@end

@interface NSTextField (Manquant)
+ (instancetype)labelWithString:(NSString*)texte;
+ (instancetype)wrappingLabelWithString:(NSString*)texte;
@property(nonatomic) CGFloat preferredMaxLayoutWidth;
@end

@interface NSButton (Manquant)
+ (instancetype)buttonWithTitle:(NSString*)titre target:(id)cible action:(SEL)action;
@end

@interface NSPasteboard (Manquant)
- (NSArray*)readObjectsForClasses:(NSArray*)classes options:(NSDictionary*)options;
- (BOOL)writeObjects:(NSArray*)objets;
@end

@interface NSWorkspaceOpenConfiguration : NSObject
@property(nonatomic) BOOL createsNewApplicationInstance;
+ (instancetype)configuration;
@end
@interface NSWorkspace (Manquant)
@property(nonatomic, getter=isVoiceOverEnabled) BOOL voiceOverEnabled;
- (void)openURL:(NSURL*)adresse
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:(void (^)(NSRunningApplication*, NSError*))fini;
- (void)openApplicationAtURL:(NSURL*)application
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:(void (^)(NSRunningApplication*, NSError*))fini;
@end
