// The main plug-in, for either side.
#include "bench/plugin/shape.h"

QV_PLUGIN_EXPORT double squareArea(double size) { return size * size; }

#ifdef BENCH_QPluginLoader
class QtSquare : public QObject, public QtShape {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QtShape_iid)
  Q_INTERFACES(QtShape)
public:
  double area(double size) override { return squareArea(size); }
};
#include "square.moc"
#endif
