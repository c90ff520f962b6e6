// HostService served from a script: record checks, file objects, answers and the call log.
#include "host/host_session.h"

#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "host/animation_reader.h"
#include "host/bmp_file.h"
#include "shell/packed_dib.h"

namespace {

const char* OpcodeName(int32_t opcode) {
  switch (opcode) {
    case HostOpCreateFile:
      return "HostOpCreateFile";
    case HostOpAddImage:
      return "HostOpAddImage";
    case HostOpAddComment:
      return "HostOpAddComment";
    case HostOpCloseFile:
      return "HostOpCloseFile";
    case HostOpCreateTestFile:
      return "HostOpCreateTestFile";
    case HostOpSelectImageFile:
      return "HostOpSelectImageFile";
    case HostOpLoadImageFile:
      return "HostOpLoadImageFile";
    case HostOpShowHelp:
      return "HostOpShowHelp";
    case HostOpProgressCaption:
      return "HostOpProgressCaption";
    case HostOpChooseColour:
      return "HostOpChooseColour";
    case HostOpQueryRegistered:
      return "HostOpQueryRegistered";
    case HostOpProgress:
      return "HostOpProgress";
    case HostOpSetBackground:
      return "HostOpSetBackground";
    case HostOpOpenAnimation:
      return "HostOpOpenAnimation";
    case HostOpGetSetting:
      return "HostOpGetSetting";
    case HostOpBeginWork:
      return "HostOpBeginWork";
    case HostOpFileDialogSize:
      return "HostOpFileDialogSize";
  }
  return "unknown";
}

// Texts from the plug-in are read up to a bound: a missing terminator must not run away.
std::string BoundedText(uint64_t pointer, size_t limit) {
  const char* text = reinterpret_cast<const char*>(pointer);
  if (!text) return std::string();
  return std::string(text, strnlen(text, limit));
}

// One call's log line, built up by the opcode's handler.
struct CallLine {
  std::ostringstream text;
  void Field(const char* key, int64_t value) { text << ' ' << key << '=' << value; }
  void Hex(const char* key, uint64_t value) {
    text << ' ' << key << "=0x" << std::hex << value << std::dec;
  }
  void Text(const char* key, const std::string& value) {
    text << ' ' << key << '=' << EscapeLogText(value.c_str());
  }
  // Marks the call refused for a reason and returns 0.
  uint64_t Refuse(const char* reason) {
    text << " error=" << reason;
    return 0;
  }
};

HostFile* FindOpenFile(HostSession* session, void* object) {
  auto found = session->openFiles.find(object);
  return found == session->openFiles.end() ? nullptr : found->second;
}

uint64_t CreateFile(HostSession* session, int32_t opcode, uint64_t b, CallLine* line) {
  const FileObjectRecord* record = reinterpret_cast<const FileObjectRecord*>(b);
  if (!record) return line->Refuse("null-record");
  if (record->size != sizeof(FileObjectRecord) || record->version != kInterfaceVersion)
    return line->Refuse("bad-record");
  line->Field("bits", record->bits);
  line->Field("width", record->width);
  line->Field("height", record->height);
  line->Field("frameCount", record->frameCount);
  line->Field("transparentIndex", record->transparentIndex);
  int bitsOk = (record->bits >= 1 && record->bits <= 8) || record->bits == 24;
  if (!bitsOk || record->width <= 0 || record->height <= 0) return line->Refuse("bad-values");
  if (session->refused.count(opcode)) return line->Refuse("refused");
  auto file = std::make_unique<HostFile>();
  file->serial = static_cast<int32_t>(session->files.size()) + 1;
  file->test = opcode == HostOpCreateTestFile;
  file->record = *record;
  line->Field("file", file->serial);
  session->openFiles[record] = file.get();
  session->files.push_back(std::move(file));
  return 1;
}

uint64_t AddImage(HostSession* session, HostFile* file, uint64_t b, CallLine* line) {
  const ImageRecord* record = reinterpret_cast<const ImageRecord*>(b);
  if (!record) return line->Refuse("null-record");
  if (record->size != sizeof(ImageRecord) || record->version != kInterfaceVersion)
    return line->Refuse("bad-record");
  line->Field("index", record->index);
  line->Field("delay", record->delay);
  line->Field("transparent", record->transparent);
  line->Field("transparentIndex", record->transparentIndex);
  if (session->refused.count(HostOpAddImage)) return line->Refuse("refused");
  ScopedLock bytes(record->image);
  if (!bytes) return line->Refuse("no-image");
  size_t available = MovableSize(record->image);
  size_t needed = PackedDibBytes(bytes.bytes, available);
  if (!needed || needed > available) return line->Refuse("bad-image");
  const BitmapInfoHeader* header = reinterpret_cast<const BitmapInfoHeader*>(bytes.bytes);
  line->Field("width", header->biWidth);
  line->Field("height", header->biHeight);
  line->Field("imageBits", header->biBitCount);
  HostFrame frame;
  frame.dib.assign(bytes.bytes, bytes.bytes + needed);
  frame.transparent = record->transparent;
  frame.delay = record->delay;
  frame.index = record->index;
  frame.transparentIndex = record->transparentIndex;
  file->frames.push_back(std::move(frame));
  return 1;
}

uint64_t ChooseColour(HostSession* session, uint64_t b, CallLine* line) {
  ColourRequest* request = reinterpret_cast<ColourRequest*>(b);
  if (!request) return line->Refuse("null-record");
  if (request->size != sizeof(ColourRequest) || request->version != kInterfaceVersion ||
      request->bits != 24 || !request->palette)
    return line->Refuse("bad-record");
  uint8_t swatches[768];
  BuildSwatchTable(swatches);
  line->Text("swatches", memcmp(swatches, request->palette, sizeof swatches) ? "other" : "cube");
  line->Hex("colour", request->colour);
  if (session->colours.empty()) return line->Refuse("cancelled");
  request->colour = session->colours.front();
  session->colours.pop_front();
  line->Hex("chosen", request->colour);
  return 1;
}

// Builds an AnimationBlock from BMP files: head and entry headers of 20 bytes, then the end mark.
MovableHandle MakeAnimationBlock(const std::vector<std::string>& paths) {
  std::vector<uint8_t> block(sizeof(AnimationBlockHead));
  AnimationBlockHead head{
      kAnimationBlockMagic, sizeof head, {0, 0}, static_cast<uint32_t>(paths.size())};
  memcpy(block.data(), &head, sizeof head);
  for (const std::string& path : paths) {
    std::vector<uint8_t> file = ReadWholeFile(path.c_str());
    MovableHandle dib = BmpToPackedDib(file.data(), file.size());
    if (!dib) return nullptr;
    size_t size = MovableSize(dib);
    AnimationBlockEntry entry{
        kAnimationEntryMagic, sizeof entry, {0, 0}, static_cast<uint32_t>(size)};
    size_t at = block.size();
    block.resize(at + sizeof entry + size);
    memcpy(block.data() + at, &entry, sizeof entry);
    {
      ScopedLock bytes(dib);
      if (bytes) memcpy(block.data() + at + sizeof entry, bytes.bytes, size);
    }
    MovableFree(dib);
  }
  AnimationBlockEnd end{kAnimationEndMagic};
  size_t at = block.size();
  block.resize(at + sizeof end);
  memcpy(block.data() + at, &end, sizeof end);
  MovableHandle result = MovableAlloc(block.size());
  ScopedLock bytes(result);
  if (bytes) memcpy(bytes.bytes, block.data(), block.size());
  return result;
}

// The picture file at `path` as an AnimationBlock, or null when it can't be read.
MovableHandle ReadAnimationBlock(const std::string& path) {
  ComposedAnimation animation;
  if (!ReadHostAnimationFile(path.c_str(), &animation)) return nullptr;
  return MakeAnimationBlockOf(animation);
}

int64_t AnimationBlockFrames(MovableHandle block) {
  ScopedLock bytes(block);
  AnimationBlockHead head{};
  if (!bytes || MovableSize(block) < sizeof head) return 0;
  memcpy(&head, bytes.bytes, sizeof head);
  return head.entryCount;
}

uint64_t OpenAnimation(HostSession* session, uint64_t b, CallLine* line) {
  AnimationRequest* request = reinterpret_cast<AnimationRequest*>(b);
  if (!request) return line->Refuse("null-record");
  if (request->magic != kAnimationRequestMagic || request->size != sizeof(AnimationRequest) ||
      request->version != kInterfaceVersion || request->mode != 1)
    return line->Refuse("bad-record");
  const std::string asked(request->path, strnlen(request->path, sizeof request->path));
  line->Text("path", asked);
  // A path in the request is a file the plug-in already holds: it is read as it stands.
  if (!asked.empty()) {
    MovableHandle block = ReadAnimationBlock(asked);
    if (!block) return line->Refuse("unreadable-file");
    line->Field("frames", AnimationBlockFrames(block));
    return reinterpret_cast<uint64_t>(block);
  }
  // An empty path asks the user: the script's file, or its frames, or a cancel.
  std::string chosen;
  MovableHandle block = nullptr;
  if (!session->animationFiles.empty()) {
    chosen = session->animationFiles.front();
    session->animationFiles.pop_front();
    block = ReadAnimationBlock(chosen);
    if (!block) return line->Refuse("unreadable-file");
  } else {
    if (session->animationFrames.empty()) return line->Refuse("cancelled");
    block = MakeAnimationBlock(session->animationFrames);
    if (!block) return line->Refuse("unreadable-frames");
    chosen = session->animationFrames.front();
  }
  line->Field("frames", AnimationBlockFrames(block));
  size_t length = chosen.size() < 260 ? chosen.size() : 260;
  memset(request->path, 0, sizeof request->path);
  memcpy(request->path, chosen.data(), length);
  return reinterpret_cast<uint64_t>(block);
}

uint64_t Serve(HostSession* session, void* object, int32_t opcode, uint64_t a, uint64_t b,
               CallLine* line) {
  HostFile* file = nullptr;
  switch (opcode) {
    case HostOpAddImage:
    case HostOpAddComment:
    case HostOpCloseFile:
    case HostOpSetBackground:
      file = FindOpenFile(session, object);
      if (!file) return line->Refuse("unknown-file");
      line->Field("file", file->serial);
      break;
  }
  switch (opcode) {
    case HostOpCreateFile:
    case HostOpCreateTestFile:
      return CreateFile(session, opcode, b, line);
    case HostOpAddImage:
      return AddImage(session, file, b, line);
    case HostOpAddComment:
      file->comment = BoundedText(b, 65536);
      line->Text("text", file->comment);
      return 1;
    case HostOpCloseFile:
      file->closed = 1;
      file->committed = a != 0;
      line->Field("frames", static_cast<int64_t>(file->frames.size()));
      session->openFiles.erase(object);
      if (!session->dumpFolder.empty() && !DumpHostFile(session, file))
        return line->Refuse("dump-failed");
      return 1;
    case HostOpSetBackground:
      if (a != kBackgroundColour && a != kBackgroundIndex) return line->Refuse("bad-mode");
      file->backgroundMode = static_cast<int64_t>(a);
      file->background = b;
      return 1;
    case HostOpSelectImageFile: {
      char* buffer = reinterpret_cast<char*>(b);
      if (!buffer) return line->Refuse("null-buffer");
      if (buffer[0]) return line->Refuse("buffer-not-empty");
      if (session->selectedFiles.empty()) return line->Refuse("cancelled");
      std::string path = session->selectedFiles.front();
      session->selectedFiles.pop_front();
      path.resize(path.size() < 260 ? path.size() : 260);
      memcpy(buffer, path.c_str(), path.size() + 1);
      line->Text("path", path);
      return 1;
    }
    case HostOpLoadImageFile: {
      std::string path = BoundedText(b, 1024);
      line->Text("path", path);
      MovableHandle dib = nullptr;
      if (session->readPicture) {
        dib = session->readPicture(path.c_str());
      } else {
        std::vector<uint8_t> bytes = ReadWholeFile(path.c_str());
        dib = BmpToPackedDib(bytes.data(), bytes.size());
      }
      if (!dib) return line->Refuse("unreadable");
      return reinterpret_cast<uint64_t>(dib);
    }
    case HostOpShowHelp:
    case HostOpProgressCaption:
      line->Text("text", BoundedText(b, 1024));
      return 1;
    case HostOpChooseColour:
      return ChooseColour(session, b, line);
    case HostOpQueryRegistered:
      return session->registered;
    case HostOpProgress:
      return 1;
    case HostOpOpenAnimation:
      return OpenAnimation(session, b, line);
    case HostOpGetSetting: {
      std::string key = BoundedText(b, 256);
      line->Text("key", key);
      auto found = session->settings.find(key);
      if (found == session->settings.end()) return line->Refuse("missing");
      return reinterpret_cast<uint64_t>(&found->second->record);
    }
    case HostOpBeginWork:
      return 1;
    case HostOpFileDialogSize: {
      int32_t* size = reinterpret_cast<int32_t*>(b);
      if (!size) return line->Refuse("null-buffer");
      size[0] = session->dialogWidth;
      size[1] = session->dialogHeight;
      return 1;
    }
  }
  return line->Refuse("unexpected-opcode");
}

}  // namespace

std::string EscapeLogText(const char* text, size_t limit) {
  static const char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (size_t i = 0; text && text[i] && i < limit; ++i) {
    uint8_t c = static_cast<uint8_t>(text[i]);
    if (c > ' ' && c <= '~' && c != '%') {
      out += static_cast<char>(c);
    } else {
      out += '%';
      out += kHex[c >> 4];
      out += kHex[c & 15];
    }
  }
  return out;
}

void HostLog(HostSession* session, const std::string& text) {
  if (!session->log) return;
  fputs(text.c_str(), session->log);
  fputc('\n', session->log);
  fflush(session->log);
}

uint64_t ServeHostCall(HostSession* session, void* object, int32_t opcode, uint64_t a, uint64_t b) {
  CallLine line;
  line.text << "call op=" << opcode << " name=" << OpcodeName(opcode);
  if (session->refused.count(opcode) && opcode != HostOpCreateFile &&
      opcode != HostOpCreateTestFile && opcode != HostOpAddImage) {
    line.Refuse("refused");
    line.text << " result=0";
    HostLog(session, line.text.str());
    return 0;
  }
  uint64_t result = Serve(session, object, opcode, a, b, &line);
  if (opcode == HostOpProgress || opcode == HostOpSetBackground || opcode == HostOpCloseFile) {
    line.Field("a", static_cast<int64_t>(a));
    line.Field("b", static_cast<int64_t>(b));
  }
  line.text << " result=" << (result ? 1 : 0);
  ++session->calls;
  HostLog(session, line.text.str());
  return result;
}

int ReadHostAnswerLine(HostSession* session, const char* text) {
  std::istringstream in(text);
  std::string word;
  if (!(in >> word) || word[0] == '#') return 1;
  if (word == "colour") {
    std::string value;
    in >> value;
    session->colours.push_back(static_cast<uint32_t>(strtoul(value.c_str(), nullptr, 0)));
  } else if (word == "select-file") {
    std::string path;
    std::getline(in >> std::ws, path);
    session->selectedFiles.push_back(path);
  } else if (word == "animation-file") {
    std::string path;
    std::getline(in >> std::ws, path);
    session->animationFiles.push_back(path);
  } else if (word == "animation") {
    session->animationFrames.clear();
    std::string path;
    while (in >> path) session->animationFrames.push_back(path);
  } else if (word == "setting") {
    auto setting = std::make_unique<HostSettingValue>();
    in >> setting->key >> setting->value;
    setting->record.value = &setting->value;
    setting->record.flags = kHostSettingInteger;
    setting->record.key = nullptr;
    std::string key = setting->key;
    session->settings[key] = std::move(setting);
    session->settings[key]->record.key = session->settings[key]->key.c_str();
  } else if (word == "refuse") {
    int32_t opcode = 0;
    in >> opcode;
    session->refused.insert(opcode);
  } else if (word == "registered") {
    in >> session->registered;
  } else if (word == "dialog-size") {
    in >> session->dialogWidth >> session->dialogHeight;
  } else {
    return 0;
  }
  return 1;
}

