// Drawing for the eyes of a developer: points, lines and annotations in space, shown by a plug-in that the
// environment variable QV_DEBUGDRAW_PLUGIN names by its path.
#pragma once

#include "Base/String/qvStringCString.h"
#include "Base/qvBase.h"

namespace qvDebugDraw {

/// Three coordinates, in whatever unit the plug-in shows.
using Point = double[3];

/// What the plug-in implements. It exports a function "getDebugDrawIFace" with C linkage and without
/// arguments that returns one, which the plug-in keeps. Virtual order is part of the interface.
///
/// An operation without "Add" begins a new picture of its kind; one with "Add" adds to it.
class QV_BASE_API BaseIFace {
public:
  virtual ~BaseIFace();

  virtual void drawPoint(const Point& at) = 0;
  virtual void drawAddPoint(const Point& at) = 0;
  virtual void drawLine(const Point& from, const Point& to) = 0;
  virtual void drawAddLine(const Point& from, const Point& to) = 0;
  virtual void drawAnnotation(const Point& at, const qvString::CString& text) = 0;
  virtual void drawAddAnnotation(const Point& at, const qvString::CString& text) = 0;
  /// Whether what is drawn from now on stands out.
  virtual void highlit(bool on) = 0;
  /// Takes away everything that was drawn.
  virtual void clear() = 0;
  /// Shows what was drawn, under a title.
  virtual void show(const qvString::CString& title) = 0;
  virtual void show() = 0;
};

/// @{ The same through the plug-in, which the first call loads for the life of the process. To be used only
/// where the variable names a plug-in that can be loaded; otherwise nothing happens. Not thread-safe.
QV_BASE_API void drawPoint(const Point& at);
QV_BASE_API void drawAddPoint(const Point& at);
QV_BASE_API void drawLine(const Point& from, const Point& to);
QV_BASE_API void drawAddLine(const Point& from, const Point& to);
QV_BASE_API void drawAnnotation(const Point& at, const qvString::CString& text);
QV_BASE_API void drawAddAnnotation(const Point& at, const qvString::CString& text);
QV_BASE_API void highlit(bool on);
QV_BASE_API void clear();
QV_BASE_API void show();
QV_BASE_API void show(const qvString::CString& title);
/// @}

/// Loads the plug-in if that was not done, calls its function `symbol` and returns the answer; null where
/// there is no plug-in or no such function. A load that failed is tried again by the next call.
[[nodiscard]] QV_BASE_API BaseIFace* loadIFace(const char* symbol);

} // namespace qvDebugDraw
