#include "sim/plant/Played_Record.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

#include "text/Hex.h"
#include "text/Text.h"
#include "text/Text_Input.h"
#include "values/Keys.h"
#include "values/Record_Line.h"
#include "wire/Check_Value.h"
#include "wire/Frame_Reader.h"

namespace vornex::sim {

namespace {

using Json = nlohmann::json;

constexpr double LeastPass = 1000;               // ms: a record of one moment is not played all the time
constexpr std::size_t MostLinkChanges = 100000;  // between a frame and its reply

std::string textOf(const Json& event, const Key& key) {
    const auto found = event.find(key.name);
    if (found == event.end() || !found->is_string())
        throw std::invalid_argument(std::string("\"") + key.name + "\" is missing or no text");
    return found->get<std::string>();
}

}  // namespace

Played_Record::Played_Record(const Play& what, std::function<void(const std::string&)> teller)
    : play(what), tell(std::move(teller)), known(what.memoryBytes) {
    open();
    try {
        while (dataSeen == 0 && readLine()) {
        }
    } catch (const std::invalid_argument& mistake) {
        refuse(mistake.what());
    }
    if (lineNumber == 0) throw File_Error(play.path + ": the record is empty");
    if (dataSeen == 0) throw File_Error(play.path + ": the record holds no good reply");
}

void Played_Record::refuse(const std::string& reason) const {
    throw File_Error(play.path + ":" + std::to_string(lineNumber) + ": " + reason);
}

void Played_Record::open() {
    file.close();
    file.clear();
    file.open(play.path, std::ios::binary);
    if (!file) throw File_Error(play.path + ": cannot be read: " + std::strerror(errno));
    lineNumber = 0;
    dataSeen = 0;
    frame.reset();
    behindFrame.clear();
}

Label_File Played_Record::labels() const {
    Label_File none;
    return labelText.empty() ? none : parseLabels(labelText, labelPath);
}

bool Played_Record::readLine() {
    std::string line;
    if (!nextLine(file, line)) {
        events.insert(events.end(), behindFrame.begin(), behindFrame.end());
        behindFrame.clear();
        return false;
    }
    ++lineNumber;
    if (!trimmed(line).empty()) take(parseRecordLine(line));
    return true;
}

double Played_Record::timeOf(const Json& event) {
    const Wall_Time time = timeOfText(textOf(event, key::time));
    if (!origin) origin = time;
    lastTime = std::max(lastTime, std::chrono::duration<double, std::milli>(time - *origin).count());
    return lastTime;
}

void Played_Record::take(const Json& event) {
    const std::string kind = textOf(event, key::event);
    if ((lineNumber == 1) != (kind == "start")) throw std::invalid_argument("a record begins with its start, once");
    if (kind == "start") {
        labelPath = textOf(event, key::labelFile);
        labelText = textOf(event, key::labelText);
    } else if (kind == "frame") {
        events.insert(events.end(), behindFrame.begin(), behindFrame.end());  // of a frame that has no reply
        behindFrame.clear();
        frame = readRequest(bytesOfHex(textOf(event, key::frame)));
        if (!frame) throw std::invalid_argument("\"frame\" is no request");
        frameAt = timeOf(event);
    } else if (kind == "reply") {
        takeReply(event);
    } else if (kind == "link") {
        const bool isUp = textOf(event, key::link) == "up";
        std::deque<Event>& queue = frame ? behindFrame : events;
        if (queue.size() == MostLinkChanges) throw std::invalid_argument("too many changes of the link");
        queue.push_back({isUp ? Event::Kind::Up : Event::Kind::Down, timeOf(event)});
    }
}

// A request without a reply was left alone from its beginning on, before the link changed for it. Replies with a wrong
// content say nothing.
void Played_Record::takeReply(const Json& event) {
    if (!frame) throw std::invalid_argument("a reply without a frame");
    const std::string bytes = bytesOfHex(textOf(event, key::reply));
    const double at = timeOf(event);
    const std::optional<Reply> reply = checkIsRight(bytes) ? readReply(bytes, frame->items.size()) : std::nullopt;
    if (bytes.empty()) events.push_back({Event::Kind::Silence, frameAt});
    events.insert(events.end(), behindFrame.begin(), behindFrame.end());
    behindFrame.clear();
    if (reply && answers(*reply, *frame)) {
        events.push_back({Event::Kind::Data, at, *frame, *reply});
        ++dataSeen;
    }
    frame.reset();
}

// The next event is there, or the record is at its end.
bool Played_Record::fill() {
    while (events.empty()) {
        if (!readLine() && events.empty()) return false;
    }
    return true;
}

double Played_Record::dueAt(const Event& event) const {
    const bool isInGap = play.skipsGaps && (isDown || isSilent);
    return (isInGap ? gapBegan : event.at) / play.speed + shift;
}

void Played_Record::advance(double now, Memory& memory) {
    try {
        while (!isOver) {
            if (!fill()) {
                if (!play.loops) return end(play.path + ": the end of the record; the last values stand");
                if (passEnd() > now) return;
                startAgain();
                continue;
            }
            if (dueAt(events.front()) > now) return;
            const Event event = std::move(events.front());
            events.pop_front();
            apply(event, memory);
        }
    } catch (const File_Error& mistake) {
        hasFailed = true;
        end(mistake.what());
    } catch (const std::invalid_argument& mistake) {
        hasFailed = true;
        end(play.path + ":" + std::to_string(lineNumber) + ": " + mistake.what() + "; the last values stand");
    }
}

void Played_Record::apply(const Event& event, Memory& memory) {
    const bool wasGap = isDown || isSilent;
    if (event.kind == Event::Kind::Up || event.kind == Event::Kind::Data) isDown = false;
    if (event.kind == Event::Kind::Down) isDown = true;
    if (event.kind == Event::Kind::Silence) isSilent = true;
    if (event.kind == Event::Kind::Data) isSilent = false;
    const bool isGap = isDown || isSilent;
    if (isGap && !wasGap) gapBegan = event.at;
    if (wasGap && !isGap && play.skipsGaps) shift -= (event.at - gapBegan) / play.speed;
    if (event.kind != Event::Kind::Data) return;
    if (event.request.isWrite) return store(event.request.items[0].address, event.request.data, memory);
    for (std::size_t i = 0; i < event.request.items.size(); ++i)
        store(event.request.items[i].address, event.reply.items[i].data, memory);
}

void Played_Record::store(std::uint32_t address, const std::string& bytes, Memory& memory) {
    if (!memory.write(address, bytes)) throw std::invalid_argument("the memory is full; see --memory");
    written(address, bytes.size());
}

double Played_Record::passEnd() const {
    const bool isInGap = play.skipsGaps && (isDown || isSilent);
    return std::max((isInGap ? gapBegan : lastTime) / play.speed + shift, passBegan + LeastPass);
}

void Played_Record::startAgain() {
    shift = passBegan = passEnd();
    origin.reset();
    lastTime = 0;
    isDown = isSilent = false;
    open();
    tell(play.path + ": the record begins again");
}

void Played_Record::end(const std::string& words) {
    isOver = true;
    isDown = isSilent = false;
    events.clear();
    file.close();
    tell(words);
}

// A gap that is left out takes no time, but for one at the record's end, which lasts until the record begins again.
Played_Record::Line Played_Record::line() const {
    if (play.skipsGaps) return Line::Up;
    if (isDown) return Line::Down;
    return isSilent ? Line::Silent : Line::Up;
}

std::size_t Played_Record::unknown(std::uint32_t address, std::size_t bytes) const {
    const std::string marks = known.read(address, bytes);
    return static_cast<std::size_t>(std::count(marks.begin(), marks.end(), '\0'));
}

void Played_Record::written(std::uint32_t address, std::size_t bytes) {
    known.write(address, std::string(bytes, '\1'));  // as much room as the memory that has taken the bytes
}

}  // namespace vornex::sim
