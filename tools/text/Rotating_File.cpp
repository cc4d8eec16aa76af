#include "text/Rotating_File.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "text/Number.h"
#include "text/Text.h"

namespace vornex {

namespace {

namespace fs = std::filesystem;

const std::size_t NumberDigits = 6;  // or more
const std::chrono::seconds LongestPatience{60};
const std::uint64_t SmallestFile = 1000;

// The part of a file's time that its period goes by.
std::string periodOf(const std::string& time, Rotation::Period period) {
    const std::size_t day = 8, hour = 11;
    return period == Rotation::Period::None ? "" : time.substr(0, period == Rotation::Period::Day ? day : hour);
}

std::uint64_t linesIn(const std::string& text) {
    return static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
}

bool isTime(const std::string& text) {
    const std::string shape = "dddddddd.dddddd";
    if (text.size() != shape.size() || text[8] != 'T') return false;
    return std::count_if(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; }) == 14;
}

[[noreturn]] void unusable(const std::string& folder, const std::string& reason) {
    throw Output_Error(Output_Error::Kind::Unusable, folder + ": " + reason);
}

}  // namespace

Rotation parseRotation(const std::string& text) {
    if (text == "1h") return {Rotation::Period::Hour, 0};
    if (text == "1d") return {Rotation::Period::Day, 0};
    const std::string units = "kMG";
    const std::size_t unit = text.empty() ? std::string::npos : units.find(text.back());
    if (unit == std::string::npos) throw std::invalid_argument("'" + text + "' is not 1h, 1d or a size like 50M");
    const std::uint64_t scale[] = {1000, 1000000, 1000000000};
    return {Rotation::Period::None,
            scale[unit] * unsignedNumber(text.substr(0, text.size() - 1), SmallestFile / 1000, 1000000, "size")};
}

Rotating_File::Rotating_File(const Log_Plan& logPlan, Wall_Time now, Tell tellUser)
    : plan(logPlan), tell(std::move(tellUser)) {
    std::error_code error;
    fs::create_directories(plan.folder, error);
    if (error) unusable(plan.folder, error.message());
    if (access(plan.folder.c_str(), W_OK) != 0) unusable(plan.folder, std::strerror(errno));
    lockFolder();
    continueNewest(now);
}

Rotating_File::~Rotating_File() {
    if (folderLock >= 0) ::close(folderLock);
}

// Two runs would cut each other's lines off as torn.
void Rotating_File::lockFolder() {
    folderLock = ::open(plan.folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderLock < 0) unusable(plan.folder, std::strerror(errno));
    if (flock(folderLock, LOCK_EX | LOCK_NB) == 0) return;
    const int reason = errno;
    ::close(std::exchange(folderLock, -1));
    unusable(plan.folder, reason == EWOULDBLOCK ? "another run logs there" : std::strerror(reason));
}

// By number, the oldest first.
std::vector<Rotating_File::Entry> Rotating_File::entries() const {
    std::vector<Entry> found;
    std::error_code error;
    const std::string beginning = plan.name + "-";
    for (fs::directory_iterator at(plan.folder, error), end; !error && at != end; at.increment(error)) {
        const std::string name = at->path().filename().string();
        const std::string stem = name.substr(0, name.rfind('.'));
        if (name.compare(0, beginning.size(), beginning) != 0 || stem.size() < beginning.size()) continue;
        const std::vector<std::string> parts = split(stem.substr(beginning.size()), '-');
        if (parts.size() != 2 || parts[0].size() < NumberDigits || !isTime(parts[1])) continue;
        try {
            found.push_back({unsignedNumber(parts[0], 1, 1000000000000), parts[1], at->path().string()});
        } catch (const std::invalid_argument&) {  // none of ours
        }
    }
    std::sort(found.begin(), found.end(), [](const Entry& a, const Entry& b) { return a.number < b.number; });
    return found;
}

