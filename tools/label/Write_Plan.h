// Assignments on their way to the controller: checked first, then written, read back, compared.
#ifndef VORNEX_LABEL_WRITE_PLAN_H
#define VORNEX_LABEL_WRITE_PLAN_H

#include <string>
#include <vector>

#include "host/Span_Read.h"
#include "host/Variables.h"
#include "label/Tool.h"
#include "values/Recipe.h"

namespace vornex {

// One assignment, checked, as controller bytes. Pending: nothing of it has been sent.
struct Write_Plan {
    Variable variable;   // with the view that is asked for
    std::string bytes;   // of a bit: its element, the other bits as they are when it is written
    std::string remark;  // what people may not expect of it
    Completion completion;

    Value value() const;
};

// The assignments of a file; "-" is standard input. Throws File_Error.
std::vector<Assignment> readRecipe(const std::string& path);

// Before a session: bare addresses among the labels become labels, as Tool::takeRawLabels() says.
std::vector<Assignment> withRawLabels(Tool& tool, std::vector<Assignment> assignments);

// What is to be known of assignments beside themselves.
struct Plan_Options {
    Template_Index index;
    std::string view;  // before the assignment's own; empty: none
    bool isRaw = false;
    bool toBeWritten = true;
};

// Throws Tool_Error or Host_Error for a label that is not there, one variable or, to be written, of a type that the
// driver writes, and for a value that does not fit; with the assignment's place.
Write_Plan planOf(Session& session, const Label_File& file, const Plan_Options& options, const Assignment& assignment);
std::vector<Write_Plan> plansOf(Session& session, const Label_File& file, const Plan_Options& options,
                                const std::vector<Assignment>& assignments);

// Starts the writing of a part of the bytes; what it returns is for Session::wait().
int startPiece(Session& session, const Write_Plan& plan, std::size_t offset, std::size_t length);
// The most that one piece may have.
extern const std::size_t LongestPiece;
// Writes one plan and notes how that ended; of a bit, the element is read first and written with it changed. After the
// first piece that fails nothing more of it is sent.
void writePlan(Session& session, Output& out, Write_Plan& plan);

// What the controller holds in the places of the plans, in their order. Throws Tool_Error for what is not read.
std::vector<std::string> readBack(Session& session, Output& out, const std::vector<const Write_Plan*>& plans,
                                  const char* notRead);

// "01 F4 00 ... (512 bytes)"
std::string shortHex(const std::string& bytes);
bool isLong(const std::string& bytes);

}  // namespace vornex

#endif
