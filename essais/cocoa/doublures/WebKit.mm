#include "EssaiWebKit.hpp"

using essais::noteeDe;

@implementation WKNavigation
@end
@implementation WKFrameInfo
@end
@implementation WKWindowFeatures
@end
@implementation WKSecurityOrigin
@end
@implementation WKNavigationAction
@end
@implementation WKScriptMessage
@end
@implementation WKPreferences
@end
@implementation WKWebpagePreferences
@end

@implementation WKContentWorld
+ (WKContentWorld*)pageWorld {
  static WKContentWorld* const monde = [WKContentWorld new];
  return monde;
}
@end

@implementation WKWebsiteDataStore
+ (WKWebsiteDataStore*)defaultDataStore {
  static WKWebsiteDataStore* const garde = [WKWebsiteDataStore new];
  return garde;
}
@end

@implementation WKUserScript
- (instancetype)initWithSource:(NSString*)source
                 injectionTime:(WKUserScriptInjectionTime)moment
              forMainFrameOnly:(BOOL)cadrePrincipal {
  if (!(self = [super init])) return nil;
  _source = [source copy];
  _injectionTime = moment;
  _forMainFrameOnly = cadrePrincipal;
  return self;
}
@end

@implementation WKUserContentController {
  NSMutableArray* _scripts;
@public
  NSMutableDictionary* _destinataires; // fortement tenus, comme WebKit le fait
}
- (instancetype)init {
  if (!(self = [super init])) return nil;
  _scripts = [NSMutableArray array];
  _destinataires = [NSMutableDictionary dictionary];
  return self;
}
- (NSArray*)userScripts {
  return _scripts;
}
- (void)addUserScript:(WKUserScript*)script {
  [_scripts addObject:script];
}
- (void)addScriptMessageHandler:(id<WKScriptMessageHandler>)destinataire name:(NSString*)nom {
  if (_destinataires[nom]) [NSException raise:NSInvalidArgumentException format:@"canal déjà pris : %@", nom];
  _destinataires[nom] = destinataire;
}
@end

@implementation WKWebViewConfiguration
- (instancetype)init {
  if (!(self = [super init])) return nil;
  _userContentController = [WKUserContentController new];
  _defaultWebpagePreferences = [WKWebpagePreferences new];
  _preferences = [WKPreferences new];
  _preferences.javaScriptCanOpenWindowsAutomatically = YES; // comme sur macOS
  return self;
}
@end

@interface WKWebView (Progres)
@property(nonatomic, readwrite) double estimatedProgress;
@end

@implementation WKWebView {
  double _progres;
@public
  essais::VueNotee _notee;
}
- (instancetype)initWithFrame:(NSRect)cadre configuration:(WKWebViewConfiguration*)configuration {
  if (!(self = [super initWithFrame:cadre])) return nil;
  _configuration = configuration;
  _pageZoom = 1;
  _magnification = 1;
  [self registerForDraggedTypes:@[ NSFilenamesPboardType, NSURLPboardType, NSStringPboardType ]];
  return self;
}
- (BOOL)isFlipped {
  return YES;
}
- (BOOL)acceptsFirstResponder {
  return YES;
}
- (double)estimatedProgress {
  return _progres;
}
- (void)setEstimatedProgress:(double)progres {
  _progres = progres;
}
- (WKNavigation*)loadRequest:(NSURLRequest*)requete {
  _notee.requetes.push_back(requete);
  return [WKNavigation new];
}
- (void)stopLoading {
  ++_notee.arrets;
}
- (void)evaluateJavaScript:(NSString*)expression completionHandler:(void (^)(id, NSError*))fini {
  _notee.evaluations.push_back({expression.UTF8String, [fini copy]});
}
- (void)callAsyncJavaScript:(NSString*)corps
                  arguments:(NSDictionary*)arguments
                    inFrame:(WKFrameInfo*)cadre
             inContentWorld:(WKContentWorld*)monde
          completionHandler:(void (^)(id, NSError*))fini {
  _notee.appels.push_back({corps.UTF8String, arguments, cadre == nil && monde == WKContentWorld.pageWorld});
}

