// The main plug-in, "svg": it may be large, and is loaded only when a circle is to be written.
#include "exporter.h"

#include <cstdio>

QV_PLUGIN_EXPORT void initializePlugin() { std::puts("svg comes"); }
QV_PLUGIN_EXPORT void uninitializePlugin() { std::puts("svg goes"); }

QV_PLUGIN_EXPORT void writeCircle(double radius, std::string& text) {
  text = "<circle r=\"" + std::to_string(radius) + "\"/>";
}
