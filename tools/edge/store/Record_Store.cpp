#include "edge/store/Record_Store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "edge/store/Record_Bytes.h"
#include "text/Number.h"
#include "text/Text.h"

namespace vornex::edge {

namespace {

namespace fs = std::filesystem;

const std::uint64_t Segments = 8;             // that the room is cut into: this much at most goes at once
const std::uint64_t PieceBytes = 256 * 1024;  // that are read at once, and what the last record in them needs more
const char Ending[] = ".records";
const char PlaceName[] = "/taken";
const char LockName[] = "/lock";

std::string readFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(stream)), {});
}

std::string readPart(const std::string& path, std::uint64_t from, std::uint64_t most) {
    std::ifstream stream(path, std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(from));
    std::string text(most, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(most));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

int openFile(const std::string& path, int flags) {
    const int file = open(path.c_str(), flags | O_CLOEXEC, 0640);
    if (file < 0) throw Store_Error(path + ": " + std::strerror(errno));
    return file;
}

void closeFile(int& file) {
    if (file >= 0) close(file);
    file = -1;
}

// Nothing for other files.
std::optional<std::uint64_t> numberOfName(const std::string& name) {
    if (!endsIn(name, Ending)) return std::nullopt;
    try {
        return wholeNumber<std::uint64_t>(name.substr(0, name.size() - std::strlen(Ending)));
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    }
}

}  // namespace

Record_Store::Record_Store(std::string storeFolder, std::uint64_t mostBytes)
    : folder(std::move(storeFolder)), room(std::max(mostBytes, LeastBytes)) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) throw Store_Error(folder + ": " + error.message());
    try {
        lockFolder();
        placeFile = openFile(folder + PlaceName, O_RDWR | O_CREAT);
        readFolder();
        if (!beginSegment()) throw Store_Error(folder + ": no file can be made there: " + std::strerror(errno));
    } catch (...) {
        for (int* file : {&lock, &placeFile, &current})
            closeFile(*file);
        throw;
    }
}

Record_Store::~Record_Store() {
    sync();
    for (int* file : {&lock, &placeFile, &current})
        closeFile(*file);
}

std::string Record_Store::pathOf(std::uint64_t number) const { return folder + "/" + std::to_string(number) + Ending; }

void Record_Store::lockFolder() {
    lock = openFile(folder + LockName, O_RDWR | O_CREAT);
    if (flock(lock, LOCK_EX | LOCK_NB) != 0)
        throw Store_Error(folder + ": " + (errno == EWOULDBLOCK ? "another process uses it" : std::strerror(errno)));
}

void Record_Store::readFolder() {
    std::vector<std::uint64_t> numbers;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (const std::optional<std::uint64_t> number = numberOfName(entry.path().filename().string()))
            numbers.push_back(*number);
    }
    if (error) throw Store_Error(folder + ": " + error.message());
    std::sort(numbers.begin(), numbers.end());
    taken = readPlace();
    for (const std::uint64_t number : numbers) {
        if (number >= taken.segment) {
            readSegment(number, taken);
        } else {
            fs::remove(pathOf(number), error);  // a process ended between taking its last record and removing it
        }
    }
    dropTaken();
}

// Whole records are counted from where the last process had taken them; a torn end is left behind for good, because
// nothing is added to an old segment.
void Record_Store::readSegment(std::uint64_t number, const Place& from) {
    const std::string text = readFile(pathOf(number));
    Segment segment{number, 0, 0};
    std::size_t at = 0;
    while (const std::optional<std::string_view> record = firstRecord(std::string_view(text).substr(at))) {
        if (number != from.segment || at >= from.offset) ++segment.records;
        at += RecordHead + record->size();
    }
    segment.size = at;
    counted.tornBytes += text.size() - at;
    counted.bytes += at;
    counted.records += segment.records;
    segments.push_back(segment);
}

