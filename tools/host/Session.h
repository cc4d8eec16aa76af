// One run of the driver: loaded, set up as a panel does it, and its exchange running. The verbs' way to the controller.
#ifndef VORNEX_HOST_SESSION_H
#define VORNEX_HOST_SESSION_H

#include <optional>
#include <string>
#include <vector>

#include "host/Driver_Labels.h"
#include "host/Host_Error.h"
#include "host/link/Exchange_Thread.h"

namespace vornex {

// What a host does that finds no controller at its start.
enum class First_Connection {
    Needed,     // ends with an error
    MayFollow,  // goes on trying; observers hear of it
};

// Only one at a time: the driver is one object and has one pair of callbacks.
class Session {
public:
    // Hands settings and labels to the driver. All three must outlive the session. Throws Host_Error Settings when the
    // target is not HOST:PORT.
    Session(const Driver_Library& driverLibrary, const Host_Settings& hostSettings, const Label_File& labelFile);
    ~Session();

    // Before connect().
    void addObserver(Exchange_Observer& observer) { exchange.addObserver(observer); }
    // Connects and starts the exchange. Throws Host_Error Settings (no target), NoConnection or Interrupted.
    void connect(First_Connection first = First_Connection::Needed);

    // Of the label file, made when it is first asked for. By one thread alone.
    const Label_Index& labelIndex();
    // The controller address of a label, by the driver itself; nothing when it does not resolve.
    std::optional<std::uint32_t> resolve(const std::string& label, int number);
    // Points MemoryLabel to raw memory, for what no label text leads to. Requests queued earlier keep their address.
    void setMemoryLabel(std::uint32_t address, int code);

    // Queue a request; the result is what wait() takes. Throw Host_Error Label when the label does not resolve.
    int startRead(const Label_Range& range);
    // `data` in the host's layout, see SetRegisterData.
    int startWrite(const Label_Range& range, const std::string& data);
    Completion wait(int ticket) { return exchange.completions.wait(ticket); }

    // Polls these from now on, as planned. Returns the requests of one round after packing; 0: nothing to poll.
    int poll(const std::vector<Label_Range>& ranges, const Poll_Plan& plan);
    // After a round of a plan that takes them one by one.
    void roundTaken() { exchange.roundTaken(); }

    // The bytes in the driver's image, and what they are worth.
    std::string bytes(const Label_Range& range) const;
    Freshness freshness(std::uint32_t address, std::uint32_t length) const {
        return exchange.known.of(address, length);
    }

    // Ends the exchange; observers hear no more.
    void stop() { exchange.stop(); }
    // Any thread: ends every wait, also those in connect() and wait(), and the exchange.
    void interrupt() { exchange.interrupt(); }
    bool interrupted() const { return exchange.interrupted(); }
    int maxBytes() const { return host.maxBytes; }
    const std::string& target() const { return targetText; }
    const Driver_Library& driver() const { return library; }

private:
    static void notify(int hostHandle, int varType, int varId, int state);

    const Host_Settings& host;
    const Driver_Library& library;
    const Label_File& labels;
    std::optional<Label_Index> index;
    const std::string targetText;
    ComInfo comInfo;
    Exchange_Thread exchange;
};

}  // namespace vornex

#endif
