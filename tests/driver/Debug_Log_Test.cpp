// The log handler. Its path is fixed, so the test has another file opened in its place: nobody's log is touched.
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstring>

#include <QtCore/QFile>
#include <QtCore/QRegExp>
#include <QtCore/QStringList>

#include "Driver_Fixture.h"

namespace {

const char* const LogPath = "/tmp/debug.log";
QByteArray standIn;  // what is opened in its place; empty: it cannot be opened
int timesOpened = 0;

}  // namespace

// The program's own definition goes before the C library's, for Qt as well.
extern "C" __attribute__((visibility("default"))) int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const int mode = flags & O_CREAT ? va_arg(rest, int) : 0;
    va_end(rest);
    const bool isLog = std::strcmp(path, LogPath) == 0;
    if (isLog) ++timesOpened;
    if (isLog && standIn.isEmpty()) return errno = EACCES, -1;
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, isLog ? standIn.constData() : path, flags, mode));
}

namespace {

class Debug_Log : public testing::Test {
protected:
    void SetUp() override {
        file = QByteArray(testing::TempDir().c_str()) + "debug-log-test-XXXXXX";
        const int descriptor = ::mkstemp(file.data());
        ASSERT_GE(descriptor, 0);
        ASSERT_EQ(5, ::write(descriptor, "kept\n", 5));
        ::close(descriptor);
        standIn = file;
        timesOpened = 0;
        QFile log(text(LogPath));
        ASSERT_TRUE(log.open(QIODevice::ReadOnly));
        ASSERT_EQ(1, timesOpened) << "Qt opens files by another call: nothing may be logged here";
    }
    void TearDown() override { ::unlink(file.constData()); }

    // The lines of the stand-in, each without its time.
    QStringList lines() const {
        QFile log(text(file.constData()));
        EXPECT_TRUE(log.open(QIODevice::ReadOnly));
        const QRegExp stamp(text("\\d{4}\\.\\d\\d\\.\\d\\d\\.\\d\\d:\\d\\d:\\d\\d\\.\\d{1,3}:(.*)\n"));
        QStringList found;
        while (!log.atEnd()) {
            const QString line = QString::fromLatin1(log.readLine());
            found << (stamp.exactMatch(line) ? stamp.cap(1) : text("no time: ") + line);
        }
        return found;
    }

    QByteArray file;
};

TEST_F(Debug_Log, appendsOneLineAMessage) {
    customMessageHandler(QtDebugMsg, "first");
    customMessageHandler(QtWarningMsg, "");
    customMessageHandler(QtCriticalMsg, "a: b");
    customMessageHandler(QtFatalMsg, nullptr);
    const char* const bytes = "UTF-8 \xC3\xBC, Latin-1 \xFC, %1";  // Qt 4 and Qt 5 differ in how they read them
    customMessageHandler(QtDebugMsg, bytes);
    EXPECT_EQ(QStringList() << text("no time: kept\n") << text("first") << text("") << text("a: b") << text("")
                            << text(bytes),
              lines());
    EXPECT_EQ(6, timesOpened) << "opened for each message";
}

TEST_F(Debug_Log, makesTheFileWhenItIsMissing) {
    ::unlink(file.constData());
    customMessageHandler(QtDebugMsg, "first");
    EXPECT_EQ(QStringList() << text("first"), lines());
}

TEST_F(Debug_Log, losesAMessageThatCannotBeWrittenAndGoesOn) {
    for (const char* place : {"", "/dev/full", "/nowhere/debug.log"}) {
        standIn = place;
        customMessageHandler(QtDebugMsg, "lost");
    }
    standIn = file;
    customMessageHandler(QtDebugMsg, "next");
    EXPECT_EQ(QStringList() << text("no time: kept\n") << text("next"), lines());
    EXPECT_EQ(5, timesOpened);
}

}  // namespace
