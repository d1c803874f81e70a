// SPDX-License-Identifier: Apache-2.0
// What a command shows people: colour only on a terminal, and aligned tables.
#ifndef FRUCTL_TERMINAL_CONSOLE_H
#define FRUCTL_TERMINAL_CONSOLE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class Colour
{
    None,
    Bold,
    Dim,
    Red,
    Green,
    Yellow,
    Blue,
    Magenta,
    Cyan
};

// When there are colours: on a terminal where NO_COLOR is not set, or as --color says.
enum class ColourMode
{
    Auto,
    Always,
    Never
};
void SetColourMode(ColourMode enMode);
// Nothing when the word is none of auto, always and never.
std::optional<ColourMode> ParseColourMode(const std::string &strWord);

// Whether the stream is to have colours.
bool WantsColour(int iFd);

// The text in a colour, or as it is when there is none to be.
std::string Paint(Colour enColour, const std::string &strText);

// A device's text as people see it: in a terminal that shows UTF-8 its Latin-1 letters are letters,
// elsewhere they are escaped as everything that is no printable ASCII.
std::string ShownText(std::string_view strBytes);
// UTF-8 as it is where the terminal shows it; elsewhere what is no ASCII as \uXXXX.
std::string ShownUtf8(const std::string &strText);

// A table for people, as wide as the terminal at most: there cells are broken at blanks, and where not even
// that helps, rows become blocks of lines. Colours do not count into the widths.
class Table
{
  public:
    // One heading for each column; a '>' in front aligns the column to the right.
    explicit Table(const std::vector<const char *> &vecHeadings);
    void Row(std::vector<std::string> vecCells, std::vector<Colour> vecColours = {});
    // Two blanks between columns, or one where that is what fits; none after the last.
    std::string Text() const;

  private:
    struct ROW_S
    {
        std::vector<std::string> vecCells;
        std::vector<Colour> vecColours;
    };
    std::vector<size_t> Widths() const;
    std::string LinesOf(const ROW_S &stRow, const std::vector<size_t> &vecWidths, size_t uiGap) const;
    std::string Blocks() const;

    std::vector<bool> m_vecRight;
    std::vector<ROW_S> m_vecRows;
};

// Writes to standard output.
int OutputFd(); // its descriptor
void Print(const std::string &strText);

// Keeps what the library itself prints (reports of its allocation guard, notes of the MultiRecord merge)
// apart from what Print() writes, so that --json stays JSON. From then on TakeLibraryOutput() has it.
void SeparateLibraryOutput();
std::string TakeLibraryOutput();

// Whether -o means standard output: "-", or a path that leads to it, such as /dev/stdout.
bool IsStandardOutput(const std::string &strPath);

// 0, or why something could not be written to standard output, as errno tells it.
int FlushOutput();

#endif