void Rotating_File::continueNewest(Wall_Time now) {
    const std::vector<Entry> all = entries();
    if (all.empty()) return;
    const Entry& newest = all.back();
    number = newest.number;
    auto old = std::make_unique<Output_File>(newest.path, Output_Policy{Existing_File::Append, {}});
    if (old->tornBytes() > 0) {
        tell(newest.path + ": " + std::to_string(old->tornBytes()) + " bytes of a line without end are cut off");
        try {
            old->mend();
        } catch (const Output_Error& error) {
            unusable(newest.path, error.what());
        }
    }
    std::error_code error;
    size = fs::file_size(newest.path, error);
    path = newest.path;
    period = periodOf(newest.time, plan.rotation.period);
    const bool isAlike = endsIn(newest.path, plan.ending) &&
                         (plan.heading.empty() || old->firstLine() + "\n" == plan.heading || size == 0);
    if (error || !isAlike || isFull("", now)) {
        path.clear();
        return;
    }
    if (size > 0) file = std::move(old);  // else it has to have its heading yet
}

bool Rotating_File::isFull(const std::string& lines, Wall_Time now) const {
    if (period != periodOf(fileTimeText(now), plan.rotation.period)) return true;
    const std::uint64_t limit = plan.rotation.bytes;
    return limit > 0 && size > plan.heading.size() && size + lines.size() > limit;
}

// The next file, or after trouble the present one again.
void Rotating_File::open(Wall_Time now) {
    if (path.empty()) {
        char digits[32];
        std::snprintf(digits, sizeof digits, "%06llu", static_cast<unsigned long long>(++number));
        const std::string time = fileTimeText(now);
        path = plan.folder + "/" + plan.name + "-" + digits + "-" + time + plan.ending;
        period = periodOf(time, plan.rotation.period);
        size = 0;
    }
    file = std::make_unique<Output_File>(path, Output_Policy{Existing_File::Append, {}});
    if (file->firstLine().empty() && !plan.heading.empty()) {
        file->write(plan.heading);
        size += plan.heading.size();
    }
}

void Rotating_File::write(const std::string& lines, Wall_Time now) {
    if (lines.empty()) return;
    const bool isBroken = lost > 0;
    if (isBroken && now >= lastTry && now < lastTry + patience) {
        lost += linesIn(lines);
        return;
    }
    try {
        if (!path.empty() && isFull(lines, now)) {
            if (file) file->close();
            file.reset();
            path.clear();
        }
        const bool isNew = path.empty();
        if (!file) open(now);
        file->write(lines);
        file->flush();
        size += lines.size();
        if (isBroken) tell(path + ": goes on; " + std::to_string(lost) + " lines before this are missing");
        lost = 0;
        patience = std::chrono::seconds(1);
        if (isNew) removeOld();
    } catch (const Output_Error& error) {
        failed(error.what(), file && file->missingLines() > 0 ? file->missingLines() : linesIn(lines), now);
    }
}

void Rotating_File::failed(const std::string& reason, std::uint64_t lines, Wall_Time now) {
    if (lost == 0) {
        tell(reason + "; the log goes on when that is over");
    } else {
        patience = std::min(2 * patience, LongestPatience);
    }
    everLost = true;
    lost += std::max<std::uint64_t>(lines, 1);
    lastTry = now;
    file.reset();
}

void Rotating_File::removeOld() {
    if (plan.keep == 0) return;
    const std::vector<Entry> all = entries();
    for (std::size_t i = 0; i + plan.keep < all.size(); ++i) {
        std::error_code error;
        if (all[i].path != path && !fs::remove(all[i].path, error)) tell(all[i].path + ": " + error.message());
    }
}

void Rotating_File::close() {
    try {
        if (file) file->close();
    } catch (const Output_Error& error) {
        everLost = true;
        tell(error.what());
    }
    if (lost > 0) tell(path + ": " + std::to_string(lost) + " lines are missing at its end");
}

}  // namespace vornex
