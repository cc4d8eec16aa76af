// The rules of an edge node, each with the public id of its assertion.
#include <unistd.h>

#include <fstream>

#include <gtest/gtest.h>

#include "edge/node/Birth_Number.h"
#include "edge/node/Edge_Node.h"

namespace vornex::edge {
namespace {

// "Speed=7", "HSpeed=7" when it is historical, "Speed=" of null.
std::string textOf(const Metric& metric) {
    const auto words = [](const auto& value) -> std::string {
        using Kind = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<Kind, std::monostate>) return "";
        if constexpr (std::is_same_v<Kind, bool>) return value ? "true" : "false";
        if constexpr (std::is_same_v<Kind, std::string>) return value;
        if constexpr (std::is_integral_v<Kind> && !std::is_same_v<Kind, bool>) return std::to_string(value);
        return "a float";
    };
    const std::string name = metric.name.empty() ? "#" + std::to_string(*metric.alias) : metric.name;
    return (metric.isHistorical ? "H" : "") + name + "=" + std::visit(words, metric.value);
}

struct World : Node_Port {
    bool publish(const Message& message) override {
        if (!takes) return false;
        const std::size_t type = message.topic.find('/', 8) + 1;
        const Payload payload = decode(message.payload);
        std::string line = message.topic.substr(type, message.topic.find('/', type) - type);
        line += payload.seq ? " " + std::to_string(*payload.seq) : " -";
        for (const Metric& metric : payload.metrics)
            line += " " + textOf(metric);
        EXPECT_EQ(message.qos, line.rfind("NDEATH", 0) == 0 ? 1 : 0) << line;
        lines.push_back(line);
        last = message;
        return true;
    }
    void subscribe(const std::string& topic, int qos) override {
        lines.push_back("subscribe " + std::to_string(qos) + " " + topic);
    }
    void write(const Wanted_Write& wanted) override {
        lines.push_back("write " + std::to_string(wanted.metric) + " " + wanted.value);
    }
    void leave() override { lines.push_back("leave"); }
    void tell(const std::string& words) override { told.push_back(words); }

    std::vector<std::string> take() { return std::exchange(lines, {}); }

    bool takes = true;
    std::vector<std::string> lines, told;
    Message last;
};
using Lines = std::vector<std::string>;
const char Birth[] = "NBIRTH 0 bdSeq=7 Node Control/Rebirth=false";
const char StateTopic[] = "spBv1.0/STATE/scada";

struct Node : ::testing::Test {
    static Node_Settings settingsOf(const std::string& host) {
        Node_Settings settings;
        settings.ids = {"plant", "line3", "press3"};
        settings.primaryHost = host;
        settings.metrics = {{"Speed", Data_Type::UInt16, {}, false}, {"Setpoint", Data_Type::Int16, {}, true}};
        settings.commandsPerSecond = 3;
        return settings;
    }
    void begin(const std::string& host = "", bool isUp = true) {
        node = std::make_unique<Edge_Node>(settingsOf(host), world);
        willMessage = node->will(7, now);
        if (isUp) node->deviceUp({{0, std::uint32_t(100), 5}}, now);
        node->connected(now);
    }
    void born() {
        begin();
        world.take();
    }
    void hostState(bool isOnline, std::uint64_t time) {
        node->received(StateTopic,
                       std::string("{\"online\":") + (isOnline ? "true" : "false") +
                           ",\"timestamp\":" + std::to_string(time) + "}",
                       true, now);
    }
    void command(const char* type, const std::string& name, Wire_Value value, std::optional<Data_Type> datatype = {},
                 bool isRetained = false) {
        Metric metric;
        metric.name = name;
        metric.value = std::move(value);
        metric.type = datatype;
        const std::string device = std::string(type) == "DCMD" ? "/press3" : "";
        node->received(std::string("spBv1.0/plant/") + type + "/line3" + device, encode({1, {metric}, {}}), isRetained,
                       now);
    }

