// Octree classification over runs of equal pixels, error-threshold reduction and post-order
// extraction. The floating-point sums run in a fixed order and decide which colours survive, so
// the order of frames, rows and runs is part of the result. The root's error is deliberately
// overstated (it adds each child's whole running error), and a pruned root merges into itself.
#include "imaging/octree_quantiser.h"

#include <algorithm>
#include <cstring>

#include "imaging/dib_view.h"
#include "shell/packed_dib.h"

struct ColourSlab {
  ColourNode nodes[kNodesPerSlab];
  MovableHandle handle;
  ColourSlab* previous;
};

namespace {

constexpr int32_t kExactColours = 256;

ColourNode* NewNode(ColourCube* cube, ColourNode* parent, uint8_t id, uint8_t level) {
  if (cube->freeNodes == 0) {
    MovableHandle handle = MovableAlloc(sizeof(ColourSlab));
    ColourSlab* slab = handle ? static_cast<ColourSlab*>(MovableLock(handle)) : nullptr;
    if (!slab) {
      MovableFree(handle);
      return nullptr;
    }
    slab->handle = handle;
    slab->previous = cube->slabs;
    cube->slabs = slab;
    cube->nextNode = slab->nodes;
    cube->freeNodes = kNodesPerSlab;
  }
  ColourNode* node = cube->nextNode++;
  --cube->freeNodes;
  std::memset(node, 0, sizeof *node);
  node->id = id;
  node->level = level;
  node->parent = parent;
  ++cube->nodes;
  return node;
}

void FreeSlabs(ColourCube* cube) {
  for (ColourSlab* slab = cube->slabs; slab;) {
    ColourSlab* previous = slab->previous;
    MovableHandle handle = slab->handle;
    MovableUnlock(handle);
    MovableFree(handle);
    slab = previous;
  }
  cube->slabs = nullptr;
  cube->freeNodes = 0;
}

// Adds a node's pixels into its parent and unlinks it; the error stays behind.
void MergeIntoParent(ColourCube* cube, ColourNode* node) {
  ColourNode* parent = node->parent;
  parent->census = static_cast<uint8_t>(parent->census & ~(1u << node->id));
  parent->uniqueCount += node->uniqueCount;
  parent->redTotal += node->redTotal;
  parent->greenTotal += node->greenTotal;
  parent->blueTotal += node->blueTotal;
  --cube->nodes;
}

// Squared distance of a channel value from the centre of its cell at each level. The centres are
// the ones the walk down the tree computes (127.5, then plus or minus each halved bisector), all
// exact in a double, so each entry is the very product the walk would form.
struct LevelDistances {
  double square[9][256];
  LevelDistances() {
    for (int32_t v = 0; v < 256; ++v) {
      double mid = 127.5, bisect = 128.0;
      for (int32_t level = 1; level <= 8; ++level) {
        bisect *= 0.5;
        mid += (v >> (8 - level) & 1) ? bisect : -bisect;
        const double d = v - mid;
        square[level][v] = d * d;
      }
    }
  }
};

const LevelDistances& Distances() {
  static const LevelDistances table;
  return table;
}

// While classifying, the running sums of each cell live in dense arrays by level and cell rather
// than in the nodes: a colour's sums then sit a few bytes apart from its neighbours', where nodes
// are spread over slabs in the order they were made, and the processor's caches hold far more of
// them. Each sum sees the same additions in the same order as the node's own field would, and
// FoldCellSums moves them into the nodes when classification ends. The tree is never deeper than
// kIndexedDepth (a request of 256 colours gives a depth of 5, fewer give less), so a tree has at
// most kIndexedCells nodes besides the root and never outgrows MaxColourNodes: its depth never
// falls while classifying and a cell's node, once made, stays.
constexpr int32_t kIndexedDepth = 5;
constexpr size_t kIndexedCells = 8 + 64 + 512 + 4096 + 32768;
constexpr size_t kInnerCells = 8 + 64 + 512 + 4096;  // the levels that are never the depth
static_assert(kIndexedCells + 1 <= MaxColourNodes);

// A leaf's sums. Its error is a running sum of rounded additions and stays a double. Its pixel
// count and channel totals are whole numbers: they are kept in 32 bits, which halves what the
// leaves take in the caches, and added into the node's doubles (exactly, as whole numbers below
// 2^53 are) before they could overflow. Every centre at these depths lies halfway between two
// channel values, so a leaf that holds a pixel has an error of at least 0.75: an error of 0 is a
// leaf without a node.
struct LeafSums {
  double error;
  uint32_t unique, red, green, blue;
  uint32_t spare[2];  // 32 bytes: a leaf never straddles two cache lines
};
static_assert(sizeof(LeafSums) == 32);
// Pixels that 32-bit channel totals can take; a picture's row, at most 2^24 wide, always fits.
constexpr int64_t kLeafCountPixels = 0xFFFFFFFF / 255;

struct CellSums {
  ColourNode** node[kIndexedDepth + 1];  // per level, 8^level cells; null where there is no node
  double* error[kIndexedDepth];          // per level above the deepest possible one
  LeafSums* leaf;                        // per cell at the tree's depth
  int64_t pendingPixels = 0;             // classified since the counts were last moved
  static constexpr size_t kBytes = kIndexedCells * sizeof(ColourNode*) +
                                   kInnerCells * sizeof(double) + 32768 * sizeof(LeafSums) + 64;
  void Point(uint8_t* bytes) {
    for (int32_t l = 1; l <= kIndexedDepth; ++l) {
      node[l] = reinterpret_cast<ColourNode**>(bytes);
      bytes += sizeof(ColourNode*) << (3 * l);
    }
    for (int32_t l = 1; l < kIndexedDepth; ++l) {
      error[l] = reinterpret_cast<double*>(bytes);
      bytes += sizeof(double) << (3 * l);
    }
    // The leaves from the next 64-byte boundary; kBytes leaves room for it.
    leaf = reinterpret_cast<LeafSums*>(bytes + (-reinterpret_cast<uintptr_t>(bytes) & 63));
  }
};

// The cell of a colour at `level`: red's top bits highest, then green's, then blue's.
inline uint32_t CellAt(int32_t level, uint32_t red, uint32_t green, uint32_t blue) {
  const int32_t shift = 8 - level;
  return (red >> shift) << (2 * level) | (green >> shift) << level | (blue >> shift);
}

// Makes the nodes a colour passes through that do not exist yet, down to `depth`; a new node at
// the depth is a new leaf, and counted. Returns 0 when memory fails.
int MakeNodes(ColourCube* cube, CellSums* sums, int32_t depth, uint32_t red, uint32_t green,
              uint32_t blue) {
  ColourNode* parent = cube->root;
  for (int32_t level = 1; level <= depth; ++level) {
    ColourNode** entry = &sums->node[level][CellAt(level, red, green, blue)];
    if (!*entry) {
      const int32_t shift = 8 - level;
      const uint32_t id = (red >> shift & 1) << 2 | (green >> shift & 1) << 1 | (blue >> shift & 1);
      ColourNode* node =
          NewNode(cube, parent, static_cast<uint8_t>(id), static_cast<uint8_t>(level));
      if (!node) return 0;
      parent->census = static_cast<uint8_t>(parent->census | 1u << id);
      parent->child[id] = node;
      *entry = node;
      if (level == depth) ++cube->colours;
    }
    parent = *entry;
  }
  return 1;
}

// Adds the leaves' pixel counts and channel totals into their nodes and clears them.
void MoveLeafCounts(const ColourCube* cube, CellSums* sums) {
  for (uint32_t cell = 0; cell < 1u << (3 * cube->depth); ++cell) {
    ColourNode* node = sums->node[cube->depth][cell];
    LeafSums& leaf = sums->leaf[cell];
    if (!node || !leaf.unique) continue;
    node->uniqueCount += leaf.unique;
    node->redTotal += leaf.red;
    node->greenTotal += leaf.green;
    node->blueTotal += leaf.blue;
    leaf.unique = leaf.red = leaf.green = leaf.blue = 0;
  }
  sums->pendingPixels = 0;
}

// Moves the running sums of every cell into its node.
void FoldCellSums(const ColourCube* cube, CellSums* sums) {
  for (int32_t level = 1; level <= cube->depth; ++level)
    for (uint32_t cell = 0; cell < 1u << (3 * level); ++cell) {
      ColourNode* node = sums->node[level][cell];
      if (!node) continue;
      if (level < cube->depth) {
        node->quantiseError = sums->error[level][cell];
        continue;
      }
      node->quantiseError = sums->leaf[cell].error;
    }
  MoveLeafCounts(cube, sums);
}

// Classifies the runs of one row into a tree of depth `Depth`. The root's error is kept by the
// caller in `rootError` and stored back when classification ends; it is one long chain of
// rounded additions, so it stays in a register and its additions stay in level order.
template <int32_t Depth>
int ClassifyRow(ColourCube* cube, const LevelDistances& dist, CellSums* sums, double* rootError,
                const uint8_t* row, int32_t width) {
  double root = *rootError;
  for (int32_t x = 0; x < width;) {
    const uint8_t* p = row + x * 3;
    int32_t end = x + 1;
    while (end < width && row[end * 3] == p[0] && row[end * 3 + 1] == p[1] &&
           row[end * 3 + 2] == p[2])
      ++end;
    const uint32_t pixels = static_cast<uint32_t>(end - x);
    const double count = pixels;
    x = end;
    const uint32_t red = p[2], green = p[1], blue = p[0];
    LeafSums* leaf = &sums->leaf[CellAt(Depth, red, green, blue)];
    if (leaf->error == 0 && !MakeNodes(cube, sums, Depth, red, green, blue)) {
      *rootError = root;
      return 0;
    }
    const double* square = dist.square[0];
    for (int32_t level = 1; level < Depth; ++level) {
      square += 256;
      double& error = sums->error[level][CellAt(level, red, green, blue)];
      error += count * (square[red] + square[green] + square[blue]);
      root += error;
    }
    square += 256;
    leaf->error += count * (square[red] + square[green] + square[blue]);
    root += leaf->error;
    leaf->unique += pixels;
    leaf->red += pixels * red;
    leaf->green += pixels * green;
    leaf->blue += pixels * blue;
  }
  *rootError = root;
  return 1;
}

using RowClassifier = int (*)(ColourCube*, const LevelDistances&, CellSums*, double*,
                              const uint8_t*, int32_t);
// By depth, 2 to kIndexedDepth.
constexpr RowClassifier kRowClassifiers[kIndexedDepth + 1] = {
    nullptr, nullptr, ClassifyRow<2>, ClassifyRow<3>, ClassifyRow<4>, ClassifyRow<5>};

// The exact colours in order of first appearance, up to 256; past that only a count of pixels.
struct ExactColours {
  uint32_t colours[kExactColours];
  int32_t count;
  uint32_t slots[1024];  // open addressing over the recorded colours; 0xFFFFFFFF is empty
  void Clear() {
    count = 0;
    std::memset(slots, 0xFF, sizeof slots);
  }
  // Counts pixels once the list is full; the count only has to say "many", so it stops short of
  // overflowing.
  void CountMore(int64_t pixels) {
    count = static_cast<int32_t>(std::min<int64_t>(int64_t{count} + pixels, 0x7FFFFFFF));
  }
  void Add(uint32_t colour) {
    uint32_t slot = (colour * 2654435761u) >> 22;
    while (slots[slot] != 0xFFFFFFFF) {
      if (slots[slot] == colour) return;
      slot = (slot + 1) & 1023;
    }
    slots[slot] = colour;
    colours[count++] = colour;
  }
  // The pixels of a picture in the order the accessors give them, top row first.
  void Scan(const DibView& v) {
    if (count >= kExactColours) {
      CountMore(int64_t{v.width} * v.height);
      return;
    }
    for (int32_t y = v.height - 1; y >= 0; --y) {
      const uint8_t* p = DibRow(v, y);
      uint32_t last = 0xFFFFFFFF;
      for (int32_t x = 0; x < v.width; ++x, p += 3) {
        if (count >= kExactColours) {
          // Every further pixel, this one included, just raises the count.
          CountMore(int64_t{v.width} - x + int64_t{y} * v.width);
          return;
        }
        const uint32_t colour = static_cast<uint32_t>(p[0] << 16 | p[1] << 8 | p[2]);
        if (colour != last) Add(colour);  // a repeat of the previous pixel is listed already
        last = colour;
      }
    }
  }
};

// Records the exact colours of a picture, top row first, then classifies its runs, rows in
// memory order.
int ClassifyImage(ColourCube* cube, ExactColours* exact, CellSums* sums, const DibView& v) {
  const LevelDistances& dist = Distances();
  exact->Scan(v);
  double rootError = cube->root->quantiseError;
  int ok = 1;
  for (int32_t y = 0; y < v.height && ok; ++y) {
    if (sums->pendingPixels + v.width > kLeafCountPixels) MoveLeafCounts(cube, sums);
    sums->pendingPixels += v.width;
    ok = kRowClassifiers[cube->depth](cube, dist, sums, &rootError, DibRow(v, y), v.width);
  }
  cube->root->quantiseError = rootError;
  return ok;
}

// ReduceTree's rounds, reproduced without walking the whole tree each round. Errors never change
// while reducing, and every sum that moves between nodes is a whole number, exact in a double, so
// a node's sums at any moment are its subtree's original sums less those of its live children.
// A round at threshold T prunes the live nodes with error up to T; it counts the live nodes above
// T that hold pixels of their own or lose a child to this round; and it takes the next threshold
// from the errors above T among the nodes live when it began. Rounds therefore only touch the
// nodes whose error they reach. Returns 1 when done, -1 when the working arrays cannot be had,
// and 0 when a threshold reaches the root's error (possible only when that error is too large to
// step below): the tree is then as after the last round, for ReduceRounds to go on.
struct NodeSums {
  double unique, red, green, blue;
};

void ListPostOrder(ColourNode* node, ColourNode** list, int32_t* n) {
  for (int32_t i = 0; i < 8; ++i)
    if (node->census & (1u << i)) ListPostOrder(node->child[i], list, n);
  node->colourNumber = static_cast<uint32_t>(*n);  // scratch: the node's place in the list
  list[(*n)++] = node;
}

int ReduceTreeByEvents(ColourCube* cube, int32_t target) {
  ColourNode* root = cube->root;
  if (cube->colours <= target) return 1;
  int32_t total = 0;
  {
    // Count the linked nodes first; nodes may exceed the live count after a fall in depth.
    struct Counter {
      static int32_t Run(const ColourNode* n) {
        int32_t c = 1;
        for (int32_t i = 0; i < 8; ++i)
          if (n->census & (1u << i)) c += Run(n->child[i]);
        return c;
      }
    };
    total = Counter::Run(root);
  }
  const size_t bytes = static_cast<size_t>(total) *
                       (sizeof(ColourNode*) + sizeof(NodeSums) + sizeof(int32_t) * 2 + 2);
  ScopedBlock block(MovableAlloc(bytes));
  ScopedLock lock(block.handle);
  if (!lock) return -1;
  ColourNode** list = reinterpret_cast<ColourNode**>(lock.bytes);
  NodeSums* sums = reinterpret_cast<NodeSums*>(list + total);
  int32_t* order = reinterpret_cast<int32_t*>(sums + total);
  int32_t* stamp = order + total;
  uint8_t* live = reinterpret_cast<uint8_t*>(stamp + total);
  uint8_t* holds = live + total;  // the node's present sums are not all its children's

  int32_t n = 0;
  ListPostOrder(root, list, &n);
  int32_t holding = 0;
  for (int32_t i = 0; i < n; ++i) {
    ColourNode* node = list[i];
    NodeSums s = {node->uniqueCount, node->redTotal, node->greenTotal, node->blueTotal};
    for (int32_t c = 0; c < 8; ++c)
      if (node->census & (1u << c)) {
        const NodeSums& k = sums[node->child[c]->colourNumber];
        s.unique += k.unique, s.red += k.red, s.green += k.green, s.blue += k.blue;
      }
    sums[i] = s;
    live[i] = 1;
    holds[i] = node->uniqueCount > 0;
    holding += holds[i];
    order[i] = i;
    stamp[i] = -1;
  }
  std::sort(order, order + n,
            [&](int32_t a, int32_t b) { return list[a]->quantiseError < list[b]->quantiseError; });

  int32_t first = 0;  // order[first..] are the nodes with error above the last threshold
  double threshold = 0.0;
  int32_t colours = cube->colours;
  int32_t round = 0;
  bool rootReached = false;
  while (colours > target) {
    const double t = threshold;
    // A threshold at the root's error would prune the root into itself: the plain rounds take
    // over from here.
    if (t >= root->quantiseError) {
      rootReached = true;
      break;
    }
    // The live nodes this round prunes sit at order[first..end).
    int32_t end = first;
    while (end < n && list[order[end]]->quantiseError <= t) ++end;
    int32_t lost = 0, gained = 0;
    for (int32_t k = first; k < end; ++k) {
      const int32_t i = order[k];
      if (!live[i]) continue;
      lost += holds[i];
      const int32_t p = static_cast<int32_t>(list[i]->parent->colourNumber);
      if (p != i && live[p] && !holds[p] && list[p]->quantiseError > t && stamp[p] != round) {
        stamp[p] = round;
        ++gained;
      }
    }
    // The next threshold: the smallest error above t among the nodes live now.
    double next = root->quantiseError - 1.0;
    int32_t scan = end;
    while (scan < n && !live[order[scan]]) ++scan;
    if (scan < n && list[order[scan]]->quantiseError < next)
      next = list[order[scan]]->quantiseError;
    colours = holding - lost + gained;
    // Prune: every live node of each pruned subtree dies; the parent of a pruned node that stays
    // takes its sums.
    for (int32_t k = first; k < end; ++k) {
      const int32_t i = order[k];
      if (!live[i]) continue;
      // Kill the live subtree under i, depth first through the census.
      struct Killer {
        ColourNode** list;
        uint8_t* live;
        uint8_t* holds;
        int32_t* holding;
        void Run(int32_t i) {
          live[i] = 0;
          *holding -= holds[i];
          const ColourNode* node = list[i];
          for (int32_t c = 0; c < 8; ++c)
            if (node->census & (1u << c)) {
              const int32_t j = static_cast<int32_t>(node->child[c]->colourNumber);
              if (live[j]) Run(j);
            }
        }
      } killer{list, live, holds, &holding};
      killer.Run(i);
    }
    for (int32_t k = first; k < end; ++k) {
      const int32_t i = order[k];
      const int32_t p = static_cast<int32_t>(list[i]->parent->colourNumber);
      if (!live[i] && live[p] && !holds[p] && p != i) {
        // Only a topmost pruned node can have a live parent.
        holds[p] = 1;
        ++holding;
      }
    }
    first = scan > end ? scan : end;
    cube->pruningThreshold = t;
    cube->nextThreshold = next;
    ++round;
    if (colours > target && !(next > t)) break;
    threshold = next;
  }

  // Leave the tree as the rounds would: survivors keep their subtree's sums less their live
  // children's, and link only live children.
  int32_t nodes = 0;
  for (int32_t i = 0; i < n; ++i) {
    if (!live[i]) continue;
    ++nodes;
    ColourNode* node = list[i];
    NodeSums s = sums[i];
    uint8_t census = 0;
    for (int32_t c = 0; c < 8; ++c)
      if (node->census & (1u << c)) {
        const int32_t j = static_cast<int32_t>(node->child[c]->colourNumber);
        if (!live[j]) continue;
        census = static_cast<uint8_t>(census | 1u << c);
        s.unique -= sums[j].unique, s.red -= sums[j].red, s.green -= sums[j].green,
            s.blue -= sums[j].blue;
      }
    node->census = census;
    node->uniqueCount = s.unique;
    node->redTotal = s.red;
    node->greenTotal = s.green;
    node->blueTotal = s.blue;
  }
  cube->nodes = nodes;
  cube->colours = colours;
  cube->nextThreshold = threshold;
  return rootReached ? 0 : 1;
}

}  // namespace

