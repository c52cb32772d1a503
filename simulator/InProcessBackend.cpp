#include "simulator/InProcessBackend.h"

#include "simulator/MessageExchange.h"
#include "visa/DeviceConnection.h"
#include "visa/ResourceName.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace {

using simulator::Clock;
using simulator::MessageExchange;

/// The bench of the process, on which nothing takes time. VISA calls to its instruments hold the
/// mutex.
struct ProcessBench
{
    simulator::Bench bench;
    std::mutex mutex;
    std::condition_variable unlocked;
};

ProcessBench &shared()
{
    // Never destroyed: other threads may use it until the process has ended.
    static ProcessBench &shared = *new ProcessBench;
    return shared;
}

class InProcessConnection : public visa::DeviceConnection
{
public:
    explicit InProcessConnection(simulator::Device &device) : device(device)
    {
        const std::lock_guard guard(shared().mutex);
        exchange.emplace(device);
    }
    ~InProcessConnection() override
    {
        const std::lock_guard guard(shared().mutex);
        leave();
    }

    ViStatus write(const ViByte *bytes, std::size_t count, bool end, visa::Deadline /*deadline*/,
                   std::size_t *written) override
    {
        *written = 0;
        return use([&] {
            exchange->write({reinterpret_cast<const char *>(bytes), count}, end);
            *written = count;
        });
    }

    visa::ReadOutcome read(ViByte *buffer, std::size_t count, std::optional<ViByte> termination,
                           visa::Deadline /*deadline*/) override
    {
        visa::ReadOutcome outcome;
        std::optional<MessageExchange::Part> part;
        outcome.status = use([&] {
            part = exchange->read(count, termination);
            if (part) {
                std::copy(part->bytes.begin(), part->bytes.end(), buffer);
            }
        });
        if (!part) {
            outcome.status = outcome.status != VI_SUCCESS ? outcome.status : VI_ERROR_TMO;
            return outcome;
        }
        outcome.count = part->bytes.size();
        if (part->isLast) {
            outcome.end = visa::ReadEnd::End;
        } else if (part->isTerminated) {
            outcome.end = visa::ReadEnd::TerminationCharacter;
        }
        return outcome;
    }

    ViStatus clear(visa::Deadline /*deadline*/) override
    {
        return use([&] { exchange->clear(); });
    }

    ViStatus trigger(visa::Deadline /*deadline*/) override
    {
        return use([&] { exchange->trigger(); });
    }

    ViStatus readStatusByte(visa::Deadline /*deadline*/, ViUInt8 *statusByte) override
    {
        return use([&] { *statusByte = exchange->statusByte(); });
    }

    /// Does nothing: the instruments have no front panel that remote control would lock.
    ViStatus goToLocal(visa::Deadline /*deadline*/) override
    {
        return use([] {});
    }

    ViStatus lock(visa::Deadline deadline) override
    {
        std::unique_lock guard(shared().mutex);
        while (exchange && Clock::now() < exchange->freeAt()) {
            if (Clock::now() >= deadline) {
                return VI_ERROR_TMO;
            }
            shared().unlocked.wait_until(guard, std::min(deadline, exchange->freeAt()));
        }
        if (!exchange) {
            return VI_ERROR_CONN_LOST;
        }
        exchange->lock();
        return VI_SUCCESS;
    }

    ViStatus unlock(visa::Deadline /*deadline*/) override
    {
        const std::lock_guard guard(shared().mutex);
        if (exchange && exchange->unlock()) {
            shared().unlocked.notify_all();
        }
        return VI_SUCCESS;
    }

    [[nodiscard]] std::string address() const override { return "127.0.0.1"; }

private:
    /// Carry out a call, unless the connection is lost or another client has locked the device.
    template <typename Body>
    ViStatus use(Body body)
    {
        const std::lock_guard guard(shared().mutex);
        if (std::exchange(device.faults.connectionLost, false)) {
            leave();
        }
        if (!exchange) {
            return VI_ERROR_CONN_LOST;
        }
        if (Clock::now() < exchange->freeAt()) {
            return VI_ERROR_RSRC_LOCKED;
        }
        body();
        return VI_SUCCESS;
    }

    void leave()
    {
        exchange.reset();
        shared().unlocked.notify_all();
    }

    simulator::Device &device;
    std::optional<MessageExchange> exchange; // nothing once the connection is lost
};

class InProcessBackend : public visa::Backend
{
public:
    ViStatus open(const visa::ResourceName &name, visa::Deadline /*deadline*/,
                  std::unique_ptr<visa::DeviceConnection> *connection) override
    {
        simulator::Device *device =
            simulator::upperCase(name.device) == "INST0" ? shared().bench.find(name.host) : nullptr;
        if (device == nullptr) {
            return VI_ERROR_RSRC_NFOUND;
        }
        *connection = std::make_unique<InProcessConnection>(*device);
        return VI_SUCCESS;
    }

    std::vector<std::string> list() override
    {
        std::vector<std::string> names;
        for (const auto &device : shared().bench.devices()) {
            names.push_back("TCPIP0::" + device->name + "::inst0::INSTR");
        }
        return names;
    }
};

} // namespace

simulator::Bench &bench()
{
    return shared().bench;
}

visa::Backend &visa::backend()
{
    static InProcessBackend &backend = *new InProcessBackend;
    return backend;
}