- (NSDragOperation)draggingEntered:(id<NSDraggingInfo>)glissement {
  _notee.glissements.push_back("draggingEntered");
  return NSDragOperationGeneric;
}
- (NSDragOperation)draggingUpdated:(id<NSDraggingInfo>)glissement {
  _notee.glissements.push_back("draggingUpdated");
  return NSDragOperationGeneric;
}
- (void)draggingExited:(id<NSDraggingInfo>)glissement {
  _notee.glissements.push_back("draggingExited");
}
- (void)draggingEnded:(id<NSDraggingInfo>)glissement {
  _notee.glissements.push_back("draggingEnded");
}
- (BOOL)prepareForDragOperation:(id<NSDraggingInfo>)glissement {
  _notee.glissements.push_back("prepareForDragOperation");
  return NO;
}
- (BOOL)performDragOperation:(id<NSDraggingInfo>)glissement {
  _notee.glissements.push_back("performDragOperation");
  return NO;
}
- (void)concludeDragOperation:(id<NSDraggingInfo>)glissement {
  _notee.glissements.push_back("concludeDragOperation");
}

- (void)undo:(id)source {
  _notee.actions.push_back("undo:");
}
- (void)redo:(id)source {
  _notee.actions.push_back("redo:");
}
- (void)cut:(id)source {
  _notee.actions.push_back("cut:");
}
- (void)copy:(id)source {
  _notee.actions.push_back("copy:");
}
- (void)paste:(id)source {
  _notee.actions.push_back("paste:");
}
- (void)pasteAsPlainText:(id)source {
  _notee.actions.push_back("pasteAsPlainText:");
}
- (void)selectAll:(id)source {
  _notee.actions.push_back("selectAll:");
}
- (BOOL)validateMenuItem:(NSMenuItem*)article {
  return _notee.lEditionPeut;
}
@end

namespace essais {

VueNotee& noteeDe(WKWebView* vue) {
  return vue->_notee;
}

void commencer(WKWebView* vue) {
  [vue.navigationDelegate webView:vue didStartProvisionalNavigation:nil];
}

void avancer(WKWebView* vue, double progres) {
  vue.estimatedProgress = progres;
}

void finir(WKWebView* vue) {
  avancer(vue, 1);
  [vue.navigationDelegate webView:vue didFinishNavigation:nil];
}

void rater(WKWebView* vue, Etape etape, NSString* domaine, NSInteger code, NSString* description) {
  NSError* erreur = [NSError errorWithDomain:domaine
                                        code:code
                                    userInfo:@{NSLocalizedDescriptionKey : description}];
  if (etape == Etape::provisoire)
    [vue.navigationDelegate webView:vue didFailProvisionalNavigation:nil withError:erreur];
  else
    [vue.navigationDelegate webView:vue didFailNavigation:nil withError:erreur];
}

void planter(WKWebView* vue) {
  [vue.navigationDelegate webViewWebContentProcessDidTerminate:vue];
}

bool ecrire(WKWebView* vue, NSString* canal, id corps) {
  WKUserContentController* contenus = vue.configuration.userContentController;
  id<WKScriptMessageHandler> destinataire = contenus->_destinataires[canal];
  WKScriptMessage* message = [WKScriptMessage new];
  message.name = canal;
  message.body = corps;
  [destinataire userContentController:contenus didReceiveScriptMessage:message];
  return destinataire != nil;
}

namespace {
WKNavigationAction* actionVers(NSString* adresse, WKNavigationType sorte, bool fenetreNeuve) {
  WKNavigationAction* action = [WKNavigationAction new];
  action.request = [NSURLRequest requestWithURL:[NSURL URLWithString:adresse]];
  action.navigationType = sorte;
  if (!fenetreNeuve) action.targetFrame = [WKFrameInfo new];
  return action;
}
} // namespace

bool suivre(WKWebView* vue, NSString* adresse, WKNavigationType sorte, bool fenetreNeuve) {
  __block int decisions = 0;
  __block bool oui = false;
  [vue.navigationDelegate webView:vue
      decidePolicyForNavigationAction:actionVers(adresse, sorte, fenetreNeuve)
                      decisionHandler:^(WKNavigationActionPolicy politique) {
                        ++decisions;
                        oui = politique == WKNavigationActionPolicyAllow;
                      }];
  if (decisions != 1)
    [NSException raise:NSInternalInconsistencyException format:@"décidé %d fois", decisions];
  return oui;
}

void ouvrirUneFenetre(WKWebView* vue, NSString* adresse) {
  WKWebView* ouverte = [vue.UIDelegate webView:vue
                createWebViewWithConfiguration:vue.configuration
                           forNavigationAction:actionVers(adresse, WKNavigationTypeOther, true)
                                windowFeatures:[WKWindowFeatures new]];
  if (ouverte != nil)
    [NSException raise:NSInternalInconsistencyException format:@"une fenêtre s’est ouverte"];
}

} // namespace essais
