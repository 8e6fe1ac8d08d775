#include "Base/Plugin/qvDebugDraw.h"

#include "Base/Platform/qvPlatformEnvironment.h"
#include "Base/Plugin/qvPluginPluginLoader.h"

#include <utility>

namespace qvDebugDraw {

namespace {

qv::Reference<qvPlugin::Plugin> loadPlugin() {
  qvPlugin::PluginLoader loader;
  return loader.load(qvPlatform::environmentVariable("QV_DEBUGDRAW_PLUGIN").c_str());
}

BaseIFace* theIFace() {
  static BaseIFace* const iface = loadIFace("getDebugDrawIFace");
  return iface;
}

template <class... Parameters, class... Args>
void forward(void (BaseIFace::*operation)(Parameters...), Args&&... args) {
  if (BaseIFace* const iface = theIFace()) (iface->*operation)(std::forward<Args>(args)...);
}

} // namespace

BaseIFace::~BaseIFace() = default;

BaseIFace* loadIFace(const char* symbol) {
  // Never unloaded, as its interface is never given back.
  static auto& plugin = *new qv::Reference<qvPlugin::Plugin>;
  if (!plugin) plugin = loadPlugin();
  if (!plugin) return nullptr;
  const auto getIFace = plugin->getFunction<BaseIFace*()>(symbol);
  return getIFace ? getIFace() : nullptr;
}

void drawPoint(const Point& at) { forward(&BaseIFace::drawPoint, at); }
void drawAddPoint(const Point& at) { forward(&BaseIFace::drawAddPoint, at); }
void drawLine(const Point& from, const Point& to) { forward(&BaseIFace::drawLine, from, to); }
void drawAddLine(const Point& from, const Point& to) { forward(&BaseIFace::drawAddLine, from, to); }
void drawAnnotation(const Point& at, const qvString::CString& text) {
  forward(&BaseIFace::drawAnnotation, at, text);
}
void drawAddAnnotation(const Point& at, const qvString::CString& text) {
  forward(&BaseIFace::drawAddAnnotation, at, text);
}
void highlit(bool on) { forward(&BaseIFace::highlit, on); }
void clear() { forward(&BaseIFace::clear); }
void show() { forward<>(&BaseIFace::show); }
void show(const qvString::CString& title) { forward<const qvString::CString&>(&BaseIFace::show, title); }

} // namespace qvDebugDraw
