#include "Session.h"

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
    variable.count = hostCount(range.code, range.bytes);
    return variable;
}

}  // namespace

Session::Session(Tool& userTool) : tool(userTool), library(userTool.driver()) {
    const Label_File& file = tool.labelsIfAny();
    setUpComInfo(comInfo, tool.options.maxBytes, tool.options.retries);
    library.SetComInfo(&comInfo);
    library.RegistCallBackFuncIntf(&Session::notify, nullptr);
    QList<Label_Type_Info> labels = driverLabels(file);
    library.PassVarName_2(&labels);
    findTarget();
    exchange = std::make_unique<Exchange_Thread>(library, settings, completions, known);
    runningSession = this;
}

Session::~Session() {
    exchange->stop();
    runningSession = nullptr;
}

void Session::findTarget() {
    targetText = tool.options.target.empty() ? tool.labelsIfAny().target : tool.options.target;
    const std::size_t colon = targetText.rfind(':');
    if (colon == std::string::npos) return;
    settings.host = targetText.substr(0, colon);
    settings.port = targetText.substr(colon + 1);
    if (settings.host.size() > 2 && settings.host.front() == '[' && settings.host.back() == ']') {
        settings.host = settings.host.substr(1, settings.host.size() - 2);  // [::1]:2000
    }
    settings.timeout = Milliseconds(tool.options.timeoutMs);
}

void Session::addObserver(Exchange_Observer& observer) { exchange->addObserver(observer); }

void Session::connect() {
    if (targetText.empty()) {
        throw Tool_Error(Exit_Code::Usage, "no target: give -t HOST:PORT or put \"target\" into the label file");
    }
    if (settings.host.empty() || settings.port.empty()) {
        throw Tool_Error(Exit_Code::Usage, "target '" + targetText + "' is not HOST:PORT");
    }
    const std::string reason = exchange->connect();
    if (exchange->interrupted()) throw Tool_Error(Exit_Code::Interrupted, "interrupted");
    if (!reason.empty()) throw Tool_Error(Exit_Code::NoConnection, "no connection to " + targetText + ": " + reason);
    tool.out.detail("connected to " + targetText);
    exchange->start();
}

// A read of no bytes resolves the label into the record and queues nothing.
std::optional<std::uint32_t> Session::resolve(const std::string& label, int index) {
    RW_VAR request;
    request.label = driverText(label);
    request.labelIndex = QString::number(index);
    request.remoteStore = NotResolvedMark;
    library.AddListOnceReadVar(&request);
    if (request.remoteStore == NotResolvedMark) return std::nullopt;
    return request.address;
}

void Session::setMemoryLabel(std::uint32_t address, int code) {
    Label_Type_Info info;
    info.name = MemoryLabel;
    info.typeFlags = static_cast<quint16>(code);
    info.address = address;
    QList<Label_Type_Info> labels;
    labels.append(info);
    const std::lock_guard<std::mutex> lock(exchange->sequence());
    library.PassVarName_2(&labels);
    for (Call_Observer* observer : callObservers)
        observer->memoryLabelSet(info);
}

int Session::startRead(const Label_Range& range) {
    RW_VAR request;
    request.varType = range.code;
    request.varId = completions.open();
    request.label = driverText(range.label);
    request.labelIndex = QString::number(range.index);
    request.dataType = range.code;
    request.areaId = comInfo.localAreaId;
    request.length = static_cast<int>(range.bytes);
    const int ticket = request.varId;
    {
        const std::lock_guard<std::mutex> lock(exchange->sequence());
        const RW_VAR asGiven = request;
        if (library.AddListOnceReadVar(&request) == 0) {
            throw Tool_Error(Exit_Code::Label, "label '" + range.label + "' does not resolve");
        }
        for (Call_Observer* observer : callObservers)
            observer->readQueued(asGiven);
        completions.queued(ticket);
    }
    exchange->wake();
    return ticket;
}

int Session::startWrite(const Label_Range& range, const std::string& data) {
    const int ticket = completions.open();
    const int count = hostCount(range.code, range.bytes);
    QByteArray value(data.data(), static_cast<int>(data.size()));
    {
        const std::lock_guard<std::mutex> lock(exchange->sequence());
        library.SetRegisterData(driverText(range.label), range.code, QString::number(range.index), 0, &value, count,
                                range.code, ticket);
        for (Call_Observer* observer : callObservers) {
            observer->writeQueued(range.label, range.index, data, count, range.code, ticket);
        }
        completions.queued(ticket);
    }
    exchange->wake();
    return ticket;
}

int Session::poll(const std::vector<Label_Range>& ranges, Milliseconds interval) {
    QList<HOST_VAR> definitions;
    for (const Label_Range& range : ranges)
        definitions.append(hostVariable(range));
    int requests = 0;
    {
        const std::lock_guard<std::mutex> lock(exchange->sequence());
        requests = library.ReCreatReadVarList(&definitions);
        for (Call_Observer* observer : callObservers)
            observer->pollSet(definitions);
    }
    exchange->pace(requests, interval);
    return requests;
}

std::string Session::bytes(const Label_Range& range) const {
    QByteArray bytes;
    library.GetRegisterData(driverText(range.label), range.code, QString::number(range.index), 0, &bytes,
                            hostCount(range.code, range.bytes));
    return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

// Runs inside DataCom on the exchange thread, under the driver's lock: it only records.
void Session::notify(int, int varType, int varId, int state) {
    if (runningSession) runningSession->exchange->notified(varType, varId, state);
}

}  // namespace vornex