    World world;
    std::unique_ptr<Edge_Node> node;
    Message willMessage;
    Moment now{1700000000000, 5000};
};

// tck-id-message-flow-edge-node-ncmd-subscribe, tck-id-message-flow-device-dcmd-subscribe,
// tck-id-topics-nbirth-seq-num, tck-id-topics-nbirth-bdseq-matching, tck-id-topics-nbirth-rebirth-metric,
// tck-id-payloads-dbirth-order, tck-id-payloads-ndeath-will-message-qos, tck-id-payloads-ndeath-seq
TEST_F(Node, subscribesThenIsBornThenItsDevice) {
    begin();
    EXPECT_EQ(world.take(),
              (Lines{"subscribe 1 spBv1.0/plant/NCMD/line3", "subscribe 1 spBv1.0/plant/DCMD/line3/press3",
                     "subscribe 0 spBv1.0/plant/NBIRTH/line3", Birth, "DBIRTH 1 Speed=100 Setpoint="}));
    EXPECT_EQ(willMessage.topic, "spBv1.0/plant/NDEATH/line3");
    EXPECT_EQ(willMessage.qos, 1);
    const Payload will = decode(willMessage.payload);
    EXPECT_FALSE(will.seq);
    EXPECT_EQ(textOf(will.metrics.at(0)), "bdSeq=7");
}

// tck-id-payloads-sequence-num-incrementing, tck-id-payloads-sequence-num-always-included
TEST_F(Node, countsEveryMessageThatIsTakenAndNoOther) {
    born();
    for (int i = 2; i < 255; ++i)
        ASSERT_TRUE(node->send({{0, std::uint32_t(i), 9}}, false, now));
    world.take();
    world.takes = false;
    EXPECT_FALSE(node->send({{0, std::uint32_t(1), 9}}, false, now));
    world.takes = true;
    node->send({{0, std::uint32_t(2), 9}, {1, std::uint32_t(3), 9}}, true, now);
    node->deviceDown(now);
    node->deviceUp({}, now);
    EXPECT_EQ(world.take(), (Lines{"DDATA 255 HSpeed=2 HSetpoint=3", "DDEATH 0", "DBIRTH 1 Speed=1 Setpoint="}));
}

// tck-id-operational-behavior-device-ddeath, tck-id-payloads-dbirth-order: no data of a device that is not born
TEST_F(Node, sendsNoDataWithoutBirths) {
    begin("", false);
    EXPECT_EQ(world.take().back(), Birth);
    EXPECT_FALSE(node->send({{0, std::uint32_t(3), 9}}, false, now));
    node->deviceDown(now);  // it was never there
    EXPECT_TRUE(world.take().empty());
    node->deviceUp({}, now);
    EXPECT_EQ(world.take(), Lines{"DBIRTH 1 Speed=3 Setpoint="});
    node->disconnected();
    EXPECT_FALSE(node->send({{0, std::uint32_t(4), 9}}, true, now));
    node->end(now);
    EXPECT_TRUE(world.take().empty());
}

// tck-id-operational-behavior-data-commands-rebirth-action-1, -2, -3
TEST_F(Node, isBornAgainWithTheSameNumberAndNotTooOften) {
    born();
    node->send({{0, std::uint32_t(101), 9}}, false, now);
    now.steadyMs += 1000;
    command("NCMD", "Node Control/Rebirth", true);
    const Lines births = {Birth, "DBIRTH 1 Speed=101 Setpoint="};
    EXPECT_EQ(world.take(), (Lines{"DDATA 2 Speed=101", births[0], births[1]}));
    command("NCMD", "Node Control/Rebirth", true);
    command("NCMD", "Node Control/Rebirth", true);
    now.steadyMs += 999;
    node->tick(now);
    EXPECT_TRUE(world.take().empty());
    now.steadyMs += 1;
    node->tick(now);
    EXPECT_EQ(world.take(), births);
}

// A birth that is not taken is given again, and no data go before it.
TEST_F(Node, repeatsABirthThatWasNotTaken) {
    world.takes = false;
    begin();
    EXPECT_FALSE(node->isLive());
    world.takes = true;
    world.take();
    now.steadyMs += 1000;
    node->tick(now);
    EXPECT_EQ(world.take(), (Lines{Birth, "DBIRTH 1 Speed=100 Setpoint="}));
    world.takes = false;
    node->deviceDown(now);
    world.takes = true;
    now.steadyMs += 1000;
    node->tick(now);
    EXPECT_EQ(world.take(), Lines{Birth});
}

// tck-id-message-flow-edge-node-birth-publish-phid-wait, -phid-wait-online, -phid-wait-timestamp, -phid-offline,
// tck-id-operational-behavior-edge-node-intentional-disconnect-ndeath, -intentional-disconnect-packet
TEST_F(Node, followsItsPrimaryHost) {
    begin("scada");
    EXPECT_EQ(world.take().back(), std::string("subscribe 1 ") + StateTopic);
    hostState(false, 50);
    hostState(true, 49);  // older
    node->received(StateTopic, "{\"online\":1,\"timestamp\":60}", true, now);
    node->received(StateTopic, "{\"online\":true}", true, now);
    node->received(StateTopic, "ONLINE", true, now);
    node->received("spBv1.0/STATE/other", "{\"online\":true,\"timestamp\":60}", true, now);
    EXPECT_TRUE(world.take().empty());
    EXPECT_EQ(world.told.size(), 3u);
    hostState(true, 50);
    EXPECT_EQ(world.take().size(), 2u);
    hostState(false, 49);
    EXPECT_TRUE(world.take().empty());
    hostState(false, 50);
    EXPECT_EQ(world.take(), (Lines{"NDEATH - bdSeq=7", "leave"}));
    EXPECT_FALSE(node->isLive());
}

TEST_F(Node, commandsAreDeniedUnlessAllIsRight) {
    struct {
        const char* type;
        const char* name;
        Wire_Value value;
        std::optional<Data_Type> datatype;
        bool isRetained;
        const char* refused;  // null: "write 1 -5"
    } const rows[] = {
        {"DCMD", "Setpoint", 0xFFFFFFFBu, Data_Type::Int16, false, nullptr},
        {"DCMD", "Setpoint", 0xFFFFFFFBu, {}, false, nullptr},
        {"DCMD", "Setpoint", 0xFFFFFFFBu, {}, true, "retained"},
        {"DCMD", "Setpoint", 0xFFFFFFFBu, Data_Type::Int32, false, "type"},
        {"DCMD", "Setpoint", 40000u, {}, false, "value"},
        {"DCMD", "Setpoint", std::string("5"), {}, false, "value"},
        {"DCMD", "Setpoint", {}, {}, false, "value"},
        {"DCMD", "Speed", 5u, {}, false, "not writable"},
        {"DCMD", "setpoint", 5u, {}, false, "unknown"},
        {"DCMD", "", 5u, {}, false, "unknown"},
        {"NCMD", "Setpoint", 5u, {}, false, "unknown"},
        {"NCMD", "Node Control/Rebirth", false, {}, false, "value"},
        {"NCMD", "Node Control/Reboot", true, {}, false, "unknown"},
    };
    born();
    for (const auto& row : rows) {
        const std::map<std::string, std::uint64_t> before = node->counts().refused;
        now.steadyMs += 1000;
        command(row.type, row.name, row.value, row.datatype, row.isRetained);
        std::map<std::string, std::uint64_t> expected = before;
        if (row.refused) ++expected[row.refused];
        EXPECT_EQ(world.take(), row.refused ? Lines{} : Lines{"write 1 -5"}) << row.name;
        EXPECT_EQ(node->counts().refused, expected) << row.name;
    }
    node->received("spBv1.0/plant/DCMD/line3/press3", "\xFF", false, now);
    EXPECT_EQ(node->counts().refused.at("no payload"), 1u);
    for (int i = 0; i < 4; ++i)
        command("DCMD", "Setpoint", 1u);
    EXPECT_EQ(node->counts().refused.at("rate"), 1u);
    node->deviceDown(now);
    command("DCMD", "Setpoint", 1u);
    EXPECT_EQ(node->counts().refused.at("controller away"), 1u);
    EXPECT_EQ(node->counts().commands, 5u);
}

TEST_F(Node, tellsOfAnotherNodeWithItsIdentity) {
    born();
    const std::string own = "spBv1.0/plant/NBIRTH/line3";
    command("NCMD", "Node Control/Rebirth", true);
    now.steadyMs += 1000;
    node->tick(now);
    node->send({{0, std::uint32_t(1), 9}}, false, now);
    World echo;
    Edge_Node other(settingsOf(""), echo);
    other.will(8, now);
    other.connected(now);
    node->received(own, echo.last.payload, false, now);
    EXPECT_EQ(world.told.size(), 1u);
    Edge_Node same(settingsOf(""), echo);
    same.will(7, now);
    same.connected(now);
    node->received(own, echo.last.payload, false, now);
    EXPECT_EQ(world.told.size(), 1u);
}

TEST(Topics, refuseIdsThatNoTopicHas) {
    for (const Node_Ids& ids : {Node_Ids{"a/b", "n", "d"}, Node_Ids{"g", "", "d"}, Node_Ids{"g", "n", "d+"},
                                Node_Ids{"g#", "n", "d"}, Node_Ids{"g", "n\n", "d"}, Node_Ids{"g", "n", "\xFF"}})
        EXPECT_THROW(Topics(ids, ""), std::invalid_argument) << ids.group << ids.node << ids.device;
    EXPECT_THROW(Topics({"g", "n", "d"}, "a/b"), std::invalid_argument);
}

// tck-id-topics-nbirth-bdseq-increment
TEST(Birth_Numbers, goRoundOnTheDisk) {
    const std::string file = WORK_DIR "/birth-number";
    unlink(file.c_str());
    struct {
        const char* before;  // null: as it was left
        int next;
        bool isProblem;
    } const rows[] = {{nullptr, 0, false}, {nullptr, 1, false}, {"254\n", 255, false},
                      {nullptr, 0, false}, {"256\n", 0, true},  {"", 0, true}};
    for (const auto& row : rows) {
        if (row.before) std::ofstream(file) << row.before;
        Birth_Number number(file);
        EXPECT_EQ(!number.takeProblem().empty(), row.isProblem) << (row.before ? row.before : "");
        EXPECT_EQ(number.next(), row.next) << (row.before ? row.before : "");
    }
    Birth_Number nowhere(WORK_DIR "/no-such-folder/birth-number");
    EXPECT_EQ(nowhere.next(), 0);
    EXPECT_FALSE(nowhere.takeProblem().empty());
    EXPECT_EQ(nowhere.next(), 1);
}

}  // namespace
}  // namespace vornex::edge
