#include "platform/failure.h"

#include <cerrno>

namespace
{

struct Described {
    int number;
    const char* description;
};

// clang-format off
constexpr Described descriptions[] = {
    {5,     "Invalid procedure call or argument"},
    {6,     "Overflow"},
    {9,     "Subscript out of range"},
    {13,    "Type mismatch"},
    {53,    "File not found"},
    {55,    "File already open"},
    {57,    "Device I/O error"},
    {61,    "Disk full"},
    {62,    "Input past end of file"},
    {68,    "Device unavailable"},
    {70,    "Permission denied"},
    {75,    "Path/File access error"},
    {76,    "Path not found"},
    {380,   "Invalid property value"},
    {381,   "Invalid property array index"},
    {32755, "Cancel was selected."},
};

struct Mapped {
    int systemError;
    int number;
};

constexpr Mapped systemErrors[] = {
    {ENOENT,  53}, {ENOTDIR, 76}, {EISDIR, 75}, {EACCES, 70}, {EPERM,  70}, {EROFS, 70},
    {ENOSPC,  61}, {EDQUOT,  61}, {EFBIG,  61}, {EBUSY,  70}, {ETXTBSY, 70},
    {EIO,     57}, {ENXIO,   68}, {ENODEV, 68},
};
// clang-format on

}

Failure failure(int number)
{
    for (const auto& row : descriptions)
        if (row.number == number)
            return {number, row.description};
    return {number, "Application-defined or object-defined error"};
}

Failure fileFailure(int systemError)
{
    for (const auto& row : systemErrors)
        if (row.systemError == systemError)
            return failure(row.number);
    return failure(75);
}
