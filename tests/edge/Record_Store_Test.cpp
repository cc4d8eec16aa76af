// What becomes of records when a process is killed, a file ends early, a disk is full or gives back other bytes.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "edge/store/Record_Bytes.h"
#include "edge/store/Record_Store.h"

namespace vornex::edge {
namespace {

namespace fs = std::filesystem;

const std::uint64_t Room = Record_Store::LeastBytes;

struct Stores : ::testing::Test {
    Stores() : folder(WORK_DIR "/store-" + std::to_string(getpid())) { fs::remove_all(folder); }
    ~Stores() override { fs::remove_all(folder); }

    // Of the segments, in the order of their numbers.
    std::vector<fs::path> files() const {
        std::vector<fs::path> found;
        for (int number = 1; number < 1000; ++number) {
            const fs::path path = folder + "/" + std::to_string(number) + ".records";
            if (fs::exists(path) && fs::file_size(path) > 0) found.push_back(path);
        }
        return found;
    }
    // All that wait, taken in steps of `step`.
    static std::vector<std::string> drain(Record_Store& store, std::size_t step = 3) {
        std::vector<std::string> all;
        for (std::vector<std::string> some = store.oldest(step); !some.empty(); some = store.oldest(step)) {
            all.insert(all.end(), some.begin(), some.end());
            store.take(some.size());
        }
        return all;
    }
    static std::vector<std::string> numbers(int from, int to, const std::string& tail = "") {
        std::vector<std::string> all;
        for (int i = from; i < to; ++i)
            all.push_back(std::to_string(i) + tail);
        return all;
    }
    void fill(int from, int to, const std::string& tail = "") const {
        Record_Store store(folder, Room);
        for (const std::string& record : numbers(from, to, tail))
            ASSERT_TRUE(store.append(record));
    }

