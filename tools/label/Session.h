// One run of the driver: loaded, set up as a panel does it, and its exchange running. The verbs' way to the controller.
#ifndef VORNEX_LABEL_SESSION_H
#define VORNEX_LABEL_SESSION_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Driver_Labels.h"
#include "Exchange_Thread.h"
#include "Tool.h"

namespace vornex {

// The host's calls into the driver, in their order; a trace writes them down so that a replay can repeat them.
class Call_Observer {
public:
    virtual ~Call_Observer() = default;
    virtual void readQueued(const RW_VAR& request) = 0;
    virtual void writeQueued(const std::string& label, int index, const std::string& data, int count, int varType,
                             int varId) = 0;
    virtual void pollSet(const QList<HOST_VAR>& definitions) = 0;
    virtual void memoryLabelSet(const Label_Type_Info& label) = 0;
};

// A run of bytes behind a label, in the terms of the driver's entry points.
struct Label_Range {
    std::string label;  // as the driver resolves it, templates included
    int index = 0;      // for a template
    int code = 0;       // type code of its element
    std::uint32_t bytes = 0;
};

// Only one at a time: the driver is one object and has one pair of callbacks.
class Session {
public:
    // Loads the driver, hands it settings and labels. Throws Tool_Error Library, Label, Usage (no target).
    explicit Session(Tool& userTool);
    ~Session();

    // Before connect().
    void addObserver(Exchange_Observer& observer);
    void addCallObserver(Call_Observer& observer) { callObservers.push_back(&observer); }
    // Connects and starts the exchange. Throws Tool_Error NoConnection or Interrupted.
    void connect();

    // The controller address of a label, by the driver itself; nothing when it does not resolve.
    std::optional<std::uint32_t> resolve(const std::string& label, int index);
    // Points MemoryLabel to raw memory, for what no label text leads to. Requests queued earlier keep their address.
    void setMemoryLabel(std::uint32_t address, int code);

    // Queue a request; the result is what wait() takes. Throw Tool_Error Label when the label does not resolve.
    int startRead(const Label_Range& range);
    // `data` in the host's layout, see SetRegisterData.
    int startWrite(const Label_Range& range, const std::string& data);
    Completion wait(int ticket) { return completions.wait(ticket); }

    // Polls these from now on, each round no sooner than `interval` after the one before. Returns the requests of one
    // round after packing; 0: nothing to poll.
    int poll(const std::vector<Label_Range>& ranges, Milliseconds interval);

    // The bytes in the driver's image, and what they are worth.
    std::string bytes(const Label_Range& range) const;
    Freshness freshness(std::uint32_t address, std::uint32_t length) const { return known.of(address, length); }

    // Ends the exchange; observers hear no more.
    void stop() { exchange->stop(); }
    bool interrupted() const { return exchange && exchange->interrupted(); }
    int maxBytes() const { return tool.options.maxBytes; }
    const std::string& target() const { return targetText; }
    const Driver_Library& driver() const { return library; }

private:
    static void notify(int hostHandle, int varType, int varId, int state);
    void findTarget();

    Tool& tool;
    const Driver_Library& library;
    std::string targetText;
    Exchange_Settings settings;
    ComInfo comInfo;
    Completions completions;
    Known_Bytes known;
    std::vector<Call_Observer*> callObservers;
    std::unique_ptr<Exchange_Thread> exchange;
};

}  // namespace vornex

#endif
