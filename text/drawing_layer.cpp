// DispatchDraw: the one entry of the drawing layer. Each operation code maps to the procedure that
// performs it; the procedures live with their platform.
#include "text/drawing_layer.h"

uint64_t DispatchDraw(DrawRequest* request) {
  if (!request) return 0;
  switch (request->operation) {
    case kDrawStartup:
      return DrawingStartup(&request->token);
    case kDrawShutdown:
      return DrawingShutdown(request->token);
    case kDrawLine:
      return DrawingLine(request);
    case kDrawEllipse:
      return DrawingEllipse(request);
    case kDrawRectangle:
      return DrawingRectangle(request);
    case kDrawPolygon:
      return DrawingPolygon(request);
    case kDrawText:
      return DrawingText(request);
    case kDrawGradient:
      return DrawingGradient(request);
    default:
      return 0;
  }
}
