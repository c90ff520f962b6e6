// The texture generators at 800 by 200 with MatrixSize 64 and 256, the inverse transform alone at
// those meshes, the default record's fill at 800 by 200 (a square of 800 generated and cropped),
// and the 64 frames of the default Simple build with a Texture fill (and, second, with texture
// shadow and background too), with and without the loop's fill cache.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "effects/frame_renderer.h"
#include "effects/simple.h"
#include "materials/inverse_fourier.h"
#include "materials/material.h"
#include "materials/texture_generator.h"

namespace {

void BM_TextureGenerator(benchmark::State& state) {
  TextureItem item;
  InitTextureItem(&item);
  item.TextureType = static_cast<int32_t>(state.range(0));
  item.MatrixSize = static_cast<int32_t>(state.range(1));
  item.rect[2] = 800;
  item.rect[3] = 200;
  for (auto _ : state) MovableFree(GenerateTexture(&item));
  state.SetLabel(TextureGeneratorTable[item.TextureType].name);
}
BENCHMARK(BM_TextureGenerator)
    ->ArgsProduct({{0, 1, 2, 3, 4, 5}, {64, 256}})
    ->Unit(benchmark::kMillisecond);

void BM_InverseFourier(benchmark::State& state) {
  const int32_t n = static_cast<int32_t>(state.range(0));
  std::vector<float> mesh(2 * n * n, 0.25f);
  for (auto _ : state) InverseFourier2D(mesh.data(), n);
}
BENCHMARK(BM_InverseFourier)->Arg(64)->Arg(256)->Arg(1024)->Unit(benchmark::kMillisecond);

void BM_DefaultTextureFill(benchmark::State& state) {
  Material m;
  InitMaterial(&m);
  m.kind = kMaterialTexture;
  for (auto _ : state) MovableFree(MaterialFill(&m, 800, 200));
}
BENCHMARK(BM_DefaultTextureFill)->Unit(benchmark::kMillisecond);

struct TextureSimple {
  Material fill, shadow, background;
  FrameSettings settings{};
  int cached = 0;
  explicit TextureSimple(int allTextures) {
    for (Material* m : {&fill, &shadow, &background}) {
      InitMaterial(m);
      m->kind = allTextures ? kMaterialTexture : kMaterialSimple;
    }
    fill.kind = kMaterialTexture;
    shadow.solidColour = 0x7F7F7F;
    background.solidColour = 0xFFFFFF;
    shadow.texture.TextureType = kTextureFractal3;
    background.texture.TextureType = kTexturePerturbation;
    settings.text = {"This space for rent...", "Impact", 92, 1, 0, 1, 90, 0, 20, 1, 1, 4, 1};
    settings.fillOpacity = settings.shadowOpacity = 255;
    settings.shadowDirection = 7;
    settings.outlineColour = 3355443;
    settings.fill = &fill;
    settings.shadow = &shadow;
    settings.background = &background;
  }
};

MovableHandle RenderTextureFrame(void* scene, const SimpleFrameParams* params) {
  TextureSimple* s = static_cast<TextureSimple*>(scene);
  s->settings.fills = s->cached ? params->fills : nullptr;
  return RenderStandardFrame(nullptr, &s->settings, params->x, params->y);
}

// Only the frames: the palette steps are the same either way.
void BM_SimpleTextureFrames(benchmark::State& state) {
  TextureSimple scene(static_cast<int>(state.range(1)));
  scene.cached = static_cast<int>(state.range(0));
  const SimpleLoopSettings loop = {1, 5, 100, 64, kScrollRight};
  for (auto _ : state) {
    FrameList list{};
    BuildContext context{};
    context.frames = &list;
    benchmark::DoNotOptimize(RunSimpleFrames(&context, &loop, RenderTextureFrame, &scene));
    FreeFrameList(&list);
  }
  state.SetLabel(std::string(state.range(1) ? "three textures, " : "texture fill, ") +
                 (scene.cached ? "fill cache" : "a fill per step"));
  state.counters["ms_per_frame"] = benchmark::Counter(
      64, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert,
      benchmark::Counter::kIs1000);
}
BENCHMARK(BM_SimpleTextureFrames)
    ->ArgsProduct({{0, 1}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace
