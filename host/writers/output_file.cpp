// Checked writes through a temporary file renamed into place, and folders of frames that keep
// everything that is not theirs.
#include "host/writers/output_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// The temporary file in flight, in a fixed buffer a signal handler may read.
char partialPath[PATH_MAX + 1];
std::atomic<int> partialSet{0};

void PublishPartial(const std::string& path) {
  partialSet.store(0);
  const size_t n = path.size() < PATH_MAX ? path.size() : PATH_MAX;
  memcpy(partialPath, path.data(), n);
  partialPath[n] = 0;
  partialSet.store(1);
}

// The temporary opened ahead of the bytes for one destination, or -1.
int reservedDescriptor = -1;
std::string reservedFor, reservedTemporary;

std::string Reason(int code) {
  return strerror(code);
}

int Fail(std::string* error, const std::string& path, const std::string& reason) {
  *error = "cannot write " + path + ": " + reason;
  return 0;
}

// The folder part of `path` ("." when it has none) and whether `path` ends in a slash.
std::string FolderOf(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

// Where the bytes for `path` land: a link to a file is followed, so that the file it names is
// replaced and the link stays.
std::string PlaceOf(const std::string& path) {
  struct stat link;
  char resolved[PATH_MAX];
  if (lstat(path.c_str(), &link) == 0 && S_ISLNK(link.st_mode) && realpath(path.c_str(), resolved))
    return resolved;
  return path;
}

// Creates and publishes the temporary beside `place`. Its name does not grow with the
// destination's, so that any valid name works. Returns its descriptor, or -1 with errno set.
int OpenTemporary(const std::string& place, std::string* temporary) {
  *temporary = FolderOf(place) + "/.gm5-" + std::to_string(static_cast<long>(getpid())) + ".part";
  PublishPartial(*temporary);
  const int descriptor =
      open(temporary->c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor < 0) {
    const int code = errno;
    partialSet.store(0);
    errno = code;
  }
  return descriptor;
}

// Writes all of `bytes` to `descriptor`, going on after short writes and interruptions. Returns
// 0 with errno set on failure.
int WriteAll(int descriptor, const uint8_t* bytes, size_t size) {
  while (size > 0) {
    const ssize_t n = write(descriptor, bytes, size);
    if (n < 0) {
      if (errno == EINTR) continue;
      return 0;
    }
    bytes += n;
    size -= static_cast<size_t>(n);
  }
  return 1;
}

// Copies the file at `from` to `to`, written as any output is. Returns 0 with `error` on failure.
int CopyToBackup(const std::string& from, const std::string& to, std::string* error) {
  const int in = open(from.c_str(), O_RDONLY);
  if (in < 0) return Fail(error, to, Reason(errno));
  std::string bytes;
  char buffer[65536];
  ssize_t n;
  while ((n = read(in, buffer, sizeof buffer)) != 0) {
    if (n < 0) {
      if (errno == EINTR) continue;
      const int code = errno;
      close(in);
      return Fail(error, to, Reason(code));
    }
    bytes.append(buffer, static_cast<size_t>(n));
  }
  close(in);
  return WriteOutputBytes(to, bytes.data(), bytes.size(), 0, error);
}

int IsSameFile(const std::string& a, const std::string& b) {
  struct stat sa, sb;
  return stat(a.c_str(), &sa) == 0 && stat(b.c_str(), &sb) == 0 && sa.st_dev == sb.st_dev &&
         sa.st_ino == sb.st_ino;
}

}  // namespace

int IsFrameFileName(const std::string& name) {
  if (name.size() < 14 || name.compare(0, 6, "frame-") != 0 ||
      name.compare(name.size() - 4, 4, ".png") != 0)
    return 0;
  for (size_t i = 6; i < name.size() - 4; ++i)
    if (name[i] < '0' || name[i] > '9') return 0;
  return 1;
}

std::string FrameFileName(size_t index) {
  char name[40];
  snprintf(name, sizeof name, "frame-%04zu.png", index + 1);
  return name;
}

void RemovePartialOutputFromSignal() {
  if (partialSet.load()) unlink(partialPath);
}

int CheckOutputFile(const std::string& path, std::string* error) {
  if (path == "-") return 1;
  struct stat info;
  if (stat(path.c_str(), &info) == 0) {
    if (S_ISDIR(info.st_mode)) return Fail(error, path, "it is a folder");
    if (!S_ISREG(info.st_mode)) return 1;  // a device or a pipe is written in place
  }
  const std::string folder = FolderOf(path);
  if (stat(folder.c_str(), &info) != 0) return Fail(error, path, "no folder " + folder);
  if (!S_ISDIR(info.st_mode)) return Fail(error, path, folder + " is not a folder");
  if (access(folder.c_str(), W_OK | X_OK) != 0) return Fail(error, path, Reason(errno));
  return 1;
}

