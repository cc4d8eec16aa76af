#include "Session.h"

#include <algorithm>

#include "Server.h"

namespace vornex::sim {
namespace {

constexpr std::size_t StepLimit = 64;  // answers under way; a client that does not take them is not read any more

}  // namespace

Session::Session(asio::ip::tcp::socket clientSocket, Server& owner, std::uint64_t number)
    : socket(std::move(clientSocket)),
      server(owner),
      id(number),
      sendTimer(socket.get_executor()),
      frameTimer(socket.get_executor()) {}

void Session::start() {
    asio::error_code ignored;
    socket.set_option(asio::ip::tcp::no_delay(true), ignored);
    receive();
}

void Session::note(const std::string& text) const {
    server.controller.log("client " + std::to_string(id) + ": " + text);
}

void Session::end(bool reset) {
    if (over) return;
    over = true;
    asio::error_code ignored;
    if (reset) socket.set_option(asio::socket_base::linger(true, 0), ignored);
    socket.close(ignored);
    sendTimer.cancel();
    frameTimer.cancel();
    server.forget(shared_from_this());
}

void Session::receive() {
    if (over || receiving || steps.size() > StepLimit) return;
    receiving = true;
    socket.async_read_some(asio::buffer(chunk),
                           [self = shared_from_this()](const asio::error_code& error, std::size_t bytes) {
                               self->receiving = false;
                               self->onReceived(error, bytes);
                           });
}

void Session::onReceived(const asio::error_code& error, std::size_t bytes) {
    if (over) return;
    if (error) {
        inputEnded = true;
        server.trace("client " + std::to_string(id) + " left: " + error.message());
        // a client that only closed its own direction still gets its answers
        if (error != asio::error::eof || steps.empty()) end(false);
        return;
    }
    server.controller.stats.bytesIn += bytes;
    if (!inputEnded) {
        received.insert(received.end(), chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(bytes));
        const std::size_t before = received.size();
        if (!serveFrames()) return;
        watchFrameTime(received.size() < before);
    }
    receive();
}

// False when the connection is over.
bool Session::serveFrames() {
    std::size_t used = 0;
    while (!over && !inputEnded && used < received.size()) {
        const Parsed_Frame frame = parseFrame(received.data() + used, received.size() - used, server.caps.frame);
        if (frame.kind == Parsed_Frame::Kind::Incomplete) break;
        used += frame.bytes;
        if (frame.kind != Parsed_Frame::Kind::Good) {
            if (!rejectFrame(frame)) return false;
        } else if (replyBytes(frame.request) > server.caps.frame) {
            ++server.controller.stats.badFrames;
            note("not answered, the answer would be over the limit: " + requestText(frame.request));
        } else {
            serve(frame.request);
        }
    }
    received.erase(received.begin(), received.begin() + static_cast<std::ptrdiff_t>(std::min(used, received.size())));
    return !over;
}

// An intact length leads to the next frame, so a controller stays silent and the client's time-out does the rest. Where
// not even the beginning is right, nothing that follows can be trusted: the connection is closed.
bool Session::rejectFrame(const Parsed_Frame& frame) {
    ++server.controller.stats.badFrames;
    const bool broken = frame.kind == Parsed_Frame::Kind::Broken;
    note("bad frame, " + std::string(broken ? "connection closed: " : "not answered: ") + frame.reason);
    if (broken) end(false);
    return !broken;
}

// A frame was completed: what is left is the beginning of another, with a time of its own.
void Session::watchFrameTime(bool completed) {
    const bool partial = !received.empty();
    if (partial == frameTimed && !completed) return;
    frameTimed = partial;
    if (!partial) {
        frameTimer.cancel();
        return;
    }
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

void Session::serve(const Request& request) {
    server.trace("client " + std::to_string(id) + ": " + requestText(request));
    Delivery delivery = server.controller.answer(request, previous, server.now());
    if (delivery.stall) server.stall(delivery.stall);
    if (delivery.kill) return server.kill();
    if (delivery.refuse) return server.refuse(*delivery.refuse);
    deliver(std::move(delivery));
    pump();
}

void Session::deliver(Delivery delivery) {
    Milliseconds wait(delivery.delay);
    if (heldWay.hold == Delivery::Hold::Late) {
        steps.push_back({Milliseconds(0), std::move(held), Delivery::End::None});
        wait += Milliseconds(heldWay.holdGap);
    } else if (heldWay.hold == Delivery::Hold::Glue) {
        delivery.bytes.insert(delivery.bytes.begin(), held.begin(), held.end());
    }
    held.clear();
    heldWay = Delivery();
    if (delivery.hold != Delivery::Hold::No) {
        held = std::move(delivery.bytes);
        heldWay = std::move(delivery);
        return;
    }
    addPieces(delivery, wait);
}

void Session::addPieces(const Delivery& delivery, Milliseconds wait) {
    if (delivery.bytes.empty() && delivery.end == Delivery::End::None) return;
    const std::size_t all = delivery.bytes.size();
    const std::size_t piece = delivery.pieceBytes ? delivery.pieceBytes : std::max<std::size_t>(all, 1);
    std::size_t at = 0;
    do {
        const auto begin = delivery.bytes.begin() + static_cast<std::ptrdiff_t>(at);
        const auto bytes = static_cast<std::ptrdiff_t>(std::min(piece, all - at));
        steps.push_back({wait, Bytes(begin, begin + bytes), Delivery::End::None});
        wait = Milliseconds(delivery.pieceGap);
        at += piece;
    } while (at < all);
    steps.back().end = delivery.end;
}

void Session::pump() {
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

void Session::send() {
    server.controller.stats.bytesOut += steps.front().bytes.size();
    asio::async_write(socket, asio::buffer(steps.front().bytes),
                      [self = shared_from_this()](const asio::error_code& error, std::size_t) { self->onSent(error); });
}

void Session::onSent(const asio::error_code& error) {
    sending = false;
    if (over) return;
    if (error) return end(false);
    const Delivery::End way = steps.front().end;
    steps.pop_front();
    if (way == Delivery::End::Rst) return end(true);
    if (way == Delivery::End::Fin) return closeSending();
    if (inputEnded && steps.empty()) return end(false);
    pump();
    receive();
}

// Goes on reading, what comes is dropped: a close with unread bytes would become a reset.
void Session::closeSending() {
    asio::error_code ignored;
    socket.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    steps.clear();
    received.assign(1, 0);  // the frame time bounds the wait for the client's own end
    inputEnded = true;
    watchFrameTime(true);
    receive();
}

}  // namespace vornex::sim
