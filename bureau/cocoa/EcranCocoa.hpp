// EcranCocoa : la vue de l’écran d’attente. Elle dessine un EtatEcran et rapporte les deux boutons.
#pragma once

#include "fenetre/EcranAttente.hpp"

#import <AppKit/AppKit.h>

@interface EcranAttente : NSView

@property(nonatomic, copy) void (^quandOnReessaie)(void);
@property(nonatomic, copy) void (^quandOnBasculeLeDetail)(void);

@property(nonatomic, readonly) NSTextField* titre;
@property(nonatomic, readonly) NSTextField* phrase;
@property(nonatomic, readonly) NSTextField* conseil;
@property(nonatomic, readonly) NSProgressIndicator* roue;
@property(nonatomic, readonly) NSButton* boutonReessayer;
@property(nonatomic, readonly) NSButton* boutonDetail;
@property(nonatomic, readonly) NSTextView* detail;
@property(nonatomic, readonly) NSScrollView* cadreDetail;
@property(nonatomic, readonly) NSStackView* pile;

- (void)dessiner:(const keltrove::fenetre::EtatEcran&)etat;
- (void)reessayer;
- (void)basculerDetail;

@end
