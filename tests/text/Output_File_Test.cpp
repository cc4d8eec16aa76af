// What happens to a file that exists, to a disk that is full, to a reader that is gone or stands still.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <fstream>
#include <functional>
#include <optional>

#include <gtest/gtest.h>

#include "text/Output_File.h"

namespace vornex {
namespace {

const std::string Folder = WORK_DIR "/output-files";

std::string pathOf(const std::string& name) { return Folder + "/" + name; }

std::string textOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(stream)), {});
}

void put(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

std::optional<Output_Error::Kind> kindOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const Output_Error& error) {
        return error.kind;
    }
    return std::nullopt;
}

class Output_Files : public ::testing::Test {
protected:
    void SetUp() override {
        mkdir(Folder.c_str(), 0777);
        for (const char* name : {"old", "new", "link", "dangling", "read"})
            unlink(pathOf(name).c_str());
        put(pathOf("old"), "one\ntwo\nthr");
        put(pathOf("read"), "labels");
        ASSERT_EQ(symlink("old", pathOf("link").c_str()), 0);
        ASSERT_EQ(symlink("new", pathOf("dangling").c_str()), 0);
    }
    int filesThere() const {
        int count = 0;
        for (const char* name : {"old", "new", "link", "dangling", "read"}) {
            struct stat found;
            count += lstat(pathOf(name).c_str(), &found) == 0 ? 1 : 0;
        }
        return count;
    }
};

TEST_F(Output_Files, followThePolicyForWhatExists) {
    using Kind = Output_Error::Kind;
    const struct {
        const char* name;
        Existing_File existing;
        std::optional<Kind> refused;
        const char* file;  // and what is in it afterwards
        const char* text;
    } rows[] = {
        {"new", Existing_File::Refuse, {}, "new", "more\n"},
        {"new", Existing_File::Append, {}, "new", "more\n"},
        {"new", Existing_File::Replace, {}, "new", "more\n"},
        {"old", Existing_File::Refuse, Kind::Exists, "old", "one\ntwo\nthr"},
        {"old", Existing_File::Append, {}, "old", "one\ntwo\nmore\n"},  // the torn line is no line
        {"old", Existing_File::Replace, {}, "old", "more\n"},
        {"link", Existing_File::Replace, {}, "old", "more\n"},
        {"dangling", Existing_File::Replace, {}, "new", "more\n"},
        {"read", Existing_File::Replace, Kind::Unusable, "read", "labels"},
        {"read", Existing_File::Append, Kind::Unusable, "read", "labels"},
        {".", Existing_File::Replace, Kind::Unusable, "old", "one\ntwo\nthr"},
        {"no/folder", Existing_File::Refuse, Kind::Unusable, "old", "one\ntwo\nthr"},
    };
    for (const auto& row : rows) {
        SetUp();
        for (const bool whole : {false, true}) {
            if (whole && row.existing == Existing_File::Append) continue;
            SetUp();
            SCOPED_TRACE(std::string(row.name) + (whole ? " as a whole" : ""));
            const Output_Policy policy = {row.existing, {pathOf("read")}};
            const auto refused = kindOf([&] {
                if (whole) return writeWholeFile(pathOf(row.name), "more\n", policy);
                Output_File file(pathOf(row.name), policy);
                file.write("more\n");
                file.close();
            });
            EXPECT_EQ(refused, row.refused);
            EXPECT_EQ(textOf(pathOf(row.file)), row.text);
            struct stat link;
            EXPECT_TRUE(lstat(pathOf("link").c_str(), &link) == 0 && S_ISLNK(link.st_mode));
        }
    }
}

TEST_F(Output_Files, touchNothingBeforeTheFirstFlush) {
    const int before = filesThere();
    {
        Output_File fresh(pathOf("new"), {});
        Output_File replaced(pathOf("old"), {Existing_File::Replace, {}});
        Output_File continued(pathOf("old"), {Existing_File::Append, {}});
        EXPECT_EQ(continued.firstLine(), "one");
        fresh.write("text that nobody flushes");
    }
    EXPECT_EQ(filesThere(), before);
    EXPECT_EQ(textOf(pathOf("old")), "one\ntwo\nthr");
}

// A limit of the file's size stands for the full disk: the kernel writes what fits and refuses the rest.
TEST_F(Output_Files, endWithTheirLastCompleteLineOnAFullDisk) {
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {26, 26};
        setrlimit(RLIMIT_FSIZE, &limit);
        std::string told;
        try {
            Output_File file(pathOf("new"), {});
            file.write("first line\n");
            file.flush();
            file.write("second line\nthird line\nfourth line\n");
            file.flush();
        } catch (const Output_Error& error) {
            told = error.what();
        }
        const bool right =
            told == pathOf("new") + ": File too large; 2 lines are written, 2 and what would follow are missing";
        const bool whole = kindOf([] {
                               writeWholeFile(pathOf("old"), std::string(100, 'x'), {Existing_File::Replace, {}});
                           }) == Output_Error::Kind::Failed;
        _exit(right && whole ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(textOf(pathOf("new")), "first line\nsecond line\n");
    EXPECT_EQ(textOf(pathOf("old")), "one\ntwo\nthr");
}

TEST_F(Output_Files, tellAFullDeviceAndAReaderThatIsGone) {
    EXPECT_EQ(kindOf([] {
                  Output_File full("/dev/full", {});
                  full.write("text\n");
                  full.close();
              }),
              Output_Error::Kind::Failed);
    ASSERT_EQ(mkfifo(pathOf("new").c_str(), 0600), 0);
    std::signal(SIGPIPE, SIG_IGN);
    int reader = open(pathOf("new").c_str(), O_RDONLY | O_NONBLOCK);
    Output_File pipe(pathOf("new"), {});
    pipe.write("text\n");
    pipe.flush();
    close(reader);
    EXPECT_EQ(kindOf([&] {
                  pipe.write("more\n");
                  pipe.flush();
              }),
              Output_Error::Kind::ReaderGone);
    reader = open(pathOf("new").c_str(), O_RDONLY | O_NONBLOCK);
    Output_File slow(pathOf("new"), {});
    Output_File::stopWaiting();
    EXPECT_EQ(kindOf([&] { slow.write(std::string(1000000, 'x')); }), Output_Error::Kind::Failed);
    close(reader);
}

}  // namespace
}  // namespace vornex
