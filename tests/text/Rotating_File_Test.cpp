// A log that lives for days: new files, old files, torn lines, a disk that is full for a while.
#include <sys/resource.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "text/Rotating_File.h"

namespace vornex {
namespace {

namespace fs = std::filesystem;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

// Noon, so that a few hours on either side are the same day whatever the zone.
Wall_Time noon() {
    std::tm parts{};
    parts.tm_year = 126;
    parts.tm_mon = 4;
    parts.tm_mday = 17;
    parts.tm_hour = 12;
    parts.tm_isdst = -1;
    return std::chrono::system_clock::from_time_t(std::mktime(&parts));
}

class Rotating_Files : public testing::Test {
protected:
    Rotating_Files() { fs::remove_all(folder); }

    Log_Plan plan(const std::string& rotation, std::uint64_t keep = 0) const {
        return {folder, "watch", ".csv", "time,value\n", parseRotation(rotation), keep};
    }
    Rotating_File::Tell tell() {
        return [this](const std::string& words) { told += words + "\n"; };
    }
    // "000001-20260517T120000.csv: TEXT" of each file, the line ends as |.
    std::string files() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(folder)) {
            std::ifstream stream(entry.path(), std::ios::binary);
            std::string text((std::istreambuf_iterator<char>(stream)), {});
            for (char& letter : text)
                letter = letter == '\n' ? '|' : letter;
            found.push_back(entry.path().filename().string().substr(6) + ": " + text + "\n");
        }
        std::sort(found.begin(), found.end());
        std::string all;
        for (const std::string& line : found)
            all += line;
        return all;
    }
    void put(const std::string& name, const std::string& text) const {
        fs::create_directories(folder);
        std::ofstream(folder + "/watch-" + name, std::ios::binary) << text;
    }

    const std::string folder = WORK_DIR "/rotating/deep";
    const Wall_Time now = noon();
    std::string told;
};

TEST_F(Rotating_Files, beginANewOneInTime) {
    const struct {
        const char* rotation;
        std::vector<std::chrono::minutes> times;
        const char* files;
    } rows[] = {
        {"1d",
         {minutes(0), hours(11), hours(13)},
         "000001-20260517T120000.csv: time,value|a|b|\n000002-20260518T010000.csv: time,value|c|\n"},
        {"1h",
         {minutes(0), minutes(59), minutes(60)},
         "000001-20260517T120000.csv: time,value|a|b|\n000002-20260517T130000.csv: time,value|c|\n"},
        // whatever the clock does, the order stays
        {"1h",
         {minutes(0), minutes(-30), minutes(-29)},
         "000001-20260517T120000.csv: time,value|a|\n000002-20260517T113000.csv: time,value|b|c|\n"},
    };
    for (const auto& row : rows) {
        fs::remove_all(folder);
        Rotating_File log(plan(row.rotation), now, tell());
        std::string line = "a\n";
        for (const std::chrono::minutes after : row.times) {
            log.write(line, now + after);
            ++line[0];
        }
        log.close();
        EXPECT_EQ(files(), row.files) << row.rotation;
        EXPECT_EQ(told, "");
        EXPECT_FALSE(log.lostLines());
    }
}

TEST_F(Rotating_Files, beginANewOneAtASizeAndKeepTheNewest) {
    Rotating_File log(plan("1k", 2), now, tell());
    put("notes.csv", "x");
    put("000000-20260517T120000.txt", "x");
    for (char letter = 'a'; letter <= 'd'; ++letter)
        log.write(std::string(600, letter) + "\n", now + seconds(letter - 'a'));
    const std::string c(600, 'c'), d(600, 'd');
    EXPECT_EQ(files(), "000000-20260517T120000.txt: x\n000003-20260517T120002.csv: time,value|" + c +
                           "|\n000004-20260517T120003.csv: time,value|" + d + "|\nnotes.csv: x\n");
    log.write(std::string(2000, 'e') + "\n", now);  // is not cut, whatever its size
    EXPECT_EQ(fs::file_size(folder + "/watch-000005-20260517T120000.csv"), 2012u);
}

