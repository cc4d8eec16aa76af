// What every room does with texts: trim, split, align by the places that they take on a screen.
#ifndef VORNEX_TEXT_TEXT_H
#define VORNEX_TEXT_TEXT_H

#include <cstddef>
#include <string>
#include <vector>

namespace vornex {

// Without blanks, tabs and carriage returns at both ends.
std::string trimmed(const std::string& text);
// The pieces between the separators, as they are; one piece when there is none.
std::vector<std::string> split(const std::string& text, char separator);
// The same, each without the blanks around it.
std::vector<std::string> splitTrimmed(const std::string& text, char separator);

// "1 byte", "2 bytes"
std::string counted(std::size_t number, const std::string& noun);
// "a, b, c"
std::string joined(const std::vector<std::string>& pieces, const char* between = ", ");

bool endsIn(const std::string& text, const std::string& ending);
// A to Z as a to z; everything else stays.
std::string lowered(std::string text);

// Bytes of the well-formed UTF-8 character at `at`: no overlong form, no surrogate, nothing beyond U+10FFFF. 0: none.
std::size_t utf8Length(const std::string& text, std::size_t at);
bool isUtf8(const std::string& text);

// Bytes of the character at `at` if a terminal only shows it; 0 for a control character (U+0000 to U+001F, U+007F to
// U+009F), which it would obey, and for a byte that is not UTF-8.
std::size_t harmlessLength(const std::string& text, std::size_t at);
bool hasControl(const std::string& text);
// What may go to a terminal: control characters, and bytes that are not UTF-8, are \xNN.
std::string harmless(const std::string& text);
// The same for a message in its lines: tabs stay, and line ends in front of a blank, by which the lines of a message
// that follow its first are set off.
std::string harmlessLines(const std::string& text);

// Columns that the text takes on a terminal: two for a wide East Asian character, none for a combining mark.
std::size_t displayWidth(const std::string& text);
// Filled with blanks up to so many columns; a text that takes more stays as it is.
enum class Align { Left, Right };
// What fits into so many columns; the end is then an ellipsis.
std::string cutTo(const std::string& text, std::size_t columns);
// "'99999...'": a word as a message quotes it, cut when it is very long.
std::string quoted(const std::string& word);
std::string padded(const std::string& text, std::size_t columns, Align align = Align::Left);

}  // namespace vornex

#endif
