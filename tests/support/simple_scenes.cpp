// The Simple scene: six frames scrolling rightward, drawn by the common frame renderer.
#include "tests/support/simple_scenes.h"

#include "effects/frame_renderer.h"
#include "effects/simple.h"
#include "tests/support/drawing_session.h"

namespace {

struct Scene {
  Material fill, shadow, background;
  FrameSettings settings{};
};

MovableHandle RenderSceneFrame(void* scene, const SimpleFrameParams* params) {
  return RenderStandardFrame(nullptr, &static_cast<Scene*>(scene)->settings, params->x, params->y);
}

}  // namespace

int RenderSimpleScene(std::vector<SimpleSceneFrame>* frames) {
  Scene scene;
  for (Material* m : {&scene.fill, &scene.shadow, &scene.background}) InitMaterial(m);
  scene.fill.kind = kMaterialGradient;
  scene.fill.gradient.startColour = 0x2040C0;
  scene.fill.gradient.endColour = 0xC08020;
  scene.shadow.solidColour = 0x7F7F7F;
  scene.background.solidColour = 0xFFFFFF;
  scene.settings.text = {"Glyph", kTestFace, 40, 1, 0, 1, 100, 2, 6, 1, 1, 4, 0};
  scene.settings.fillOpacity = 255;
  scene.settings.shadowOpacity = 200;
  scene.settings.shadowDirection = 7;
  scene.settings.outlineColour = 0x333333;
  scene.settings.fill = &scene.fill;
  scene.settings.shadow = &scene.shadow;
  scene.settings.background = &scene.background;

  FrameList list{};
  BuildContext context{};
  context.frames = &list;
  const SimpleLoopSettings loop = {1, 5, 100, 6, kScrollRight};
  const int ok = RunSimpleFrames(&context, &loop, RenderSceneFrame, &scene);
  {
    ScopedLock lock(list.records);
    for (int32_t i = 0; ok && lock && i < list.count; ++i) {
      const FrameRecord& r = reinterpret_cast<const FrameRecord*>(lock.bytes)[i];
      frames->push_back({r.image, r.delay});
    }
  }
  if (ok && static_cast<int32_t>(frames->size()) == list.count) {
    MovableFree(list.records);  // the images now belong to `frames`
    return 1;
  }
  frames->clear();
  FreeFrameList(&list);
  return 0;
}
