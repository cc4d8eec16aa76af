#include "text/Text_Input.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace vornex {
namespace {

constexpr std::size_t LongestText = std::size_t(64) << 20;
constexpr std::size_t LongestLine = 2 * LongestText;
constexpr std::size_t Piece = 65536;

}  // namespace

std::string wholeText(const std::string& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) throw File_Error(path + ": is a folder, not a file");
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw File_Error(path + ": cannot be read: " + std::strerror(errno));
    std::string text;
    for (std::string piece(Piece, '\0'); stream;) {
        stream.read(&piece[0], static_cast<std::streamsize>(piece.size()));
        text.append(piece, 0, static_cast<std::size_t>(stream.gcount()));
        if (text.size() > LongestText) throw File_Error(path + ": has more than 64 MiB");
    }
    if (stream.bad()) throw File_Error(path + ": cannot be read: " + std::strerror(errno));
    return text;
}

std::string wideEncoding(const std::string& text) {
    const std::string head = text.substr(0, 4) + "xxxx";
    const bool isWide = head.compare(0, 4, std::string("\xFF\xFE\0\0", 4)) == 0 ||
                        head.compare(0, 4, std::string("\0\0\xFE\xFF", 4)) == 0;
    const bool isMarked = head.compare(0, 2, "\xFF\xFE") == 0 || head.compare(0, 2, "\xFE\xFF") == 0;
    const bool isHalfZero = (head[0] == '\0') != (head[1] == '\0');
    if (isWide) return "UTF-32";
    return isMarked || isHalfZero ? "UTF-16" : "";
}

std::string wholeUtf8(const std::string& path) {
    std::string text = wholeText(path);
    const std::string encoding = wideEncoding(text);
    if (!encoding.empty()) throw File_Error(path + ": is " + encoding + " text; save it as UTF-8");
    return text;
}

bool nextLine(std::istream& in, std::string& line) {
    constexpr int End = std::istream::traits_type::eof();
    line.clear();
    std::streambuf& bytes = *in.rdbuf();
    try {
        int byte = bytes.sbumpc();
        if (byte == End) return false;
        for (; byte != End && byte != '\n'; byte = bytes.sbumpc()) {
            if (line.size() == LongestLine) throw std::invalid_argument("the line has more than 128 MiB");
            line += static_cast<char>(byte);
        }
    } catch (const std::ios_base::failure&) {
        throw std::invalid_argument(std::string("cannot be read: ") + std::strerror(errno));
    }
    return true;
}

}  // namespace vornex
