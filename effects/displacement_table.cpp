// Filling a displacement table. The random modes draw x before y for every try, and a try is
// refused only while every earlier entry equals it; the closed curves work in doubles from a
// single-precision fraction of the turn. Both orders are part of the animation's look.
#include "effects/displacement_table.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "shell/crt_random.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

// A pair is new enough when it differs from at least one entry before `count`: with all earlier
// entries alike, repeating them would keep the text still.
bool DiffersFromSomeEntry(const DisplacementEntry* table, int32_t count, DisplacementEntry pair) {
  if (count == 0) return true;
  for (int32_t j = 0; j < count; ++j)
    if (table[j].x != pair.x || table[j].y != pair.y) return true;
  return false;
}

void FillRandom(DisplacementEntry* table, const DisplacementSettings* s) {
  const int32_t n = s->frames, h = s->hDisplace, v = s->vDisplace;
  crt::srand(static_cast<uint32_t>(s->seed));
  for (int32_t i = 0; i < n; ++i) {
    DisplacementEntry pair{0, 0};
    for (int32_t attempt = 0; attempt < n; ++attempt) {
      pair.x = crt::rand() % (2 * h) - h;
      pair.y = crt::rand() % (2 * v) - v;
      if (DiffersFromSomeEntry(table, i, pair)) break;
    }
    table[i] = pair;  // after n refusals the last pair stands anyway
  }
}

int32_t Product(const DisplacementEntry& e) {
  return std::abs(e.y) * std::abs(e.x);
}

// The fraction `f` of `degrees`, in radians.
double Angle(float f, double degrees) {
  return static_cast<double>(f) * degrees * kPi / 180.0;
}

// trunc(v * 2s), held as a float, less s: the swing runs from -3s to s, not -s to s.
int32_t Wave(double v, int32_t s) {
  const float doubled = static_cast<float>(std::trunc(v * (2.0 * s)));
  return static_cast<int32_t>(std::trunc(doubled - static_cast<float>(s)));
}

float Fraction(int32_t numerator, int32_t n) {
  return static_cast<float>(numerator) / static_cast<float>(n);
}

void FillCurve(DisplacementEntry* table, const DisplacementSettings* s) {
  const int32_t n = s->frames, h = s->hDisplace, v = s->vDisplace;
  for (int32_t i = 0; i < n; ++i) {
    const double turn = Angle(Fraction(i, n), 360.0);
    DisplacementEntry& e = table[i];
    switch (s->mode) {
      case kDisplaceCalm:
        e.x = Wave(std::sin(turn), h);
        e.y = Wave(std::sin(Angle(Fraction(i * s->ratio, n), 360.0)), v);
        break;
      case kDisplaceOrbitCw:
        e.x = Wave(std::sin(Angle(Fraction(n - 1 - i, n), 360.0)), h);
        e.y = Wave(std::cos(turn), v);
        break;
      case kDisplaceOrbitCcw:
        e.x = Wave(std::sin(turn), h);
        e.y = Wave(std::cos(turn), v);
        break;
      case kDisplaceInfinity:
        e.x = Wave(std::sin(turn), h);
        e.y = Wave(std::sin(Angle(Fraction(i, n), 720.0)), v);
        break;
      default:
        break;
    }
  }
}

}  // namespace

int CompareRattleEntries(const void* a, const void* b) {
  return Product(*static_cast<const DisplacementEntry*>(a)) -
         Product(*static_cast<const DisplacementEntry*>(b));
}

MovableHandle MakeDisplacementTable(const DisplacementSettings* settings) {
  const int32_t n = settings->frames;
  // The random modes divide by twice each reach.
  if (n < 1 || settings->hDisplace < 1 || settings->vDisplace < 1) return nullptr;
  ScopedBlock block(MovableAlloc(static_cast<size_t>(n) * sizeof(DisplacementEntry)));
  ScopedLock lock(block.handle);
  if (!lock) return nullptr;
  DisplacementEntry* table = reinterpret_cast<DisplacementEntry*>(lock.bytes);
  const int32_t mode = settings->mode;
  if (mode == kDisplaceNervous || mode == kDisplaceHappy) {
    FillRandom(table, settings);
    // Keys that tie keep the order they were drawn in, so that every platform's build agrees.
    if (mode == kDisplaceHappy)
      std::stable_sort(table, table + n,
                       [](const DisplacementEntry& a, const DisplacementEntry& b) {
                         return CompareRattleEntries(&a, &b) < 0;
                       });
  } else if (mode >= kDisplaceCalm && mode < kDisplaceStill) {
    FillCurve(table, settings);
  }
  return block.Release();
}
