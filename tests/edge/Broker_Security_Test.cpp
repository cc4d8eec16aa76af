// vornex-edge and a broker that wants to know who comes, and shows who it is.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "Plant.h"

namespace vornex::test {
namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

void run(const Words& command) {
    Process process(command);
    ASSERT_EQ(process.finish(false), 0) << process.log();
}

// A signed pair NAME.crt and NAME.key; one without a signer signs itself.
void certify(const std::string& folder, const std::string& name, const std::string& signer, const std::string& more) {
    const std::string at = folder + "/" + name;
    const Words key = {"-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-keyout", at + ".key"};
    if (signer.empty()) {
        Words command = {OPENSSL, "req", "-x509", "-days", "2", "-subj", "/CN=" + name, "-out", at + ".crt"};
        command.insert(command.end(), key.begin(), key.end());
        return run(command);
    }
    Words request = {OPENSSL, "req", "-subj", "/CN=" + name, "-out", at + ".csr"};
    request.insert(request.end(), key.begin(), key.end());
    run(request);
    std::ofstream(at + ".ext") << more;
    run({OPENSSL, "x509", "-req", "-days", "2", "-in", at + ".csr", "-CA", folder + "/" + signer + ".crt", "-CAkey",
         folder + "/" + signer + ".key", "-CAcreateserial", "-extfile", at + ".ext", "-out", at + ".crt"});
}

struct Broker_Security : ::testing::Test {
    Broker_Security() : folder(WORK_DIR "/security-" + std::to_string(getpid())) {
        fs::remove_all(folder);
        fs::create_directories(folder);
        certify(folder, "plant", "", "");
        certify(folder, "stranger", "", "");
        certify(folder, "broker", "plant", "subjectAltName=IP:127.0.0.1\n");
        certify(folder, "press3", "plant", "extendedKeyUsage=clientAuth\n");
        run({MOSQUITTO_PASSWD, "-c", "-b", file("users"), "edge", "right"});
        std::ofstream(file("right")) << "right\n";
        std::ofstream(file("wrong")) << "wrong\n";
        fs::permissions(file("right"), fs::perms::owner_read);
        fs::permissions(file("wrong"), fs::perms::others_read, fs::perm_options::add);
        if (geteuid() == 0) fs::permissions(folder, fs::perms::all);  // the broker gives its rights away
        for (const char* const name : {"users", "broker.key"})
            fs::permissions(file(name), fs::perms::owner_read | fs::perms::others_read, fs::perm_options::add);
    }
    ~Broker_Security() override { fs::remove_all(folder); }

    std::string file(const std::string& name) const { return folder + "/" + name; }
    // A word that begins with @ is a file.
    std::unique_ptr<Process> edge(const std::string& address, const Words& options) const {
        Words command = {EDGE,      "-l",      PLANT,        "-t",    "127.0.0.1:1", "--broker",        address,
                         "--group", "plant",   "--node",     "line3", "--poll",      "Setpoint @ 1000", "--device",
                         "press3",  "--state", file("state")};
        for (const std::string& option : options)
            command.push_back(option[0] == '@' ? file(option.substr(1)) : option);
        return std::make_unique<Process>(command);
    }

    const std::string folder;
};

TEST_F(Broker_Security, isBornOnlyWhereBothSidesAreWhoTheySay) {
    const std::string tls = "cafile " + file("plant.crt") + "\ncertfile " + file("broker.crt") + "\nkeyfile " +
                            file("broker.key") + "\ntls_version tlsv1.2\n";
    const std::string users = "allow_anonymous false\npassword_file " + file("users") + "\n";
    const std::string certificates = "require_certificate true\nuse_identity_as_username true\nallow_anonymous false\n";
    const struct {
        const char* name;
        std::string security;
        const char* host;
        Words options;
        const char* refusal;  // in the log; none: it is born
    } rows[] = {
        {"a user", users, "127.0.0.1", {"--user", "edge", "--password-file", "@right"}, nullptr},
        {"a wrong password", users, "127.0.0.1", {"--user", "edge", "--password-file", "@wrong"}, "not authorised"},
        {"no user", users, "127.0.0.1", {}, "not authorised"},
        {"TLS and a user",
         tls + users,
         "127.0.0.1",
         {"--ca-file", "@plant.crt", "--user", "edge", "--password-file", "@right"},
         nullptr},
        {"without TLS", tls + "allow_anonymous true\n", "127.0.0.1", {}, "no connection to the broker"},
        {"signed by another",
         tls + "allow_anonymous true\n",
         "127.0.0.1",
         {"--ca-file", "@stranger.crt"},
         "no connection to the broker: TLS: certificate verify failed"},
        {"another's name",
         tls + "allow_anonymous true\n",
         "localhost",
         {"--ca-file", "@plant.crt"},
         "no connection to the broker: TLS: certificate verify failed"},
        {"believed by option",
         tls + "allow_anonymous true\n",
         "localhost",
         {"--ca-file", "@stranger.crt", "--unverified"},
         nullptr},
        {"a certificate of its own",
         tls + certificates,
         "127.0.0.1",
         {"--ca-file", "@plant.crt", "--certificate", "@press3.crt", "--key", "@press3.key"},
         nullptr},
        {"no certificate", tls + certificates, "127.0.0.1", {"--ca-file", "@plant.crt"}, "no connection to the broker"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Broker broker(folder, row.security);
        Plant_Host host(broker.port());
        const auto program = edge(std::string(row.host) + ":" + std::to_string(broker.securedPort()), row.options);
        if (row.refusal)
            program->waitForLog(row.refusal);
        else
            EXPECT_TRUE(host.waitFor("NBIRTH")) << program->log();
        std::cerr << row.name << " " << clockMs() << "\n" << program->log();
        EXPECT_EQ(program->finish(), 0) << program->log();
        EXPECT_EQ(program->log().find("wrong: everybody can read this password") != std::string::npos,
                  std::string(row.name) == "a wrong password");
        EXPECT_EQ(program->log().find("right"), std::string::npos) << "a secret in the log";
        EXPECT_EQ(host.heard.empty(), row.refusal != nullptr);
    }
}

}  // namespace
}  // namespace vornex::test
