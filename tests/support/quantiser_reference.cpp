// The reference quantiser: nodes in a vector addressed by index, every step as told, and runs
// found by comparing ReadDibPixel values.
#include <cstring>
#include <vector>

#include "shell/packed_dib.h"
#include "tests/support/imaging_reference.h"

namespace {

struct Node {
  double unique = 0, red = 0, green = 0, blue = 0, error = 0;
  int id = 0, level = 0, census = 0, parent = 0;
  int child[8] = {};
};

struct Tree {
  std::vector<Node> nodes;
  int depth = 0, colours = 0, live = 0;
  double pruning = 0, next = 0;
  uint8_t* palette = nullptr;

  int Make(int parent, int id, int level) {
    Node n;
    n.parent = parent, n.id = id, n.level = level;
    nodes.push_back(n);
    ++live;
    return static_cast<int>(nodes.size()) - 1;
  }
  void Merge(int i) {
    Node& p = nodes[nodes[i].parent];
    p.census &= ~(1 << nodes[i].id);
    p.unique += nodes[i].unique;
    p.red += nodes[i].red;
    p.green += nodes[i].green;
    p.blue += nodes[i].blue;
    --live;
  }
  void PruneSubtree(int i) {
    for (int c = 0; c < 8; ++c)
      if (nodes[i].census & (1 << c)) PruneSubtree(nodes[i].child[c]);
    Merge(i);
  }
  void PruneLevel(int i) {
    for (int c = 0; c < 8; ++c)
      if (nodes[i].census & (1 << c)) PruneLevel(nodes[i].child[c]);
    if (nodes[i].level == depth) {
      for (int c = 0; c < 8; ++c)
        if (nodes[i].census & (1 << c)) PruneSubtree(nodes[i].child[c]);
      Merge(i);
    }
  }
  void Reduce(int i) {
    for (int c = 0; c < 8; ++c)
      if (nodes[i].census & (1 << c)) Reduce(nodes[i].child[c]);
    if (pruning >= nodes[i].error) {
      for (int c = 0; c < 8; ++c)
        if (nodes[i].census & (1 << c)) PruneSubtree(nodes[i].child[c]);
      Merge(i);
    } else {
      if (nodes[i].unique > 0) ++colours;
      if (nodes[i].error < next) next = nodes[i].error;
    }
  }
  void Extract(int i) {
    for (int c = 0; c < 8; ++c)
      if (nodes[i].census & (1 << c)) Extract(nodes[i].child[c]);
    const Node& n = nodes[i];
    if (n.unique != 0) {
      const double h = n.unique * 0.5;
      palette[colours * 3] = static_cast<uint8_t>(static_cast<int>((h + n.red) / n.unique));
      palette[colours * 3 + 1] = static_cast<uint8_t>(static_cast<int>((h + n.green) / n.unique));
      palette[colours * 3 + 2] = static_cast<uint8_t>(static_cast<int>((h + n.blue) / n.unique));
      ++colours;
    }
  }
  void Classify(int r, int g, int b, double count) {
    int node = 0;
    double cr = 127.5, cg = 127.5, cb = 127.5, bisect = 128.0;
    for (int level = 1; level <= depth; ++level) {
      const int shift = 8 - level;
      bisect /= 2;
      const int id = ((r >> shift) & 1) * 4 + ((g >> shift) & 1) * 2 + ((b >> shift) & 1);
      cr += (r >> shift) & 1 ? bisect : -bisect;
      cg += (g >> shift) & 1 ? bisect : -bisect;
      cb += (b >> shift) & 1 ? bisect : -bisect;
      if (!(nodes[node].census & (1 << id))) {
        nodes[node].census |= 1 << id;
        const int made = Make(node, id, level);
        nodes[node].child[id] = made;
        if (level == depth) ++colours;
      }
      node = nodes[node].child[id];
      const double dr = r - cr, dg = g - cg, db = b - cb;
      nodes[node].error += count * (dr * dr + dg * dg + db * db);
      nodes[0].error += nodes[node].error;
    }
    nodes[node].unique += count;
    nodes[node].red += count * r;
    nodes[node].green += count * g;
    nodes[node].blue += count * b;
  }
};

}  // namespace

int32_t RefQuantiseFrames(int32_t* request, uint8_t* palette, const MovableHandle* images,
                          int32_t imageCount) {
  std::memset(palette, 0, 768);
  int32_t target = *request;
  if (target <= 0 || target > 256) target = 256;
  int n = target, d = 0;
  do {
    n >>= 2;
    ++d;
  } while (n != 0);
  Tree tree;
  tree.depth = d > 8 ? 8 : d < 2 ? 2 : d;
  tree.palette = palette;
  tree.nodes.reserve(1 << 16);
  tree.Make(0, 0, 0);
  std::vector<uint32_t> exact;
  int32_t exactCount = 0;
  for (int32_t f = 0; f < imageCount; ++f) {
    ScopedLock lock(images[f]);
    if (!lock) return 0;
    const auto* h = reinterpret_cast<const BitmapInfoHeader*>(lock.bytes);
    for (int32_t y = 0; y < h->biHeight; ++y)
      for (int32_t x = 0; x < h->biWidth; ++x) {
        const uint32_t c = ReadDibPixel(lock.bytes, x, y);
        if (exactCount >= 256) {
          ++exactCount;
          continue;
        }
        bool found = false;
        for (uint32_t e : exact) found = found || e == c;
        if (!found) {
          exact.push_back(c);
          ++exactCount;
        }
      }
    for (int32_t row = 0; row < h->biHeight; ++row) {
      if (tree.live > 266817) {
        tree.PruneLevel(0);
        --tree.depth;
      }
      const int32_t y = h->biHeight - 1 - row;
      for (int32_t x = 0; x < h->biWidth;) {
        const uint32_t c = ReadDibPixel(lock.bytes, x, y);
        int32_t count = 1;
        while (x + count < h->biWidth && ReadDibPixel(lock.bytes, x + count, y) == c) ++count;
        tree.Classify(c & 0xFF, c >> 8 & 0xFF, c >> 16 & 0xFF, count);
        x += count;
      }
    }
  }
  if (exactCount > *request) {
    tree.next = 0.0;
    while (tree.colours > target) {
      tree.pruning = tree.next;
      tree.next = tree.nodes[0].error - 1.0;
      tree.colours = 0;
      tree.Reduce(0);
    }
    std::memset(palette, 0, 768);
    tree.colours = 0;
    tree.Extract(0);
    *request = tree.colours;
  } else {
    for (int32_t i = 0; i < exactCount && i < 256; ++i) {
      palette[i * 3] = static_cast<uint8_t>(exact[i]);
      palette[i * 3 + 1] = static_cast<uint8_t>(exact[i] >> 8);
      palette[i * 3 + 2] = static_cast<uint8_t>(exact[i] >> 16);
    }
    *request = exactCount;
  }
  return 1;
}
