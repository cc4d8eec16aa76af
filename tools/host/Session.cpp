#include "host/Session.h"

#include <stdexcept>

namespace vornex {

namespace {

// The notify callback carries no context; the driver is one object, and so is its session.
Session* runningSession = nullptr;

const int NotResolvedMark = 77;  // any value that AddListOnceReadVar does not leave in remoteStore

HOST_VAR hostVariable(const Label_Range& range) {
    HOST_VAR variable;
    variable.dataType = static_cast<quint8>(range.code);
    variable.labelIndex = QString::number(range.index);
    variable.label = driverText(range.label);
    variable.count = hostCount(range);
    return variable;
}

// Of no target nothing: connect() says so.
Host_Port addressOf(const std::string& target) {
    try {
        return target.empty() ? Host_Port() : parseHostPort(target);
    } catch (const std::invalid_argument& refusal) {
        throw Host_Error(Host_Error::Kind::Settings, std::string("target ") + refusal.what());
    }
}

}  // namespace

Session::Session(const Driver_Library& driverLibrary, const Host_Settings& hostSettings, const Label_File& labelFile)
    : host(hostSettings),
      library(driverLibrary),
      labels(labelFile),
      targetText(targetOf(hostSettings, labelFile)),
      exchange(library, host, addressOf(targetText)) {
    setUpComInfo(comInfo, host.maxBytes, host.retries);
    library.SetComInfo(&comInfo);
    library.RegistCallBackFuncIntf(&Session::notify, nullptr);
    QList<Label_Type_Info> records = driverLabels(labelFile);
    library.PassVarName_2(&records);
    runningSession = this;
}

Session::~Session() {
    exchange.stop();
    runningSession = nullptr;
}

void Session::connect(First_Connection first) {
    if (targetText.empty()) {
        throw Host_Error(Host_Error::Kind::Settings,
                         "no target: neither the settings nor the label file name one as HOST:PORT");
    }
    const std::string reason = exchange.connect();
    if (exchange.interrupted()) throw Host_Error(Host_Error::Kind::Interrupted, "interrupted");
    if (!reason.empty() && first == First_Connection::Needed)
        throw Host_Error(Host_Error::Kind::NoConnection, "no connection to " + targetText + ": " + reason);
    exchange.start();
}

const Label_Index& Session::labelIndex() {
    if (!index) index.emplace(labels);
    return *index;
}

// A read of no bytes resolves the label into the record and queues nothing.
std::optional<std::uint32_t> Session::resolve(const std::string& label, int number) {
    RW_VAR request;
    request.label = driverText(label);
    request.labelIndex = QString::number(number);
    request.remoteStore = NotResolvedMark;
    library.AddListOnceReadVar(&request);
    if (request.remoteStore == NotResolvedMark) return std::nullopt;
    return request.address;
}

void Session::setMemoryLabel(std::uint32_t address, int code) {
    QList<Label_Type_Info> records = memoryLabel(address, code);
    const std::lock_guard<std::mutex> lock(exchange.sequence());
    library.PassVarName_2(&records);
    exchange.tell([&](Exchange_Observer& observer) { observer.memoryLabelSet(address, code); });
}

int Session::startRead(const Label_Range& range) {
    const int ticket = exchange.completions.open();
    RW_VAR request;
    request.varType = range.code;
    request.varId = ticket;
    request.label = driverText(range.label);
    request.labelIndex = QString::number(range.index);
    request.dataType = range.code;
    request.areaId = comInfo.localAreaId;
    request.length = static_cast<int>(range.bytes);
    {
        const std::lock_guard<std::mutex> lock(exchange.sequence());
        if (library.AddListOnceReadVar(&request) == 0) {
            exchange.completions.forget(ticket);
            throw Host_Error(Host_Error::Kind::Label, "label '" + range.label + "' does not resolve");
        }
        exchange.tell([&](Exchange_Observer& observer) { observer.readQueued(range, ticket); });
        exchange.completions.queued(ticket);
    }
    exchange.wake();
    return ticket;
}

int Session::startWrite(const Label_Range& range, const std::string& data) {
    const int ticket = exchange.completions.open();
    QByteArray value(data.data(), static_cast<int>(data.size()));
    {
        const std::lock_guard<std::mutex> lock(exchange.sequence());
        library.SetRegisterData(driverText(range.label), range.code, QString::number(range.index), 0, &value,
                                hostCount(range), range.code, ticket);
        exchange.tell([&](Exchange_Observer& observer) { observer.writeQueued(range, data, ticket); });
        exchange.completions.queued(ticket);
    }
    exchange.wake();
    return ticket;
}

int Session::poll(const std::vector<Label_Range>& ranges, const Poll_Plan& plan) {
    QList<HOST_VAR> definitions;
    for (const Label_Range& range : ranges)
        definitions.append(hostVariable(range));
    int requests = 0;
    {
        const std::lock_guard<std::mutex> lock(exchange.sequence());
        requests = library.ReCreatReadVarList(&definitions);
        exchange.tell([&](Exchange_Observer& observer) { observer.pollSet(ranges); });
        exchange.pace(requests, plan);
    }
    exchange.wake();
    return requests;
}

std::string Session::bytes(const Label_Range& range) const {
    QByteArray bytes;
    library.GetRegisterData(driverText(range.label), range.code, QString::number(range.index), 0, &bytes,
                            hostCount(range));
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

// Runs inside DataCom on the exchange thread, under the driver's lock: it only records.
void Session::notify(int, int, int varId, int state) {
    if (runningSession) runningSession->exchange.notified(varId, state);
}

}  // namespace vornex
