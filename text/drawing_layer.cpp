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

DrawShapeBox DrawShapeGeometry(const DrawRequest* r) {
  DrawShapeBox box;
  box.width = r->bounds.right - r->bounds.left + 8;
  box.height = r->bounds.bottom - r->bounds.top + 8;
  box.c = r->shapePenWidth / 2 + 4;
  box.w = box.width - r->shapePenWidth - 8;
  box.h = box.height - r->shapePenWidth - 8;
  return box;
}
