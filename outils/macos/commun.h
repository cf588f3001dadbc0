// Les types du langage que les métadonnées supposent connus.
#pragma once
#pragma clang system_header
#include <dispatch/dispatch.h>
#import <objc/NSObject.h>
#import <objc/objc.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")

typedef double CGFloat;
typedef double NSTimeInterval;
typedef unsigned short unichar;
typedef struct CGPoint {
  CGFloat x, y;
} CGPoint;
typedef struct CGSize {
  CGFloat width, height;
} CGSize;
typedef struct CGRect {
  CGPoint origin;
  CGSize size;
} CGRect;
typedef struct _NSRange {
  NSUInteger location, length;
} NSRange;
typedef struct NSEdgeInsets {
  CGFloat top, left, bottom, right;
} NSEdgeInsets;
struct CGAffineTransform {
  CGFloat a, b, c, d, tx, ty;
};
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;

static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) {
  return (NSPoint){x, y};
}
static inline NSSize NSMakeSize(CGFloat largeur, CGFloat hauteur) {
  return (NSSize){largeur, hauteur};
}
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat largeur, CGFloat hauteur) {
  return (NSRect){{x, y}, {largeur, hauteur}};
}
static inline NSRange NSMakeRange(NSUInteger debut, NSUInteger longueur) {
  return (NSRange){debut, longueur};
}
static inline NSEdgeInsets NSEdgeInsetsMake(CGFloat haut, CGFloat gauche, CGFloat bas, CGFloat droite) {
  return (NSEdgeInsets){haut, gauche, bas, droite};
}

static inline CGFloat NSWidth(NSRect r) {
  return r.size.width;
}
static inline CGFloat NSHeight(NSRect r) {
  return r.size.height;
}
static inline CGFloat NSMinX(NSRect r) {
  return r.origin.x;
}
static inline CGFloat NSMinY(NSRect r) {
  return r.origin.y;
}
static inline CGFloat NSMaxX(NSRect r) {
  return r.origin.x + r.size.width;
}
static inline CGFloat NSMaxY(NSRect r) {
  return r.origin.y + r.size.height;
}

@class NSString;
typedef NSString* NSAppearanceName;
typedef NSString* NSAttributedStringKey;
typedef NSString* NSExceptionName;
typedef NSString* NSNotificationName;
typedef NSString* NSPasteboardType;
typedef NSString* NSRunLoopMode;
typedef NSInteger NSControlStateValue;
typedef NSInteger NSModalResponse;
typedef CGFloat NSFontWeight;
typedef float NSLayoutPriority;