// The place is written over in one piece; one that is not whole means the beginning, so that records come twice rather
// than never.
Record_Store::Place Record_Store::readPlace() const {
    const std::string text = readFile(folder + PlaceName);
    const std::optional<std::string_view> record = firstRecord(text);
    if (!record) return {};
    const std::vector<std::string> numbers = split(std::string(*record), ' ');
    try {
        if (numbers.size() == 2)
            return {wholeNumber<std::uint64_t>(numbers[0]), wholeNumber<std::uint64_t>(numbers[1])};
    } catch (const std::invalid_argument&) {
    }
    return {};
}

void Record_Store::writePlace() {
    const std::string bytes = sealedRecord(std::to_string(taken.segment) + " " + std::to_string(taken.offset));
    if (pwrite(placeFile, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) ++counted.refused;
}

bool Record_Store::beginSegment() {
    const std::uint64_t number = std::max(segments.empty() ? 0 : segments.back().number, taken.segment) + 1;
    const int file = open(pathOf(number).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0640);
    if (file < 0) return false;
    if (current >= 0) fdatasync(current);
    closeFile(current);
    current = file;
    segments.push_back({number, 0, 0});
    return true;
}

void Record_Store::dropFirst() {
    const Segment first = segments.front();
    segments.pop_front();
    counted.overwritten += first.records;
    counted.records -= first.records;
    counted.bytes -= first.size;
    taken = {first.number + 1, 0};
    writePlace();
    unlink(pathOf(first.number).c_str());
}

// A record that the disk takes only in part is cut off again.
bool Record_Store::writeAll(std::string_view bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = write(current, bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        written += static_cast<std::size_t>(count);
    }
    if (written == bytes.size()) return true;
    const auto size = static_cast<off_t>(segments.back().size);
    if (ftruncate(current, size) != 0 || lseek(current, size, SEEK_SET) < 0) beginSegment();
    return false;
}

bool Record_Store::append(std::string_view record) {
    const std::string bytes = sealedRecord(record);
    if (bytes.size() > room / Segments) {
        ++counted.refused;
        return false;
    }
    while (counted.bytes + bytes.size() > room)
        dropFirst();
    const bool isFull = segments.empty() || segments.back().size + bytes.size() > room / Segments;
    if ((isFull && !beginSegment()) || !writeAll(bytes)) {
        ++counted.refused;
        return false;
    }
    segments.back().size += bytes.size();
    ++segments.back().records;
    ++counted.records;
    counted.bytes += bytes.size();
    return true;
}

void Record_Store::dropTaken() {
    while (segments.size() > 1 && segments.front().records == 0)
        dropFirst();
}

// Of one segment: it is read in pieces, not whole.
std::vector<std::string> Record_Store::oldest(std::size_t most) {
    std::vector<std::string> found;
    while (found.empty() && most > 0 && counted.records > 0) {
        dropTaken();
        const Segment& first = segments.front();
        const std::uint64_t from = taken.segment == first.number ? taken.offset : 0;
        const std::string text = readPart(pathOf(first.number), from, PieceBytes + room / Segments);
        std::size_t at = 0;
        while (found.size() < std::min<std::uint64_t>(most, first.records) && at < PieceBytes) {
            const std::optional<std::string_view> record = firstRecord(std::string_view(text).substr(at));
            if (!record) break;
            found.emplace_back(*record);
            at += RecordHead + record->size();
        }
        if (!found.empty()) break;
        counted.spoiled += first.records;
        counted.overwritten -= first.records;  // dropFirst() counts them there
        dropFirst();
    }
    return found;
}

void Record_Store::take(std::size_t records) {
    for (const std::string& record : oldest(records)) {
        Segment& first = segments.front();
        if (taken.segment != first.number) taken = {first.number, 0};
        taken.offset += RecordHead + record.size();
        --first.records;
        --counted.records;
    }
    dropTaken();
    writePlace();
}

bool Record_Store::sync() { return fdatasync(current) == 0 && fdatasync(placeFile) == 0; }

}  // namespace vornex::edge
