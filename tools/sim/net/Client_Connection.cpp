#include "sim/net/Client_Connection.h"

#include <algorithm>
#include <utility>

#include "sim/net/Server.h"

namespace vornex::sim {
namespace {

// Answers under way to one client. As long as it leaves so much lying, its next request waits, and with it the client's
// own sending: its memory, not ours, holds what it does not take.
constexpr std::size_t StepLimit = 64;
constexpr std::size_t ByteLimit = 65536;
constexpr int SystemBytes = 65536;                // the same for what the system holds, which would grow to megabytes
constexpr std::size_t HeldLimit = 4 * ByteLimit;  // a fault that holds answers back lets so much go

}  // namespace

Client_Connection::Client_Connection(asio::ip::tcp::socket clientSocket, Server& owner, std::uint64_t number)
    : socket(std::move(clientSocket)),
      server(owner),
      id(number),
      sendTimer(socket.get_executor()),
      frameTimer(socket.get_executor()) {}

void Client_Connection::start() {
    asio::error_code ignored;
    socket.set_option(asio::ip::tcp::no_delay(true), ignored);
    socket.set_option(asio::socket_base::send_buffer_size(SystemBytes), ignored);
    receive();
}

void Client_Connection::note(const std::string& text) const {
    server.controller.log("client " + std::to_string(id) + ": " + text);
}

void Client_Connection::end(bool reset) {
    if (over) return;
    over = true;
    asio::error_code ignored;
    if (reset) socket.set_option(asio::socket_base::linger(true, 0), ignored);
    socket.close(ignored);
    sendTimer.cancel();
    frameTimer.cancel();
    server.forget(shared_from_this());
}

void Client_Connection::receive() {
    if (over || receiving) return;
    receiving = true;
    socket.async_read_some(asio::buffer(chunk),
                           [self = shared_from_this()](const asio::error_code& error, std::size_t bytes) {
                               self->receiving = false;
                               self->onReceived(error, bytes);
                           });
}

void Client_Connection::onReceived(const asio::error_code& error, std::size_t bytes) {
    if (over) return;
    if (error) {
        server.trace("client " + std::to_string(id) + " left: " + error.message());
        // a client that only closed its own direction still gets its answers
        if (error != asio::error::eof || outputEnded) return end(false);
        inputEnded = true;
        return serveNext();
    }
    server.controller.stats.bytesIn += bytes;
    if (outputEnded) return receive();
    received.append(chunk.data(), bytes);
    serveNext();
}

bool Client_Connection::isFull() const { return steps.size() >= StepLimit || stepBytes >= ByteLimit; }

// One frame a turn: however many a client sends at once, the others have their turns in between. onSent comes back here
// when there is room for an answer again.
void Client_Connection::serveNext() {
    if (over || outputEnded || turnTaken || isFull()) return;
    const Parsed_Frame frame = parseFrame(std::string_view(received).substr(served), server.caps.frame);
    if (frame.kind == Parsed_Frame::Kind::Incomplete) return awaitMore();
    served += frame.bytes;
    frameTimed = false;
    take(frame);
    if (over || outputEnded) return;
    if (served == received.size() && !inputEnded) return awaitMore();
    turnTaken = true;
    asio::post(socket.get_executor(), [self = shared_from_this()] {
        self->turnTaken = false;
        self->serveNext();
    });
}

void Client_Connection::take(const Parsed_Frame& frame) {
    if (frame.kind != Parsed_Frame::Kind::Good) {
        rejectFrame(frame);
    } else if (replyBytes(frame.request) > server.caps.frame) {
        ++server.controller.stats.badFrames;
        note("not answered, the answer would be over the limit: " + requestText(frame.request));
    } else {
        serve(frame.request);
    }
}

// Nothing complete is left to serve: what there is begins a frame, which has a time of its own.
void Client_Connection::awaitMore() {
    received.erase(0, std::exchange(served, 0));
    if (inputEnded) {
        if (steps.empty()) end(false);
        return;
    }
    if (received.empty()) {
        frameTimer.cancel();
    } else if (!frameTimed) {
        startFrameTime();
    }
    receive();
}

// An intact length leads to the next frame, so a controller stays silent and the client's time-out does the rest. Where
// not even the beginning is right, nothing that follows can be trusted: the connection is closed.
void Client_Connection::rejectFrame(const Parsed_Frame& frame) {
    ++server.controller.stats.badFrames;
    const bool broken = frame.kind == Parsed_Frame::Kind::Broken;
    note("bad frame, " + std::string(broken ? "connection closed: " : "not answered: ") + frame.reason);
    if (broken) end(false);
}

void Client_Connection::startFrameTime() {
    frameTimed = true;
    frameTimer.expires_after(Milliseconds(server.caps.frameTime));
    frameTimer.async_wait([self = shared_from_this()](const asio::error_code& error) {
        // it may have run out just before a frame was completed
        const bool early = self->frameTimer.expiry() > std::chrono::steady_clock::now();
        if (error || early || self->over || !self->frameTimed) return;
        ++self->server.controller.stats.slowFrames;
        self->note("frame not complete in time, connection closed");
        self->end(false);
    });
}

void Client_Connection::serve(const Request& request) {
    server.trace("client " + std::to_string(id) + ": " + requestText(request));
    Delivery delivery = server.controller.answer(request, previous, server.now());
    if (delivery.stall) server.stall(delivery.stall);
    if (delivery.kill) return server.kill();
    if (delivery.refuse) return server.refuse(*delivery.refuse);
    deliver(std::move(delivery));
    pump();
}

void Client_Connection::deliver(Delivery delivery) {
    Milliseconds wait(delivery.delay);
    if (heldWay.hold == Delivery::Hold::Late) {
        add({Milliseconds(0), std::move(held)});
        wait += Milliseconds(heldWay.holdGap);
    } else if (heldWay.hold == Delivery::Hold::Glue) {
        delivery.bytes.insert(0, held);
    }
    held.clear();
    heldWay = Delivery();
    if (delivery.hold != Delivery::Hold::No && delivery.bytes.size() < HeldLimit) {
        held = std::move(delivery.bytes);
        heldWay = std::move(delivery);
        return;
    }
    add({wait, std::move(delivery.bytes), delivery.pieceBytes, Milliseconds(delivery.pieceGap), delivery.end});
}

void Client_Connection::add(Step step) {
    if (step.bytes.empty() && step.end == Delivery::End::None) return;
    stepBytes += step.bytes.size();
    steps.push_back(std::move(step));
}

void Client_Connection::pump() {
    if (over || sending || steps.empty()) return;
    sending = true;
    const Milliseconds wait = std::max(steps.front().wait, server.stallLeft());
    steps.front().wait = Milliseconds(0);
    if (wait.count() == 0) return send();
    sendTimer.expires_after(wait);
    sendTimer.async_wait([self = shared_from_this()](const asio::error_code& error) {
        self->sending = false;
        // once more from the top: the controller may have begun to stand still meanwhile
        if (!error) self->pump();
    });
}

void Client_Connection::send() {
    const Step& step = steps.front();
    const std::size_t left = step.bytes.size() - step.sent;
    const std::size_t piece = step.pieceBytes ? std::min(step.pieceBytes, left) : left;
    server.controller.stats.bytesOut += piece;
    asio::async_write(
        socket, asio::buffer(step.bytes.data() + step.sent, piece),
        [self = shared_from_this()](const asio::error_code& error, std::size_t bytes) { self->onSent(error, bytes); });
}

void Client_Connection::onSent(const asio::error_code& error, std::size_t bytes) {
    sending = false;
    if (over) return;
    if (error) return end(false);
    Step& step = steps.front();
    step.sent += bytes;
    if (step.sent < step.bytes.size()) {
        step.wait = step.pieceGap;
        return pump();
    }
    const Delivery::End way = step.end;
    stepBytes -= step.bytes.size();
    steps.pop_front();
    if (way == Delivery::End::Rst) return end(true);
    if (way == Delivery::End::Fin) return closeSending();
    pump();
    serveNext();
}

// Goes on reading, what comes is dropped: a close with unread bytes would become a reset.
void Client_Connection::closeSending() {
    asio::error_code ignored;
    socket.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    outputEnded = true;
    steps.clear();
    if (inputEnded) return end(false);
    startFrameTime();  // bounds the wait for the client's own end
    receive();
}

}  // namespace vornex::sim
