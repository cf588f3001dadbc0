#include "bureau/cocoa/VueWebCocoa.hpp"

#include "bureau/cocoa/Textes.hpp"
#include "fenetre/VueWebDepot.hpp"

#include <optional>

#include <nlohmann/json.hpp>

using namespace keltrove;
using bureau::enNSString;
using fenetre::Glissement;
using Reponse = fenetre::VueWebDepot::Reponse;

namespace {

// Les fichiers que porte un glissement, et combien ont un nom illisible.
struct Portes {
  std::vector<std::string> chemins;
  NSUInteger illisibles = 0;
};

Portes portesPar(id<NSDraggingInfo> glissement) {
  Portes portes;
  NSArray* adresses =
      [glissement.draggingPasteboard readObjectsForClasses:@[ NSURL.class ]
                                                   options:@{
                                                     NSPasteboardURLReadingFileURLsOnlyKey : @YES
                                                   }];
  for (id adresse in adresses) {
    if (![adresse isKindOfClass:NSURL.class]) continue;
    if (NSString* chemin = [(NSURL*)adresse path])
      portes.chemins.push_back(bureau::enUTF8(chemin));
    else
      ++portes.illisibles;
  }
  return portes;
}

NSDictionary* enDictionnaire(const nlohmann::json& arguments) {
  const auto json = arguments.dump();
  return [NSJSONSerialization JSONObjectWithData:[NSData dataWithBytes:json.data() length:json.size()]
                                         options:0
                                           error:nil];
}

} // namespace

@implementation VueWebDepot {
  std::optional<fenetre::VueWebDepot> _depot;
}

- (instancetype)initWithFrame:(NSRect)cadre configuration:(WKWebViewConfiguration*)configuration {
  WKUserScript* ouverture =
      [[WKUserScript alloc] initWithSource:enNSString(fenetre::VueWebDepot::scriptDOuverture)
                             injectionTime:WKUserScriptInjectionTimeAtDocumentStart
                          forMainFrameOnly:YES];
  [configuration.userContentController addUserScript:ouverture];
  if (!(self = [super initWithFrame:cadre configuration:configuration])) return nil;
  __weak VueWebDepot* faible = self;
  _depot.emplace([faible](const char* corps, const nlohmann::json& arguments) {
    [faible appelerLaPage:enNSString(corps) arguments:enDictionnaire(arguments)];
  });
  return self;
}

- (instancetype)initWithCoder:(NSCoder*)archive {
  [NSException raise:NSInternalInconsistencyException format:@"non utilisé"];
  return [super initWithCoder:archive];
}

- (BOOL)acceptsFirstResponder {
  return !self.couverte && [super acceptsFirstResponder];
}

- (BOOL)glisserDeFichiers {
  return _depot->glisserDeFichiers();
}

- (void)appelerLaPage:(NSString*)corps arguments:(NSDictionary*)arguments {
  [self callAsyncJavaScript:corps
                  arguments:arguments
                    inFrame:nil
             inContentWorld:WKContentWorld.pageWorld
          completionHandler:nil];
}

- (Glissement)glissementDe:(id<NSDraggingInfo>)glissement portant:(std::vector<std::string>)chemins {
  const NSPoint point = [self convertPoint:glissement.draggingLocation fromView:nil];
  return {.chemins = std::move(chemins),
          .point = {.x = point.x, .y = point.y},
          .vue = {.hauteur = NSHeight(self.bounds),
                  .origineEnHaut = static_cast<bool>(self.isFlipped),
                  .zoom = self.pageZoom,
                  .agrandissement = self.magnification}};
}

- (NSDragOperation)draggingEntered:(id<NSDraggingInfo>)glissement {
  const auto chemins = portesPar(glissement).chemins;
  if (_depot->draggingEntered([self glissementDe:glissement portant:chemins]) == Reponse::copie)
    return NSDragOperationCopy;
  return [super draggingEntered:glissement];
}

- (NSDragOperation)draggingUpdated:(id<NSDraggingInfo>)glissement {
  if (_depot->draggingUpdated([self glissementDe:glissement portant:{}]) == Reponse::copie)
    return NSDragOperationCopy;
  return [super draggingUpdated:glissement];
}

- (void)draggingExited:(id<NSDraggingInfo>)glissement {
  if (_depot->draggingExited() == Reponse::commeLaVueWeb) [super draggingExited:glissement];
}

// WebKit n’en est jamais prévenu.
- (void)draggingEnded:(id<NSDraggingInfo>)glissement {
  _depot->draggingEnded();
}

- (BOOL)prepareForDragOperation:(id<NSDraggingInfo>)glissement {
  return _depot->prepareForDragOperation() == Reponse::copie || [super prepareForDragOperation:glissement];
}

- (BOOL)performDragOperation:(id<NSDraggingInfo>)glissement {
  const auto portes = portesPar(glissement);
  const auto remis = _depot->performDragOperation([self glissementDe:glissement portant:portes.chemins]);
  if (!remis) return [super performDragOperation:glissement];
  if (portes.illisibles > 0 && self.quandDesFichiersSontIllisibles)
    self.quandDesFichiersSontIllisibles(portes.illisibles);
  return *remis;
}

- (void)concludeDragOperation:(id<NSDraggingInfo>)glissement {
  if (_depot->concludeDragOperation() == Reponse::commeLaVueWeb) [super concludeDragOperation:glissement];
}

@end
