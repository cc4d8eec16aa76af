// Plays a recorded link to the driver again: the host's calls and the controller's replies, line by line.
#ifndef VORNEX_TRACE_TRACE_PLAYER_H
#define VORNEX_TRACE_TRACE_PLAYER_H

#include <string>

#include <nlohmann/json_fwd.hpp>

#include "host/Driver_Library.h"

namespace vornex {

// What the driver did otherwise than the record says.
struct Trace_Difference {
    std::string recorded;
    std::string now;
};

// Repeats the calls on a driver that has not been used yet. Not for several threads.
class Trace_Player {
public:
    // `entryPoints` have to outlive the player. The driver keeps a pointer to the player's settings: it is not to be
    // used after the player is gone.
    explicit Trace_Player(const Driver_Entry_Points& entryPoints) : driver(entryPoints) {}

    // One line; a blank one does nothing. Throws std::invalid_argument with the reason for a line that is no part of a
    // record, File_Error for a mistake in the label file it holds, Trace_Difference for another outcome.
    void play(const std::string& line);

    int frames = 0;  // compared so far
    int calls = 0;   // of the host, repeated so far

private:
    void playEvent(const nlohmann::json& event);
    void start(const nlohmann::json& event);
    void passLabels(QList<Label_Type_Info> labels) { driver.PassVarName_2(&labels); }
    void memory(const nlohmann::json& event);
    void poll(const nlohmann::json& event);
    void read(const nlohmann::json& event);
    void write(const nlohmann::json& event);
    void frame(const nlohmann::json& event);
    void reply(const nlohmann::json& event);
    void idle();

    const Driver_Entry_Points& driver;
    ComInfo comInfo;
    bool started = false;
};

}  // namespace vornex

#endif
