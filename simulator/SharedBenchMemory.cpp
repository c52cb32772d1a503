#include "simulator/BenchMemory.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace simulator {

namespace {

// Two locks of the file, which both end with the process at the latest. The one for an operation
// (fcntl) is the process's: it tells a child from its parent, but not two copies of the library in
// one process. The one for presence (flock) is the open file's.

/// Takes (F_WRLCK) or gives back (F_UNLCK) the lock for an operation. False with errno when that
/// fails.
bool lockOperation(int file, short type)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    int result = 0;
    do {
        result = fcntl(file, F_SETLKW, &lock);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

/// Whether nobody else uses the file; then they are kept from it.
bool takeAlone(int file)
{
    return flock(file, LOCK_EX | LOCK_NB) == 0;
}

/// Whether it is a file of this user's own.
bool isOwn(int file)
{
    struct stat status = {};
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
}

/// Whether the name is still that of this file.
bool isNamed(int file, const std::string &name)
{
    struct stat status = {};
    struct stat named = {};
    return fstat(file, &status) == 0 && lstat(name.c_str(), &named) == 0 &&
           status.st_dev == named.st_dev && status.st_ino == named.st_ino;
}

/// Opens the file and locks it for an operation; -1 when that fails.
int openLocked(const std::string &name)
{
    for (;;) {
        const int file = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (file < 0) {
            return -1;
        }
        const bool isLocked = isOwn(file) && lockOperation(file, F_WRLCK);
        if (isLocked && isNamed(file, name)) {
            return file;
        }
        close(file);
        if (!isLocked) {
            return -1;
        }
        // Its last user removed it meanwhile: the next round makes a new one.
    }
}

/// Memory that is there as long as a process uses it, and like new for the next.
class SharedBenchMemory : public BenchMemory
{
public:
    SharedBenchMemory(std::string name, int file, void *mapping)
        : name_(std::move(name)), file_(file), state_(static_cast<BenchState *>(mapping))
    {
    }

    BenchState &state() override { return *state_; }

    void lock() override
    {
        if (!lockOperation(file_, F_WRLCK)) {
            throw std::system_error(errno, std::generic_category(), name_);
        }
    }

    void unlock() override { lockOperation(file_, F_UNLCK); }

    void leave() override
    {
        const bool isChild = getpid() != owner_; // of the process that uses it
        if (isChild || !lockOperation(file_, F_WRLCK)) {
            return;
        }
        if (takeAlone(file_) && isNamed(file_, name_)) {
            unlink(name_.c_str());
        }
        flock(file_, LOCK_UN);
        unlock();
    }

private:
    std::string name_;
    int file_;
    BenchState *state_;
    pid_t owner_ = getpid();
};

std::unique_ptr<BenchMemory> openShared(const std::string &name)
{
    const int file = openLocked(name);
    if (file < 0) {
        return nullptr;
    }
    const bool isFirst = takeAlone(file);
    // All zero is switched off. Written, not only mapped: a full disk shows here.
    const std::array<char, sizeof(BenchState)> zeros{};
    void *mapping = MAP_FAILED;
    if (!isFirst || pwrite(file, zeros.data(), zeros.size(), 0) == ssize_t{zeros.size()}) {
        mapping = mmap(nullptr, zeros.size(), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    }
    if (mapping == MAP_FAILED || flock(file, LOCK_SH | LOCK_NB) != 0) {
        if (isFirst) {
            unlink(name.c_str());
        }
        close(file);
        return nullptr;
    }
    lockOperation(file, F_UNLCK);
    return std::make_unique<SharedBenchMemory>(name, file, mapping);
}

} // namespace

std::unique_ptr<BenchMemory> openBenchMemory(std::uint32_t layout)
{
    const std::string name = "/orvanta-bench-" + std::to_string(geteuid()) + '-' +
                             std::to_string(ORVANTA_VERSION_NUMBER) + '-' + std::to_string(layout);
    const char *runtime = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe)
    std::unique_ptr<BenchMemory> memory;
    if (runtime != nullptr && runtime[0] == '/') {
        memory = openShared(runtime + name);
    }
    if (!memory) {
        memory = openShared("/tmp" + name);
    }
    return memory ? std::move(memory) : std::make_unique<OwnBenchMemory>();
}

} // namespace simulator
