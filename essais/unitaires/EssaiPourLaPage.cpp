#include "fenetre/PourLaPage.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace keltrove::fenetre {
namespace {

TEST(EssaiPourLaPage, LesArgumentsVoyagentEnUnSeulTexte) {
  const auto appel = PourLaPage::appel("f(x, y);", {{"x", 1}, {"y", {"a", nullptr}}});
  EXPECT_EQ(appel.fonction, "const { x, y, } = JSON.parse(keltroveArguments); f(x, y);");
  EXPECT_EQ(appel.arguments, R"({"x":1,"y":["a",null]})");
}

TEST(EssaiPourLaPage, SansArgumentLeCorpsResteSeul) {
  const auto appel = PourLaPage::appel("f();", nlohmann::json::object());
  EXPECT_EQ(appel.fonction, "const { } = JSON.parse(keltroveArguments); f();");
  EXPECT_EQ(appel.arguments, "{}");
}

} // namespace
} // namespace keltrove::fenetre
