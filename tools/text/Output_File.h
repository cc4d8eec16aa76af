// Where text goes: a file, a pipe, a terminal. Every write, flush and close of the programs is made and checked here.
#ifndef VORNEX_TEXT_OUTPUT_FILE_H
#define VORNEX_TEXT_OUTPUT_FILE_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace vornex {

// what() names the file and the reason, and what is missing of the text.
class Output_Error : public std::runtime_error {
public:
    enum class Kind {
        Exists,      // and is neither to be continued nor to be replaced; nothing was touched
        Unusable,    // cannot be opened, or is a file that this run reads; nothing was touched
        Failed,      // a write, flush or close: the disk is full, ...
        ReaderGone,  // whoever read the pipe has closed it
    };
    Output_Error(Kind errorKind, const std::string& message) : std::runtime_error(message), kind(errorKind) {}
    const Kind kind;
};

enum class Existing_File { Refuse, Append, Replace };

// How an output treats what is there already.
struct Output_Policy {
    Existing_File existing = Existing_File::Refuse;
    std::vector<std::string> filesRead;  // files that this run reads: never written to
};

// One thread at a time. Text that is not flushed when the object ends is lost.
class Output_File {
public:
    // A file whose name is taken at the first flush(), so that a run that comes to nothing leaves no trace. A file that
    // is replaced keeps its text until then: the new one is made beside it, beside the link's target if it is a link.
    // A device or a pipe is neither continued nor replaced, just written to. Throws Output_Error Exists or Unusable.
    Output_File(const std::string& path, const Output_Policy& policy);
    static Output_File standardOutput() { return Output_File(1, "standard output"); }
    static Output_File standardError() { return Output_File(2, "standard error"); }
    ~Output_File();
    Output_File(const Output_File&) = delete;
    Output_File& operator=(const Output_File&) = delete;

    // Keeps the text; what is much goes out. These three throw Output_Error Failed or ReaderGone. A regular file then
    // ends with its last complete line, and the object takes nothing more.
    void write(const std::string& text);
    void flush();
    void close();

    // Nobody takes what was written: a flush() would wait now. Of a pipe or a terminal; never of a file.
    bool wouldWait() const;

    // Before the first write: the file takes its name in close(), when all of it is on the disk.
    void takeNameAtEnd() { takesNameAtEnd = true; }

    const std::string& name() const { return shownName; }
    // Of a file that is continued: its first line; empty when there is none. A last line without end is cut off at the
    // first flush.
    const std::string& firstLine() const { return oldFirstLine; }
    // The bytes of such a last line; and: cuts it off now.
    std::uint64_t tornBytes() const { return torn; }
    void mend();
    // After a failure: the lines of the text given that the file does not hold.
    std::uint64_t missingLines() const { return missing; }

    // Any thread: nobody waits for slow readers any more; a write that would wait fails.
    static void stopWaiting();

private:
    Output_File(int descriptor, std::string standardName);
    void continueOld(const std::string& path);
    void open();
    void sendSome();
    void waitForReader();
    void takeName();
    std::uint64_t linesIn(std::size_t from, std::size_t to) const;
    [[noreturn]] void fail(int error);

    std::string shownName;
    std::string target;  // path, behind links; empty for standard streams
    std::string beside;  // the new file, until it takes its name
    Output_Policy policy;
    int fd = -1;
    bool standard = false;
    bool regular = false;
    bool takesNameAtEnd = false;
    bool failed = false;
    std::string buffer;
    std::size_t sent = 0;  // of the buffer
    std::string oldFirstLine;
    std::uint64_t torn = 0;
    std::uint64_t size = 0;  // of a regular file, up to its last complete line
    std::uint64_t missing = 0;
    std::uint64_t lines = 0;  // that are complete and written by this object
};

// On standard output, at once. Throws Output_Error.
void printText(const std::string& text);
// The whole text under this name, or nothing. Throws Output_Error; what was there is then as before.
void writeWholeFile(const std::string& path, const std::string& text, const Output_Policy& policy);

}  // namespace vornex

#endif
