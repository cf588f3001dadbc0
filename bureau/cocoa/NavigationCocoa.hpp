// NavigationCocoa : ce qui arrive à la page pendant qu’elle se charge, et ce qu’elle veut ouvrir ailleurs.
#pragma once

#include "fenetre/VueFenetre.hpp"

#import <WebKit/WebKit.h>

@interface NavigationCocoa : NSObject <WKNavigationDelegate, WKUIDelegate>

- (instancetype)initAvecVue:(WKWebView*)vue observateur:(keltrove::fenetre::ObservateurDeLaVue*)observateur;
// Plus rien n’est rapporté ensuite.
- (void)quitterLaVue;

@end
