// The peers: two libraries that a user would take instead, each fetching as many registers as its protocol allows.
#include <errno.h>
#include <modbus.h>

#include <QtCore/QEventLoop>
#include <QtCore/QVariant>
#include <QtSerialBus/QModbusDataUnit>
#include <QtSerialBus/QModbusReply>
#include <QtSerialBus/QModbusTcpClient>

#include "Loopback_Contender.h"

namespace {

enum { UnitNumber = 1 };

class Modbus : public Contender {
public:
    explicit Modbus(int port) : link_(modbus_new_tcp("127.0.0.1", port)) {
        if (link_ == nullptr || modbus_connect(link_) != 0) fail("libmodbus connect");
    }
    ~Modbus() override {
        modbus_close(link_);
        modbus_free(link_);
    }

    int bytes() const override { return 2 * Registers; }

    void exchange(int times) override {
        uint16_t values[Registers];
        for (int i = 0; i < times; ++i)
            if (modbus_read_registers(link_, 0, Registers, values) != Registers) fail(modbus_strerror(errno));
    }

private:
    modbus_t* const link_;
};

class Serial_Bus : public Contender {
public:
    explicit Serial_Bus(int port) {
        client_.setConnectionParameter(QModbusDevice::NetworkPortParameter, port);
        client_.setConnectionParameter(QModbusDevice::NetworkAddressParameter, QString::fromLatin1("127.0.0.1"));
        QObject::connect(&client_, &QModbusClient::stateChanged, &loop_, [this](QModbusDevice::State state) {
            if (state == QModbusDevice::ConnectedState) loop_.quit();
        });
        if (!client_.connectDevice()) fail("Qt SerialBus connect");
        if (client_.state() != QModbusDevice::ConnectedState) loop_.exec();
    }

    int bytes() const override { return 2 * Registers; }

    void exchange(int times) override {
        left_ = times;
        request();
        loop_.exec();
    }

private:
    void request() {
        const QModbusDataUnit block(QModbusDataUnit::HoldingRegisters, 0, Registers);
        QModbusReply* const reply = client_.sendReadRequest(block, UnitNumber);
        if (reply == nullptr) fail("Qt SerialBus request");
        QObject::connect(reply, &QModbusReply::finished, &loop_, [this, reply] { finish(reply); });
    }

    void finish(QModbusReply* reply) {
        if (reply->error() != QModbusDevice::NoError || reply->result().valueCount() != Registers)
            fail("Qt SerialBus reply: " + reply->errorString().toStdString());
        reply->deleteLater();
        if (--left_ > 0)
            request();
        else
            loop_.quit();
    }

    QModbusTcpClient client_;
    QEventLoop loop_;
    int left_ = 0;
};

}  // namespace

std::unique_ptr<Contender> makeModbus(int port) { return std::unique_ptr<Contender>(new Modbus(port)); }

std::unique_ptr<Contender> makeSerialBus(int port) { return std::unique_ptr<Contender>(new Serial_Bus(port)); }
