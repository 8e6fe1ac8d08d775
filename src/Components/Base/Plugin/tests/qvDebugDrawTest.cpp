#include "Base/Plugin/qvDebugDraw.h"
#include "qvPluginScene.h"
#include "testing/qvTestEnvironment.h"

TEST(DebugDraw, ForwardsToThePluginOfTheEnvironment) {
  using namespace qvDebugDraw;
  PluginScene scene;
  qvTest::Environment plugin("QV_DEBUGDRAW_PLUGIN", "");
  EXPECT_EQ(loadIFace("getDebugDrawIFace"), nullptr);
  const std::string path = scene.add("debugDraw", "debug Draw");
  plugin.set(path.c_str());
  EXPECT_EQ(loadIFace("missing"), nullptr);

  drawPoint({1, 2, 3});
  drawAddPoint({1, 2, 3});
  drawLine({1, 2, 3}, {4, 5, 6});
  drawAddLine({1, 2, 3}, {4, 5, 6});
  drawAnnotation({1, 2, 3}, "note");
  drawAddAnnotation({1, 2, 3}, "more");
  highlit(true);
  clear();
  show();
  show("title");
  EXPECT_EQ(scene.told(2),
            "interface;point 1;add point 2;line 9;add line 6;note 1;more 3;highlit 1;clear;show;title;");
  EXPECT_NE(loadIFace("getDebugDrawIFace"), nullptr);
}
