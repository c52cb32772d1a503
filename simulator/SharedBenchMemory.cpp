#include "simulator/BenchMemory.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace simulator {

namespace {

/// What the bytes of the file stand for when they are locked.
enum LockedByte : off_t
{
    Operation, ///< one process at a time works on the bench
    Presence   ///< every process that uses the bench has a read lock
};

/// Takes or gives back (F_RDLCK, F_WRLCK, F_UNLCK) a lock, which ends with the process at the
/// latest. `command` is F_SETLK or F_SETLKW. False with errno when that fails.
bool setLock(int file, int command, short type, LockedByte byte)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    int result = 0;
    do {
        result = fcntl(file, command, &lock);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

/// Libraries whose states have different layouts have different files.
std::string fileName()
{
    const char *runtime = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe)
    const bool usable = runtime != nullptr && runtime[0] == '/';
    return std::string(usable ? runtime : "/tmp") + "/orvanta-bench-" + std::to_string(geteuid()) +
           '-' + std::to_string(ORVANTA_VERSION_NUMBER) + '-' + std::to_string(sizeof(BenchState));
}

/// Opens the user's own file and locks it for an operation; -1 when that fails.
int openLocked(const std::string &name)
{
    for (;;) {
        const int file = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        struct stat status = {};
        if (file >= 0 && setLock(file, F_SETLKW, F_WRLCK, Operation) && fstat(file, &status) == 0 &&
            S_ISREG(status.st_mode) && status.st_uid == geteuid()) {
            if (status.st_nlink > 0) {
                return file;
            }
            close(file); // its last user removed it meanwhile: the next round makes a new one
            continue;
        }
        if (file >= 0) {
            close(file);
        }
        return -1;
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
    ~SharedBenchMemory() override
    {
        const bool isLast = setLock(file_, F_SETLKW, F_WRLCK, Operation) &&
                            setLock(file_, F_SETLK, F_WRLCK, Presence);
        if (isLast) {
            unlink(name_.c_str());
        }
        munmap(state_, sizeof(BenchState));
        close(file_);
    }
    SharedBenchMemory(const SharedBenchMemory &) = delete;
    SharedBenchMemory &operator=(const SharedBenchMemory &) = delete;

    BenchState &state() override { return *state_; }

    void lock() override
    {
        if (!setLock(file_, F_SETLKW, F_WRLCK, Operation)) {
            throw std::system_error(errno, std::generic_category(), name_);
        }
    }

    void unlock() override { setLock(file_, F_SETLK, F_UNLCK, Operation); }

private:
    std::string name_;
    int file_;
    BenchState *state_;
};

std::unique_ptr<BenchMemory> openShared()
{
    std::string name = fileName();
    const int file = openLocked(name);
    if (file < 0) {
        return nullptr;
    }
    const bool isFirst = setLock(file, F_SETLK, F_WRLCK, Presence);
    const BenchState switchedOff;
    // Written, not only mapped: a full disk shows here.
    const bool isThere =
        !isFirst || pwrite(file, &switchedOff, sizeof switchedOff, 0) == sizeof switchedOff;
    void *mapping =
        isThere && setLock(file, F_SETLK, F_RDLCK, Presence)
            ? mmap(nullptr, sizeof(BenchState), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
            : MAP_FAILED;
    if (mapping == MAP_FAILED) {
        close(file);
        return nullptr;
    }
    setLock(file, F_SETLK, F_UNLCK, Operation);
    return std::make_unique<SharedBenchMemory>(std::move(name), file, mapping);
}

} // namespace

std::unique_ptr<BenchMemory> openBenchMemory()
{
    std::unique_ptr<BenchMemory> memory = openShared();
    return memory ? std::move(memory) : std::make_unique<OwnBenchMemory>();
}

} // namespace simulator
