// The drawing layer: every operation of the platform's 2-D graphics library passes through
// DispatchDraw with one zero-filled DrawRequest naming the operation. Drawing operations make a
// private bitmap, draw into it and hand back a Packed DIB that the caller owns.
#pragma once

#include <cstdint>

#include "platform/dialog.h"
#include "platform/memory.h"

struct DrawBounds {
  int32_t left, top, right, bottom;
};

struct DrawRequest {
  uint64_t token;       // start-up token: written by start-up, read by shutdown
  WindowHandle window;  // owner window; set by callers, read by no operation
  DrawBounds bounds;    // extent of the shape for line, ellipse, rectangle and polygon
  int32_t operation;    // one of the kDraw* codes
  int32_t depth;        // callers set 8; read by no operation
  int32_t level;        // alpha of the text brush in text mode 1, and the mask's grey level
  uint8_t ramp[768];    // the grey ramp; read by no operation
  int32_t antialias;
  int32_t lineX1, lineY1, lineX2, lineY2;
  int32_t lineWidth;
  int32_t lineCapKind;  // -1: caps from lineStartCap and lineEndCap; 0: round; else flat
  uint32_t lineColour;
  uint32_t lineStartCap, lineEndCap;
  int32_t shapePenWidth;
  int32_t shapeFill;     // COLORREF or -1 for no fill
  int32_t shapeOutline;  // COLORREF or -1 for no outline
  int32_t cornerPercent;
  int32_t textX, textY;
  int32_t measuredWidth, measuredHeight;  // results of every text mode
  int32_t fontSize;
  int32_t bold, italic, underline;
  const char* faceName;
  const char* text;  // in the system's 8-bit code page
  uint32_t textColour;
  void* logFont;        // a LOGFONT-like description, or null
  void* deviceContext;  // the context the font is selected into
  int32_t textMode;
  int32_t textPenWidth;
  int32_t vertexCount;
  const int32_t* vertices;  // x, y pairs
  uint32_t polygonPenWidth;
  int32_t polygonFill;
  int32_t polygonOutline;
  int32_t gradientWidth, gradientHeight;
  int32_t gradientKind;  // 0 linear, 1 elliptical path, 2 rectangular path
  uint32_t gradientFrom, gradientTo;
  int32_t gradientAngle;
  int32_t gradientCentreX, gradientCentreY;
};

enum DrawOperation : int32_t {
  kDrawStartup = 1,
  kDrawShutdown = 2,
  kDrawLine = 3,
  kDrawEllipse = 4,
  kDrawRectangle = 5,
  kDrawPolygon = 6,
  kDrawText = 7,
  kDrawGradient = 8,
};

// The bitmap of the ellipse and rectangle operations is the bounds plus 8 each way; the shape sits
// at (c, c), w by h, inside the pen and the margin.
struct DrawShapeBox {
  int32_t width, height, c, w, h;
};
DrawShapeBox DrawShapeGeometry(const DrawRequest* request);

// Performs the operation the request names. Start-up and shutdown return 1; drawing operations
// return a Packed DIB handle (as an integer) or 0; an unknown code returns 0 and does nothing.
uint64_t DispatchDraw(DrawRequest* request);

// The platform's side of start-up and shutdown: starts the graphics library and stores its token;
// stops it. Both return 1 on success.
int DrawingStartup(uint64_t* token);
int DrawingShutdown(uint64_t token);

// The platform's drawing operations, each reading only its own fields of the request. All but the
// text operation return a Packed DIB handle or 0; the text operation returns what its mode says.
uint64_t DrawingLine(DrawRequest* request);
uint64_t DrawingEllipse(DrawRequest* request);
uint64_t DrawingRectangle(DrawRequest* request);
uint64_t DrawingPolygon(DrawRequest* request);
uint64_t DrawingText(DrawRequest* request);
uint64_t DrawingGradient(DrawRequest* request);

// A Packed DIB of a device bitmap (an HBITMAP on Windows, a Cairo image surface elsewhere): 24 bits
// for any depth over 8. Null when the handle is null or memory or the conversion fails. The
// bitmap stays the caller's.
MovableHandle BitmapToPackedDib(void* bitmap);

// Text modes of the text operation.
enum DrawTextMode : int32_t {
  kTextMeasure = 0,      // 1; the size, less one space's width for a first byte above 32
  kTextOnDevice = 1,     // 1; drawn on the context at (textX, textY)
  kTextBitmap = 2,       // a 24-bit picture of the string on black, of the measured size
  kTextPathOutline = 3,  // the string's outline path drawn with a pen
  kTextPathFilled = 4,   // the string's path filled
};