void PruneSubtree(ColourCube* cube, ColourNode* node) {
  for (int32_t i = 0; i < 8; ++i)
    if (node->census & (1u << i)) PruneSubtree(cube, node->child[i]);
  MergeIntoParent(cube, node);
}

void ReduceNode(ColourCube* cube, ColourNode* node) {
  for (int32_t i = 0; i < 8; ++i)
    if (node->census & (1u << i)) ReduceNode(cube, node->child[i]);
  if (cube->pruningThreshold >= node->quantiseError) {
    for (int32_t i = 0; i < 8; ++i)
      if (node->census & (1u << i)) PruneSubtree(cube, node->child[i]);
    MergeIntoParent(cube, node);  // the root merges into itself and doubles its sums
  } else {
    if (node->uniqueCount > 0) ++cube->colours;
    if (node->quantiseError < cube->nextThreshold) cube->nextThreshold = node->quantiseError;
  }
}

void ReduceRounds(ColourCube* cube, int32_t target) {
  while (cube->colours > target) {
    cube->pruningThreshold = cube->nextThreshold;
    cube->nextThreshold = cube->root->quantiseError - 1.0;
    cube->colours = 0;
    ReduceNode(cube, cube->root);
    // A round that cannot raise the threshold would repeat itself for ever; no real tree gets
    // here, but a host must never hang.
    if (cube->colours > target && !(cube->nextThreshold > cube->pruningThreshold)) break;
  }
}

