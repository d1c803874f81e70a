// SPDX-License-Identifier: Apache-2.0
// What a command shows people: colour only on a terminal, and aligned tables.
#ifndef FRUCTL_TERMINAL_CONSOLE_H
#define FRUCTL_TERMINAL_CONSOLE_H

#include <string>
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

// True when the stream is a terminal and NO_COLOR is not set.
bool WantsColour(int iFd);

// Decides for Paint() below, once, from standard output.
void SetColour(bool bColour);

// The text in a colour, or as it is when there is none to be.
std::string Paint(Colour enColour, const std::string &strText);

// A table for people. Cells are plain ASCII; colours do not count into the widths.
class Table
{
  public:
    // One heading for each column; a '>' in front aligns the column to the right.
    explicit Table(const std::vector<const char *> &vecHeadings);
    void Row(std::vector<std::string> vecCells, std::vector<Colour> vecColours = {});
    // Two blanks between columns, none after the last.
    std::string Text() const;

  private:
    struct ROW_S
    {
        std::vector<std::string> vecCells;
        std::vector<Colour> vecColours;
    };
    std::vector<bool> m_vecRight;
    std::vector<ROW_S> m_vecRows;
};

// Writes to standard output.
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
