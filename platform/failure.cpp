// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"

#include <cerrno>

namespace
{

struct Described {
    Trouble trouble;
    const char* description;
};

// clang-format off
constexpr Described descriptions[] = {
    {Trouble::invalidCall,               "Invalid procedure call or argument"},
    {Trouble::overflow,                  "Overflow"},
    {Trouble::outOfMemory,               "Out of memory"},
    {Trouble::subscriptOutOfRange,       "Subscript out of range"},
    {Trouble::typeMismatch,              "Type mismatch"},
    {Trouble::fileNotFound,              "File not found"},
    {Trouble::fileAlreadyOpen,           "File already open"},
    {Trouble::deviceInputOutput,         "Device I/O error"},
    {Trouble::diskFull,                  "Disk full"},
    {Trouble::endOfFile,                 "Input past end of file"},
    {Trouble::deviceUnavailable,         "Device unavailable"},
    {Trouble::permissionDenied,          "Permission denied"},
    {Trouble::pathOrFileAccess,          "Path/File access error"},
    {Trouble::pathNotFound,              "Path not found"},
    {Trouble::invalidPropertyValue,      "Invalid property value"},
    {Trouble::invalidPropertyArrayIndex, "Invalid property array index"},
    {Trouble::cancelled,                 "Cancel was selected."},
};

struct Mapped {
    int systemError;
    Trouble trouble;
};

constexpr Mapped systemErrors[] = {
    {ENOENT, Trouble::fileNotFound},      {ENOTDIR, Trouble::pathNotFound},
    {EISDIR, Trouble::pathOrFileAccess},  {EACCES,  Trouble::permissionDenied},
    {EPERM,  Trouble::permissionDenied},  {EROFS,   Trouble::permissionDenied},
    {ENOSPC, Trouble::diskFull},          {EDQUOT,  Trouble::diskFull},
    {EFBIG,  Trouble::diskFull},          {EBUSY,   Trouble::permissionDenied},
    {ETXTBSY, Trouble::permissionDenied}, {EIO,     Trouble::deviceInputOutput},
    {ENXIO,  Trouble::deviceUnavailable}, {ENODEV,  Trouble::deviceUnavailable},
};
// clang-format on

const char* descriptionOf(Trouble trouble)
{
    for (const auto& row : descriptions)
        if (row.trouble == trouble)
            return row.description;
    return "Application-defined or object-defined error";
}

}

Failure::Failure(Trouble trouble) : Failure(trouble, descriptionOf(trouble)) {}

Failure fileFailure(int systemError)
{
    for (const auto& row : systemErrors)
        if (row.systemError == systemError)
            return Failure(row.trouble);
    return Failure(Trouble::pathOrFileAccess);
}