    const std::string folder;
};

TEST_F(Stores, giveBackInOrderAcrossRuns) {
    const std::string tail(1000, 'x');
    fill(0, 20, tail);
    {
        Record_Store store(folder, Room);
        EXPECT_EQ(store.counts().records, 20u);
        for (int i = 0; i < 12; ++i) {
            ASSERT_EQ(store.oldest(1), numbers(i, i + 1, tail));
            ASSERT_EQ(store.oldest(1), numbers(i, i + 1, tail)) << "nothing was taken";
            store.take(1);
        }
        ASSERT_TRUE(store.append(""));
    }
    std::vector<std::string> rest = numbers(12, 20, tail);
    rest.push_back("");
    Record_Store store(folder, Room);
    EXPECT_EQ(drain(store), rest);
    EXPECT_TRUE(store.isEmpty());
    EXPECT_EQ(store.counts().tornBytes + store.counts().overwritten + store.counts().spoiled, 0u);
}

TEST_F(Stores, dropTheOldestWhenTheRoomIsUsedUp) {
    const std::string tail(994, 'x');
    Record_Store store(folder, Room);
    for (int i = 100; i < 300; ++i) {
        ASSERT_TRUE(store.append(std::to_string(i) + tail));
        ASSERT_LE(store.counts().bytes, Room);
    }
    const std::vector<std::string> rest = drain(store);
    EXPECT_EQ(rest.size() + store.counts().overwritten, 200u);
    EXPECT_GE(rest.size(), Room / 1005 * 3 / 4);
    EXPECT_EQ(rest, numbers(300 - static_cast<int>(rest.size()), 300, tail));
    EXPECT_FALSE(store.append(std::string(Room / 4, 'x')));
    EXPECT_EQ(store.counts().refused, 1u);
}

// Every length that a write can be cut to.
TEST_F(Stores, passOverATornEnd) {
    const std::size_t size = RecordHead + 1;
    for (std::size_t left = 2 * size; left < 3 * size; ++left) {
        fs::remove_all(folder);
        fill(0, 3);
        fs::resize_file(files().at(0), left);
        fill(3, 5);
        Record_Store store(folder, Room);
        EXPECT_EQ(store.counts().tornBytes, left - 2 * size);
        EXPECT_EQ(drain(store), (std::vector<std::string>{"0", "1", "3", "4"})) << left;
    }
}

// One bit anywhere in a segment: what is before it and all other segments come, nothing else does.
TEST_F(Stores, neverGiveBackOtherBytes) {
    const std::size_t size = RecordHead + 1;
    for (std::size_t at = 0; at < 3 * size; ++at) {
        fs::remove_all(folder);
        fill(0, 3);
        fill(3, 6);
        std::fstream file(files().at(0), std::ios::in | std::ios::out | std::ios::binary);
        file.seekg(static_cast<std::streamoff>(at));
        const char wrong = static_cast<char>(file.get() ^ 0x10);
        file.seekp(static_cast<std::streamoff>(at));
        file.put(wrong);
        file.close();
        std::vector<std::string> expected = numbers(0, static_cast<int>(at / size));
        for (const std::string& record : numbers(3, 6))
            expected.push_back(record);
        Record_Store store(folder, Room);
        EXPECT_EQ(drain(store), expected) << at;
        EXPECT_GE(store.counts().tornBytes, size) << at;
    }
}

// The same while the store is open: what went bad is counted, and not waited for.
TEST_F(Stores, goOnBehindASpoiledPlace) {
    Record_Store store(folder, Room);
    for (const std::string& record : numbers(0, 3, std::string(6000, 'x')))
        ASSERT_TRUE(store.append(record));
    std::ofstream(files().at(0), std::ios::in | std::ios::binary) << "\xFF\xFF";
    const std::vector<std::string> rest = drain(store);
    EXPECT_EQ(rest.size() + store.counts().spoiled, 3u);
    EXPECT_GT(store.counts().spoiled, 0u);
    EXPECT_EQ(store.counts().overwritten, 0u);
    EXPECT_TRUE(store.append("again"));
    EXPECT_EQ(drain(store), std::vector<std::string>{"again"});
}

TEST_F(Stores, startOverWhenThePlaceIsLost) {
    fill(0, 3);
    {
        Record_Store store(folder, Room);
        store.take(2);
    }
    std::ofstream(folder + "/taken", std::ios::binary) << "1 2";
    Record_Store store(folder, Room);
    EXPECT_EQ(drain(store), numbers(0, 3)) << "rather twice than never";
}

// What the process was told to be kept is there after its end by SIGKILL, and at most the one record more.
TEST_F(Stores, keepAllOfAKilledProcess) {
    int pipeEnds[2];
    ASSERT_EQ(pipe(pipeEnds), 0);
    const pid_t child = fork();
    if (child == 0) {
        Record_Store store(folder, Room * 100);
        for (int i = 0;; ++i) {
            const bool kept = store.append(std::to_string(i)) && write(pipeEnds[1], "k", 1) == 1;
            if (!kept) _exit(1);
        }
    }
    close(pipeEnds[1]);
    std::size_t kept = 0;
    char letters[100];
    for (ssize_t more = 1; more > 0; kept += static_cast<std::size_t>(std::max<ssize_t>(more, 0))) {
        if (kept >= 2000) kill(child, SIGKILL);
        more = read(pipeEnds[0], letters, sizeof letters);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    close(pipeEnds[0]);
    Record_Store store(folder, Room * 100);
    const std::vector<std::string> all = drain(store, 1000);
    EXPECT_GE(kept, 2000u);
    EXPECT_GE(all.size(), kept);
    EXPECT_LE(all.size(), kept + 1);
    EXPECT_EQ(all, numbers(0, static_cast<int>(all.size())));
}

// A limit of the file's size stands for a full disk: a write goes through in part, then not at all.
TEST_F(Stores, endWithAWholeRecordWhenTheDiskIsFull) {
    Record_Store store(folder, Room);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit tight = {2500, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
    int kept = 0;
    while (kept < 10 && store.append(std::to_string(kept) + std::string(1000, 'x')))
        ++kept;
    const bool still = store.append(std::string(1000, 'y'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(kept, 2);
    EXPECT_FALSE(still);
    EXPECT_EQ(store.counts().refused, 2u);
    ASSERT_TRUE(store.append("after"));
    std::vector<std::string> expected = numbers(0, 2, std::string(1000, 'x'));
    expected.push_back("after");
    EXPECT_EQ(drain(store), expected);
}

TEST_F(Stores, areOpenOnce) {
    Record_Store store(folder, Room);
    EXPECT_THROW(Record_Store(folder, Room), Store_Error);
    EXPECT_THROW(Record_Store("/dev/null/store", Room), Store_Error);
}

}  // namespace
}  // namespace vornex::edge