TEST_F(Rotating_Files, goOnWithTheNewestAndMendIt) {
    const struct {
        const char* what;
        const char* newest;
        const char* ending;
        int hoursLater;
        const char* files;
        const char* told;
    } rows[] = {
        {"the same day", "time,value\na\n", ".csv", 1, "000007-20260517T110000.csv: time,value|a|b|\n", ""},
        {"killed in a line", "time,value\na\nhal", ".csv", 1, "000007-20260517T110000.csv: time,value|a|b|\n",
         "3 bytes of a line without end are cut off"},
        {"killed in the heading", "time,v", ".csv", 1, "000007-20260517T110000.csv: time,value|b|\n", "6 bytes"},
        {"killed before the first byte", "", ".csv", 1, "000007-20260517T110000.csv: time,value|b|\n", ""},
        {"killed yesterday", "time,value\na\nhal", ".csv", 24,
         "000007-20260517T110000.csv: time,value|a|\n000008-20260518T120000.csv: time,value|b|\n", "3 bytes"},
        {"other columns", "time,label\na\n", ".csv", 1,
         "000007-20260517T110000.csv: time,label|a|\n000008-20260517T130000.csv: time,value|b|\n", ""},
        {"another form", "{}\n{", ".jsonl", 1,
         "000007-20260517T110000.jsonl: {}|\n000008-20260517T130000.csv: time,value|b|\n", "1 bytes"},
    };
    for (const auto& row : rows) {
        fs::remove_all(folder);
        told.clear();
        put("000006-20260517T100000.csv", "old\nand torn");
        put(std::string("000007-20260517T110000") + row.ending, row.newest);
        Rotating_File log(plan("1d"), now + hours(row.hoursLater), tell());
        log.write("b\n", now + hours(row.hoursLater));
        EXPECT_EQ(files(), std::string("000006-20260517T100000.csv: old|and torn\n") + row.files) << row.what;
        EXPECT_EQ(told.empty(), *row.told == '\0') << row.what << "\n" << told;
        EXPECT_NE(told.find(row.told), std::string::npos) << row.what << "\n" << told;
    }
}

// The limit on a file's size stands for the full disk: both fail in the middle of a write.
TEST_F(Rotating_Files, surviveAFullDisk) {
    signal(SIGXFSZ, SIG_IGN);
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit full = before;
    full.rlim_cur = 16;
    Rotating_File log(plan("1d"), now, tell());
    log.write("a\n", now);
    setrlimit(RLIMIT_FSIZE, &full);
    log.write("b\ncccc\nd\n", now);
    log.write("e\n", now);  // too early to be tried
    log.write("f\ng\n", now + seconds(2));
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    setrlimit(RLIMIT_FSIZE, &before);
    log.write("h\n", now + seconds(3));  // the wait has become longer
    log.write("i\n", now + seconds(60));
    log.close();
    EXPECT_EQ(files(), "000001-20260517T120000.csv: time,value|a|b|i|\n");
    EXPECT_NE(told.find("File too large"), std::string::npos) << told;
    EXPECT_NE(told.find("goes on; 6 lines before this are missing"), std::string::npos) << told;
    EXPECT_TRUE(log.lostLines());
}

TEST_F(Rotating_Files, areForOneRunAtATime) {
    const auto second = [this] { Rotating_File other(plan("1d"), now, tell()); };
    {
        Rotating_File log(plan("1d"), now, tell());
        EXPECT_THROW(second(), Output_Error);
    }
    EXPECT_NO_THROW(second());
    fs::remove_all(folder);
    std::ofstream(folder) << "a file";
    EXPECT_THROW(second(), Output_Error);
    fs::remove_all(folder);
}

TEST_F(Rotating_Files, takeNoOtherRotation) {
    for (const char* text : {"", "2d", "1w", "50", "M", "-1M", "0k", "1.5M", "50MB"})
        EXPECT_THROW(parseRotation(text), std::invalid_argument) << text;
    EXPECT_EQ(parseRotation("50M").bytes, 50000000u);
    EXPECT_EQ(parseRotation("2G").bytes, 2000000000u);
}

TEST(Duration, isANumberWithAUnit) {
    const std::pair<const char*, double> rows[] = {{"90", 90},  {"90s", 90},    {"1.5h", 5400}, {"5min", 300},
                                                   {"5m", 300}, {"2d", 172800}, {"500ms", 0.5}};
    for (const auto& [text, length] : rows)
        EXPECT_DOUBLE_EQ(secondsOf(text), length) << text;
    for (const char* text : {"", "h", "8 h", "-1h", "1h30", "1w", "1..5s"})
        EXPECT_THROW(secondsOf(text), std::invalid_argument) << text;
}

}  // namespace
}  // namespace vornex
