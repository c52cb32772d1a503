#include "simulator/server/InProcessBackend.h"

#include "simulator/Client.h"
#include "visa/Link.h"
#include "visa/ResourceName.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace {

/// The bench, which takes one call at a time, and who has locked which instrument.
struct Laboratory
{
    simulator::Bench bench;
    std::mutex mutex;
    std::condition_variable unlocked;
    std::map<const simulator::Instrument *, const visa::Link *> holders;
};

Laboratory &laboratory()
{
    // Never destroyed: other threads may use it until the process has ended.
    static Laboratory &laboratory = *new Laboratory;
    return laboratory;
}

/// Nothing takes any time here: a read without an answer fails at once.
class InProcessLink : public visa::Link
{
public:
    explicit InProcessLink(simulator::Instrument &instrument)
        : instrument(instrument), client(instrument)
    {
    }
    ~InProcessLink() override { release(); }

    ViStatus write(const ViByte *bytes, std::size_t count, bool end, visa::Deadline /*deadline*/,
                   std::size_t *written) override
    {
        *written = 0;
        return use([&] {
            client.write({reinterpret_cast<const char *>(bytes), count}, end);
            *written = count;
        });
    }

    visa::ReadOutcome read(ViByte *buffer, std::size_t count, std::optional<ViByte> termination,
                           visa::Deadline /*deadline*/) override
    {
        visa::ReadOutcome outcome;
        std::optional<simulator::Client::Part> part;
        outcome.status = use([&] {
            part = client.read(count, termination);
            if (part) {
                outcome.count =
                    std::size_t(std::copy(part->bytes.begin(), part->bytes.end(), buffer) - buffer);
            }
        });
        if (outcome.status != VI_SUCCESS || !part) {
            outcome.status = outcome.status != VI_SUCCESS ? outcome.status : VI_ERROR_TMO;
        } else if (part->isLast) {
            outcome.end = visa::ReadEnd::End;
        } else if (termination && buffer[outcome.count - 1] == *termination) {
            outcome.end = visa::ReadEnd::TerminationCharacter;
        }
        return outcome;
    }

    ViStatus clear(visa::Deadline /*deadline*/) override
    {
        return use([&] { client.clear(); });
    }

    ViStatus trigger(visa::Deadline /*deadline*/) override
    {
        return use([&] { client.trigger(); });
    }

    ViStatus readStatusByte(visa::Deadline /*deadline*/, ViUInt8 *statusByte) override
    {
        return use([&] { *statusByte = client.statusByte(); });
    }

    /// The modes of VPP-4.3, table 6.5.1: 0, 2 and 6 let the instrument go local. 1 and 4 only
    /// assert REN, and an instrument turns remote when it is addressed, not before.
    ViStatus controlRemote(ViUInt16 mode, visa::Deadline /*deadline*/) override
    {
        return use([&] {
            if (mode != 1 && mode != 4) {
                client.setRemote(mode == 3 || mode == 5);
            }
        });
    }

    ViStatus lock(visa::Deadline deadline) override
    {
        std::unique_lock lock(laboratory().mutex);
        const auto isFree = [this] { return laboratory().holders.count(&instrument) == 0; };
        if (!laboratory().unlocked.wait_until(lock, deadline, isFree)) {
            return VI_ERROR_TMO;
        }
        laboratory().holders[&instrument] = this;
        return VI_SUCCESS;
    }

    ViStatus unlock(visa::Deadline /*deadline*/) override
    {
        release();
        return VI_SUCCESS;
    }

    [[nodiscard]] std::string address() const override { return "127.0.0.1"; }

private:
    template <typename Body>
    ViStatus use(Body body)
    {
        const std::lock_guard lock(laboratory().mutex);
        const auto holder = laboratory().holders.find(&instrument);
        if (holder != laboratory().holders.end() && holder->second != this) {
            return VI_ERROR_RSRC_LOCKED;
        }
        body();
        return VI_SUCCESS;
    }

    void release()
    {
        const std::lock_guard lock(laboratory().mutex);
        const auto holder = laboratory().holders.find(&instrument);
        if (holder != laboratory().holders.end() && holder->second == this) {
            laboratory().holders.erase(holder);
            laboratory().unlocked.notify_all();
        }
    }

    simulator::Instrument &instrument;
    simulator::Client client;
};

class InProcessBackend : public visa::Backend
{
public:
    ViStatus open(const visa::ResourceName &name, visa::Deadline /*deadline*/,
                  std::unique_ptr<visa::Link> *link) override
    {
        simulator::Instrument *instrument = simulator::upperCase(name.device) == "INST0"
                                                ? laboratory().bench.find(name.host)
                                                : nullptr;
        if (instrument == nullptr) {
            return VI_ERROR_RSRC_NFOUND;
        }
        *link = std::make_unique<InProcessLink>(*instrument);
        return VI_SUCCESS;
    }

    std::vector<std::string> list() override
    {
        std::vector<std::string> names;
        for (const std::string &host : laboratory().bench.hosts()) {
            names.push_back("TCPIP0::" + host + "::inst0::INSTR");
        }
        return names;
    }
};

} // namespace

simulator::Bench &bench()
{
    return laboratory().bench;
}

visa::Backend &visa::backend()
{
    static InProcessBackend &backend = *new InProcessBackend;
    return backend;
}
