// VueWebCocoa : la vue WebKit, et les glissements de fichiers pris au-dessus d’elle.
//
// Un glissement sans fichier reste à WebKit. La vue n’enregistre aucun type à elle : elle se sert de ceux que
// WebKit enregistre.
#pragma once

#import <WebKit/WebKit.h>

@interface VueWebDepot : WKWebView

// D’un dépôt, tant de fichiers ont un nom que la page ne peut recevoir.
@property(nonatomic, copy) void (^quandDesFichiersSontIllisibles)(NSUInteger combien);
// L’écran d’attente est devant : la page ne reçoit plus le clavier.
@property(nonatomic) BOOL couverte;
// Un glissement qui porte des fichiers est au-dessus, et pris à WebKit.
@property(nonatomic, readonly) BOOL glisserDeFichiers;

@end