int DumpHostFile(const HostSession* session, const HostFile* file) {
  std::string stem = session->dumpFolder + "/file" + std::to_string(file->serial);
  int ok = 1;
  for (size_t i = 0; i < file->frames.size(); ++i) {
    const HostFrame& frame = file->frames[i];
    char name[32];
    snprintf(name, sizeof name, "-frame%03zu.bmp", i);
    ok &= WriteWholeFile((stem + name).c_str(), PackedDibToBmp(frame.dib.data(), frame.dib.size()));
  }
  std::ostringstream meta;
  const FileObjectRecord& r = file->record;
  meta << "test=" << file->test << "\nbits=" << r.bits << "\nwidth=" << r.width
       << "\nheight=" << r.height << "\nframeCount=" << r.frameCount
       << "\ntransparentIndex=" << r.transparentIndex << "\nframes=" << file->frames.size()
       << "\nbackgroundMode=" << file->backgroundMode << "\nbackground=" << file->background
       << "\ncommitted=" << file->committed
       << "\ncomment=" << EscapeLogText(file->comment.c_str(), 65536) << "\n";
  for (const HostFrame& frame : file->frames)
    meta << "frame index=" << frame.index << " delay=" << frame.delay
         << " transparent=" << frame.transparent << " transparentIndex=" << frame.transparentIndex
         << "\n";
  meta << "palette=";
  for (int i = 0; i < 768; ++i) {
    char hex[3];
    snprintf(hex, sizeof hex, "%02X", r.palette[i]);
    meta << hex;
  }
  meta << "\n";
  std::string text = meta.str();
  ok &= WriteWholeFile((stem + ".txt").c_str(), std::vector<uint8_t>(text.begin(), text.end()));
  return ok;
}