void ExtractPalette(ColourCube* cube, ColourNode* node) {
  for (int32_t i = 0; i < 8; ++i)
    if (node->census & (1u << i)) ExtractPalette(cube, node->child[i]);
  if (node->uniqueCount != 0 && cube->colours < 256) {
    const double half = node->uniqueCount * 0.5;
    uint8_t* entry = cube->palette + cube->colours * 3;
    entry[0] =
        static_cast<uint8_t>(static_cast<int32_t>((half + node->redTotal) / node->uniqueCount));
    entry[1] =
        static_cast<uint8_t>(static_cast<int32_t>((half + node->greenTotal) / node->uniqueCount));
    entry[2] =
        static_cast<uint8_t>(static_cast<int32_t>((half + node->blueTotal) / node->uniqueCount));
    node->colourNumber = static_cast<uint32_t>(cube->colours);
    ++cube->colours;
  }
}

int32_t QuantiseFrames(int32_t* request, uint8_t* palette, const FrameList* frames) {
  std::memset(palette, 0, kPaletteBytes);
  if (!frames || frames->count < 0) return 0;
  const int32_t asked = *request;
  const int32_t target = asked <= 0 || asked > 256 ? 256 : asked;
  int32_t depth = 0;
  for (int32_t n = target; n != 0; n >>= 2) ++depth;
  depth = depth > 8 ? 8 : depth < 2 ? 2 : depth;

  ScopedBlock cubeBlock(
      MovableAlloc(sizeof(ColourCube) + sizeof(ColourOptions) + sizeof(ExactColours)));
  ScopedLock cubeLock(cubeBlock.handle);
  if (!cubeLock) return kQuantiseMemoryError;
  ColourCube* cube = reinterpret_cast<ColourCube*>(cubeLock.bytes);
  cube->options = reinterpret_cast<ColourOptions*>(cube + 1);
  cube->options->colourCount = target;
  cube->options->useWeights = 1;
  ExactColours* exact = reinterpret_cast<ExactColours*>(cube->options + 1);
  ScopedBlock sumsBlock(MovableAlloc(CellSums::kBytes));
  ScopedLock sumsLock(sumsBlock.handle);
  if (!sumsLock) return kQuantiseMemoryError;
  CellSums sums;
  sums.Point(sumsLock.bytes);
  exact->Clear();
  cube->depth = depth;
  cube->palette = palette;

  struct SlabGuard {
    ColourCube* cube;
    ~SlabGuard() { FreeSlabs(cube); }
  } slabGuard{cube};
  cube->root = NewNode(cube, nullptr, 0, 0);
  if (!cube->root) return 0;
  cube->root->parent = cube->root;

  if (frames->count > 0) {
    ScopedLock records(frames->records);
    if (!records ||
        MovableSize(frames->records) / sizeof(FrameRecord) < static_cast<size_t>(frames->count))
      return 0;
    for (int32_t i = 0; i < frames->count; ++i) {
      FrameRecord record;
      std::memcpy(&record, records.bytes + static_cast<size_t>(i) * sizeof record, sizeof record);
      ScopedLock lock(record.image);
      DibView view;
      if (!lock || !OpenDibView(lock.bytes, MovableSize(record.image), &view) ||
          view.bitCount != 24)
        return 0;
      if (!ClassifyImage(cube, exact, &sums, view)) return 0;
    }
  }
  FoldCellSums(cube, &sums);

  if (exact->count > asked) {
    const int reduced = ReduceTreeByEvents(cube, target);
    if (reduced < 0) return 0;
    if (reduced == 0) ReduceRounds(cube, target);
    std::memset(palette, 0, kPaletteBytes);
    cube->colours = 0;
    ExtractPalette(cube, cube->root);
    *request = cube->colours;
  } else {
    // A request over 256 can take this branch with a count over 256, which only says "many":
    // the list itself never holds more than 256 colours.
    for (int32_t i = 0; i < std::min(exact->count, kExactColours); ++i) {
      palette[i * 3] = static_cast<uint8_t>(exact->colours[i]);
      palette[i * 3 + 1] = static_cast<uint8_t>(exact->colours[i] >> 8);
      palette[i * 3 + 2] = static_cast<uint8_t>(exact->colours[i] >> 16);
    }
    *request = exact->count;
  }
  return 1;
}
