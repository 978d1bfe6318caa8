#include "FolderWatching/WatchTree_p.h"

#include <QThreadPool>

#include <dirent.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>

namespace vantor {

namespace {

/// Not IN_MODIFY: a file that is being written is of interest when it is closed.
constexpr std::uint32_t mask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE |
                               IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_EXCL_UNLINK;

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

/// Those whose files others change behind the kernel's back.
bool isSilent(const QByteArray &folder) {
    struct statfs status;
    if (statfs(folder.constData(), &status) != 0)
        return false;
    switch (static_cast<std::uint32_t>(status.f_type)) {
    case 0x6969:     // NFS
    case 0x517B:     // SMB
    case 0xFE534D42: // SMB 2
    case 0xFF534D42: // CIFS
    case 0x65735546: // FUSE, which may be anything
    case 0x01021997: // 9P
    case 0x00C36400: // Ceph
    case 0x5346414F: // AFS
    case 0x73757245: // Coda
    case 0x786F4256: // a virtual machine's shared folder
        return true;
    default:
        return false;
    }
}

double seconds(const timespec &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

bool isFolder(int parent, const dirent &entry) {
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    struct stat status;
    return fstatat(parent, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

QByteArray below(const QByteArray &folder, const char *name) {
    return folder.endsWith('/') ? folder + name : folder + '/' + name;
}

} // namespace

WatchTree::WatchTree(const QByteArray &root, int maxFolders, const std::atomic_bool &stop)
    : m_root(root), m_maxFolders(static_cast<std::size_t>(maxFolders)), m_stop(stop) {}

WatchTree::~WatchTree() {
    // The system takes 20 ms and more to let go of the watches, which the main thread shall not wait for.
    if (m_descriptor >= 0)
        QThreadPool::globalInstance()->start([descriptor = m_descriptor] { ::close(descriptor); });
}

void WatchTree::close() {
    if (m_descriptor >= 0)
        ::close(m_descriptor); // all its watches go with it
    m_descriptor = -1;
    m_watches.clear();
    m_paths.clear();
}

std::optional<WatchTree::Identity> WatchTree::identity() const {
    struct stat status;
    if (stat(m_root.constData(), &status) != 0)
        return std::nullopt;
    return Identity(status.st_dev, status.st_ino);
}

bool WatchTree::isRootTheSame() const {
    if (identity() != m_identity)
        return false;
    const bool isUnwatched = m_identity && m_gap == Gap::none && !m_watches.contains(m_root);
    return !isUnwatched || access(m_root.constData(), R_OK) != 0;
}

void WatchTree::restart(double since, const Report &report) {
    close();
    m_isLost = false;
    m_identity = identity();
    m_descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    m_gap = m_descriptor < 0 ? Gap::unavailable : isSilent(m_root) ? Gap::silentFileSystem : Gap::none;
    if (m_descriptor >= 0 && m_identity)
        watch(m_root, since, report);
}

void WatchTree::watch(const QByteArray &folder, double since, const Report &report) {
    std::vector<QByteArray> pending{folder};
    while (!pending.empty() && !m_stop) {
        const QByteArray next = std::move(pending.back());
        pending.pop_back();
        // Watched first and listed then, so that no subfolder is made in between.
        if (!add(next))
            continue;
        for (QByteArray &subfolder : subfolders(next, since, report))
            pending.push_back(std::move(subfolder));
    }
}

bool WatchTree::add(const QByteArray &folder) {
    if (m_watches.size() >= m_maxFolders) {
        m_gap = Gap::tooManyFolders;
        return false;
    }
    const std::uint32_t links = folder == m_root ? 0 : IN_DONT_FOLLOW;
    const int watch = inotify_add_watch(m_descriptor, folder.constData(), mask | links);
    if (watch < 0) {
        if (errno == ENOSPC || errno == ENOMEM)
            m_gap = Gap::tooManyFolders;
        return false; // gone already, or not to be read, so that nobody misses what is in it
    }
    forget(watch); // a folder that was moved here keeps its watch
    m_paths[watch] = folder;
    m_watches[folder] = watch;
    return true;
}

std::vector<QByteArray> WatchTree::subfolders(const QByteArray &folder, double since, const Report &report) {
    std::vector<QByteArray> found;
    const int links = folder == m_root ? 0 : O_NOFOLLOW;
    const int descriptor = open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | links);
    const std::unique_ptr<DIR, CloseFolder> entries(descriptor < 0 ? nullptr : fdopendir(descriptor));
    if (!entries)
        return found;
    struct stat status;
    // Not the time of modification, which stays when the folder itself is moved here.
    if (fstat(descriptor, &status) == 0 && seconds(status.st_ctim) >= since)
        report(folder);
    while (const dirent *entry = m_stop ? nullptr : readdir(entries.get())) {
        if (entry->d_name[0] != '.' && isFolder(descriptor, *entry))
            found.push_back(below(folder, entry->d_name));
    }
    return found;
}

void WatchTree::forget(int watch) {
    const auto known = m_paths.find(watch);
    if (known == m_paths.end())
        return;
    // By now another folder may have its name.
    if (const auto path = m_watches.find(known->second); path != m_watches.end() && path->second == watch)
        m_watches.erase(path);
    m_paths.erase(known);
}

void WatchTree::forget(const QByteArray &folder) {
    const auto drop = [this](auto first, auto last) {
        for (auto at = first; at != last; at = m_watches.erase(at)) {
            inotify_rm_watch(m_descriptor, at->second);
            m_paths.erase(at->second);
        }
    };
    drop(m_watches.lower_bound(folder), m_watches.upper_bound(folder));
    drop(m_watches.lower_bound(folder + '/'), m_watches.lower_bound(folder + char('/' + 1)));
}

bool WatchTree::readEvents(const Report &report) {
    alignas(inotify_event) std::array<char, 16'384> buffer;
    const ssize_t size = read(m_descriptor, buffer.data(), buffer.size());
    for (const char *at = buffer.data(); at < buffer.data() + size && !m_isLost && !m_stop;) {
        inotify_event event; // without the name, which is of any length
        std::memcpy(&event, at, sizeof event);
        const char *name = event.len > 0 ? at + sizeof event : ""; // ends with zeros
        handle(event, name, report);
        at += sizeof event + event.len;
    }
    return !m_isLost;
}

void WatchTree::handle(const inotify_event &event, const QByteArray &name, const Report &report) {
    m_isLost = m_isLost || event.mask & IN_Q_OVERFLOW;
    const auto known = m_paths.find(event.wd);
    if (known == m_paths.end())
        return;
    const QByteArray folder = known->second;
    if (event.mask & (IN_IGNORED | IN_UNMOUNT | IN_DELETE_SELF | IN_MOVE_SELF))
        m_isLost = m_isLost || folder == m_root;
    if (event.mask & IN_IGNORED)
        forget(event.wd);
    if (name.isEmpty() || name.startsWith('.'))
        return; // of the folder itself, which its parent tells, or hidden
    report(folder);
    if (!(event.mask & IN_ISDIR))
        return;
    const QByteArray subfolder = below(folder, name.constData());
    if (event.mask & (IN_MOVED_FROM | IN_DELETE))
        forget(subfolder);
    else if (!m_watches.contains(subfolder)) // new, or to be read from now on
        watch(subfolder, 0, report);
}

} // namespace vantor