int CheckFrameFolder(const std::string& path, std::string* error) {
  std::string trimmed = path;
  while (trimmed.size() > 1 && trimmed.back() == '/') trimmed.pop_back();
  const size_t slash = trimmed.find_last_of('/');
  const std::string last = slash == std::string::npos ? trimmed : trimmed.substr(slash + 1);
  const char* home = getenv("HOME");
  const struct passwd* user = getpwuid(getuid());
  const char* whole[] = {"/", ".", home, user ? user->pw_dir : nullptr};
  int refused = trimmed.empty() || last == "." || last == "..";
  for (const char* place : whole)
    if (place && place[0] && IsSameFile(trimmed, place)) refused = 1;
  if (refused)
    return Fail(error, path,
                "frames are written only into a folder of their own (for example frames/)");
  struct stat info;
  if (stat(trimmed.c_str(), &info) != 0) {
    if (errno != ENOENT) return Fail(error, path, Reason(errno));
    return CheckOutputFile(trimmed, error);  // created when the frames are written
  }
  if (!S_ISDIR(info.st_mode)) return Fail(error, path, "it is not a folder");
  DIR* folder = opendir(trimmed.c_str());
  if (!folder) return Fail(error, path, Reason(errno));
  std::string foreign;
  while (const dirent* entry = readdir(folder)) {
    const std::string name = entry->d_name;
    if (name == "." || name == ".." || IsFrameFileName(name)) continue;
    if (foreign.empty() || name < foreign) foreign = name;
  }
  closedir(folder);
  if (!foreign.empty())
    return Fail(error, path,
                "the folder holds " + foreign + ", which is not a frame (use an empty folder)");
  return 1;
}

int ReserveOutputFile(const std::string& path, std::string* error) {
  ReleaseOutputFile();
  struct stat info;
  if (path == "-" || (stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode))) return 1;
  const int descriptor = OpenTemporary(PlaceOf(path), &reservedTemporary);
  if (descriptor < 0) return Fail(error, path, Reason(errno));
  reservedDescriptor = descriptor;
  reservedFor = path;
  return 1;
}

void ReleaseOutputFile() {
  if (reservedDescriptor < 0) return;
  close(reservedDescriptor);
  unlink(reservedTemporary.c_str());
  reservedDescriptor = -1;
  partialSet.store(0);
}

int WriteOutputBytes(const std::string& path, const void* bytes, size_t size, int keepBackup,
                     std::string* error) {
  const uint8_t* data = static_cast<const uint8_t*>(bytes);
  if (path == "-") {
    fflush(stdout);
    if (!WriteAll(STDOUT_FILENO, data, size))
      return Fail(error, "the standard output", Reason(errno));
    return 1;
  }
  if (!CheckOutputFile(path, error)) return 0;
  struct stat info;
  const int exists = stat(path.c_str(), &info) == 0;
  if (exists && !S_ISREG(info.st_mode)) {
    // A device or a pipe: written in place, there is nothing to replace.
    const int descriptor = open(path.c_str(), O_WRONLY | O_TRUNC);
    if (descriptor < 0) return Fail(error, path, Reason(errno));
    int ok = WriteAll(descriptor, data, size);
    int code = errno;
    if (close(descriptor) != 0 && ok) ok = 0, code = errno;
    return ok ? 1 : Fail(error, path, Reason(code));
  }
  const std::string place = PlaceOf(path);
  // A rewritten document keeps what it replaces; the copy is complete before anything changes.
  // A name too long to take ".bak" goes without.
  if (exists && keepBackup && !CopyToBackup(place, place + ".bak", error) &&
      error->find(strerror(ENAMETOOLONG)) == std::string::npos)
    return 0;
  std::string temporary;
  int descriptor;
  if (reservedDescriptor >= 0 && reservedFor == path) {
    descriptor = reservedDescriptor, temporary = reservedTemporary;
    reservedDescriptor = -1;
  } else {
    descriptor = OpenTemporary(place, &temporary);
    if (descriptor < 0) return Fail(error, path, Reason(errno));
  }
  int ok = WriteAll(descriptor, data, size);
  int code = errno;
  if (ok && fsync(descriptor) != 0 && errno != EINVAL && errno != EROFS) ok = 0, code = errno;
  if (close(descriptor) != 0 && ok) ok = 0, code = errno;
  if (ok && exists) fchmodat(AT_FDCWD, temporary.c_str(), info.st_mode & 07777, 0);
  if (ok && rename(temporary.c_str(), place.c_str()) != 0) ok = 0, code = errno;
  if (!ok) unlink(temporary.c_str());
  partialSet.store(0);
  return ok ? 1 : Fail(error, path, Reason(code));
}

int WriteFrameFolder(const std::string& path, const std::vector<std::vector<uint8_t>>& frames,
                     std::string* error) {
  if (!CheckFrameFolder(path, error)) return 0;
  std::string folder = path;
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  if (mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) return Fail(error, path, Reason(errno));
  for (size_t i = 0; i < frames.size(); ++i)
    if (!WriteOutputBytes(folder + "/" + FrameFileName(i), frames[i].data(), frames[i].size(), 0,
                          error))
      return 0;
  // Frames past the new last one belong to an earlier render; other files were refused above.
  DIR* listing = opendir(folder.c_str());
  if (!listing) return 1;
  std::vector<std::string> stale;
  while (const dirent* entry = readdir(listing)) {
    const std::string name = entry->d_name;
    if (!IsFrameFileName(name)) continue;
    const unsigned long number = strtoul(name.c_str() + 6, nullptr, 10);
    if (number == 0 || number > frames.size() || name != FrameFileName(number - 1))
      stale.push_back(name);
  }
  closedir(listing);
  for (const std::string& name : stale) unlink((folder + "/" + name).c_str());
  return 1;
}
